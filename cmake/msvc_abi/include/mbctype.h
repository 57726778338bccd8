// Wine's header defines macros whose names libc++ uses for template parameters.
#pragma once
#include_next <mbctype.h>
#undef _MS
#undef _MP
#undef _M1
#undef _M2
