// new and delete, on the C library's heap: one for all modules of a process.
#include <malloc.h>
#include <stdlib.h>

#include <new>

namespace {

// An allocation of no bytes has an address of its own.
void* allocated(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

std::size_t at_least_one(std::size_t size) { return size == 0 ? 1 : size; }

}  // namespace

using Alignment = std::align_val_t;
using NoThrow = const std::nothrow_t&;

void* operator new(std::size_t size, NoThrow) noexcept { return malloc(at_least_one(size)); }
void* operator new[](std::size_t size, NoThrow) noexcept { return malloc(at_least_one(size)); }
void* operator new(std::size_t size) { return allocated(malloc(at_least_one(size))); }
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { free(memory); }
void operator delete[](void* memory) noexcept { free(memory); }
void operator delete(void* memory, std::size_t) noexcept { free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { free(memory); }
void operator delete(void* memory, NoThrow) noexcept { free(memory); }
void operator delete[](void* memory, NoThrow) noexcept { free(memory); }

void* operator new(std::size_t size, Alignment alignment, NoThrow) noexcept {
  return _aligned_malloc(at_least_one(size), static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, Alignment alignment, NoThrow) noexcept {
  return operator new(size, alignment, std::nothrow);
}
void* operator new(std::size_t size, Alignment alignment) {
  return allocated(operator new(size, alignment, std::nothrow));
}
void* operator new[](std::size_t size, Alignment alignment) { return operator new(size, alignment); }
void operator delete(void* memory, Alignment) noexcept { _aligned_free(memory); }
void operator delete[](void* memory, Alignment) noexcept { _aligned_free(memory); }
void operator delete(void* memory, std::size_t, Alignment) noexcept { _aligned_free(memory); }
void operator delete[](void* memory, std::size_t, Alignment) noexcept { _aligned_free(memory); }
