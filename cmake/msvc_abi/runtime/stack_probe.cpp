// Functions with more than a page of variables call this before they take the stack: each page must be touched in turn,
// since the system only ever has one page of guard below the stack. The size is in rax, and all registers stay.
__asm__(R"(
.globl __chkstk
__chkstk:
  push rcx
  push rax
  lea rcx, [rsp + 24]
  cmp rax, 0x1000
  jb chkstk_rest
chkstk_page:
  sub rcx, 0x1000
  or dword ptr [rcx], 0
  sub rax, 0x1000
  cmp rax, 0x1000
  ja chkstk_page
chkstk_rest:
  sub rcx, rax
  or dword ptr [rcx], 0
  pop rax
  pop rcx
  ret
)");
