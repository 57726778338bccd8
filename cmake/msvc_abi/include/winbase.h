#pragma once
#include_next <winbase.h>

#ifdef __cplusplus
extern "C"
#endif
    WORD WINAPI
    RtlCaptureStackBackTrace(DWORD skipped, DWORD count, void** frames, DWORD* hash);
#define CaptureStackBackTrace RtlCaptureStackBackTrace
