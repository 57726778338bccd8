// GoogleTest asks for the check of the stack (-GS). The value lies below a function's variables and is compared at its
// end; every register but rcx stays.
#include <stdint.h>

extern "C" uintptr_t __security_cookie = 0x00002B992DDFA232;

__asm__(R"(
.globl __security_check_cookie
__security_check_cookie:
  cmp rcx, qword ptr [rip + __security_cookie]
  jne security_failure
  ret
security_failure:
  mov ecx, 2
  int 0x29
)");
