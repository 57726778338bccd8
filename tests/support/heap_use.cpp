#include <windows.h>

#include <support/heap_use.h>

#include <algorithm>

HeapUse heap_use() {
  HANDLE heaps[64];
  HeapUse size;
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
