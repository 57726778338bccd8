// Wine's header makes macros of these two functions, which change a member of such a name too.
#pragma once
#include_next <io.h>
#undef open
#undef sopen
