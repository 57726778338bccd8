#include <support/c_library.h>
#include <support/memory_shortage.h>

#include <atomic>

namespace {

std::atomic<DWORD> starving;
std::atomic<int> left;

// The DLL's own: std::malloc is what is replaced in the program.
const auto real_malloc = reinterpret_cast<void*(__cdecl*)(size_t)>(
    reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(c_library::dll), "malloc")));

void* __cdecl allocate(size_t size) {
  return GetCurrentThreadId() == starving && left-- <= 0 ? nullptr : real_malloc(size);
}

}  // namespace

MemoryShortage::MemoryShortage(DWORD thread, int successes)
    : library_((starving = thread, left = successes, c_library::allocator_of("kexlib.dll")), c_library::dll, "malloc",
               &allocate),
      framework_(c_library::allocator_of("kexframework.dll"), c_library::dll, "malloc", &allocate),
      program_(c_library::allocator_of(nullptr), c_library::dll, "malloc", &allocate) {}

bool MemoryShortage::has_begun() { return left < 0; }
