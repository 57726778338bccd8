// What the process has taken from its heaps.
#ifndef BENCHMARKS_SUPPORT_HEAP_SIZE_H
#define BENCHMARKS_SUPPORT_HEAP_SIZE_H

#include <windows.h>

#include <algorithm>
#include <cstdint>

namespace bench {

struct HeapSize {
  std::int64_t blocks = 0;
  std::int64_t bytes = 0;
};

inline HeapSize heap_size() {
  HANDLE heaps[64];
  HeapSize size;
  const DWORD count = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
  for (DWORD i = 0; i < count; ++i) {
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heaps[i]);
    while (HeapWalk(heaps[i], &entry)) {
      if (!(entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)) continue;
      ++size.blocks;
      size.bytes += entry.cbData;
    }
    HeapUnlock(heaps[i]);
  }
  return size;
}

}  // namespace bench

#endif
