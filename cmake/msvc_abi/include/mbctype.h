// Wine's header names its flags as libc++ names template parameters.
#pragma once
#include_next <mbctype.h>
#undef _MS
#undef _MP
#undef _M1
#undef _M2
