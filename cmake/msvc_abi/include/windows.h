// Programs and headers ask by this macro of the real one whether it came first.
#pragma once
#define _WINDOWS_
#include_next <windows.h>
