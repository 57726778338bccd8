#pragma once
extern "C" {
#include_next <eh.h>
terminate_handler __cdecl _get_terminate();
}
