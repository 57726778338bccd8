// Some headers test this macro of the Windows SDK to see whether windows.h was included first.
#pragma once
#define _WINDOWS_
#include_next <windows.h>
