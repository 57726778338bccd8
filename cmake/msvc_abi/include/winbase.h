#pragma once
#include_next <winbase.h>

#ifdef __cplusplus
extern "C" {
#endif
WORD WINAPI RtlCaptureStackBackTrace(DWORD skipped, DWORD count, void** frames, DWORD* hash);
VOID WINAPI GetCurrentThreadStackLimits(PULONG_PTR low, PULONG_PTR high);
#ifdef __cplusplus
}
#endif
#define CaptureStackBackTrace RtlCaptureStackBackTrace
#define SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE 2
#ifdef _LIBCPP_BUILDING_LIBRARY
#undef DeleteFile  // a member of FILE_DISPOSITION_INFO too, which Wine declares before the macro
#endif
