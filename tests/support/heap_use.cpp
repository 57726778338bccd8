#include <windows.h>

#include <support/heap_use.h>

#include <cstdio>
#include <cstdlib>

ProcessHeaps::ProcessHeaps() : count_(GetProcessHeaps(room, heaps_)) {
  if (count_ <= room) return;
  std::fprintf(stderr, "There are %lu heaps, and room for %lu.\n", count_, room);
  std::abort();
}

HeapUse heap_use() {
  HeapUse size;
  for (const HANDLE heap : ProcessHeaps()) {
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
      if (!(entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)) continue;
      ++size.blocks;
      size.bytes += entry.cbData;
    }
    HeapUnlock(heap);
  }
  return size;
}
