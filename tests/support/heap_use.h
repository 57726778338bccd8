// What the process has taken from its heaps.
#ifndef TESTS_SUPPORT_HEAP_USE_H
#define TESTS_SUPPORT_HEAP_USE_H

#include <cstdint>

struct HeapUse {
  std::int64_t blocks = 0;
  std::int64_t bytes = 0;
};

// Of all heaps.
HeapUse heap_use();

#endif
