#pragma once
#include <vcruntime_new.h>

using new_handler = void(__cdecl*)();
extern "C" int __cdecl _callnewh(size_t);
