// Wine's header leaves it out; its run-time library has it.
#pragma once
#include_next <malloc.h>

#ifdef __cplusplus
extern "C" __int64 __cdecl _get_heap_handle(void);
#endif
