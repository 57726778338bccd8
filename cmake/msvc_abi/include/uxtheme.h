// Wine's header has no extern "C".
#pragma once
#ifdef __cplusplus
extern "C" {
#endif
#include_next <uxtheme.h>
#ifdef __cplusplus
}
#endif
