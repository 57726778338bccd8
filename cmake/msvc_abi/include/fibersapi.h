// libc++ keeps the values of a thread in the fiber's local storage; Wine declares its functions in winbase.h.
#pragma once
