#include <support/memory_shortage.h>

#include <atomic>
#include <cstdlib>

namespace {

std::atomic<DWORD> starving;
std::atomic<int> left;

void* __cdecl allocate(size_t size) {
  return GetCurrentThreadId() == starving && left-- <= 0 ? nullptr : std::malloc(size);
}

}  // namespace

MemoryShortage::MemoryShortage(DWORD thread, int successes)
    : override_((starving = thread, left = successes, "libstdc++-6.dll"), "msvcrt.dll", "malloc", allocate) {}

bool MemoryShortage::has_begun() { return left < 0; }
