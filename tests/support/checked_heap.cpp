#include <windows.h>
#include <malloc.h>

#include <support/c_library.h>
#include <support/checked_heap.h>
#include <support/heap_use.h>
#include <support/import_override.h>

#include <cstdio>
#include <initializer_list>

namespace {

// The system then fills the room behind each block.
bool system_checks_heaps() {
  constexpr ULONG tail_check = 0x10;  // FLG_HEAP_ENABLE_TAIL_CHECK
  const auto flags = reinterpret_cast<ULONG(NTAPI*)()>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlGetNtGlobalFlags")));
  return flags && (flags() & tail_check);
}

// block: null for all of the heap.
void validate(HANDLE heap, const void* block) {
  if (HeapValidate(heap, 0, block)) return;
  std::fputs("crash: memory was written beyond a block\n", stderr);
  *static_cast<volatile int*>(nullptr) = 0;  // in this program, where the report of crashes looks
}

void(__cdecl* real_free)(void*);

void __cdecl look_and_free(void* block) {
  if (block) validate(reinterpret_cast<HANDLE>(_get_heap_handle()), block);
  real_free(block);
}

}  // namespace

void check_freed_blocks() {
  if (!system_checks_heaps()) return;
  real_free = reinterpret_cast<void(__cdecl*)(void*)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(c_library::dll), "free")));
  // To the end of the process.
  for (const char* const module :
       {static_cast<const char*>(nullptr), "kexlib.dll", "kexframework.dll", c_library::allocator_of("kexlib.dll")})
    new ImportOverride(module, c_library::dll, "free", &look_and_free);
}

void check_heaps() {
  static const bool checked = system_checks_heaps();
  if (!checked) return;
  for (const HANDLE heap : ProcessHeaps()) validate(heap, nullptr);
}
