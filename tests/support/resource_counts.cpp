#include <windows.h>
#include <psapi.h>

#include <support/resource_counts.h>

int count_heap_blocks() {
  HANDLE heaps[64];
  DWORD heap_count = GetProcessHeaps(64, heaps);
  int count = 0;
  for (DWORD i = 0; i < heap_count; ++i) {
    HeapLock(heaps[i]);
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heaps[i], &entry)) count += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0;
    HeapUnlock(heaps[i]);
  }
  return count;
}

static PROCESS_MEMORY_COUNTERS memory_counters() {
  PROCESS_MEMORY_COUNTERS counters = {};
  counters.cb = sizeof counters;
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters;
}

size_t count_memory() { return memory_counters().PagefileUsage; }

size_t most_memory() { return memory_counters().PeakWorkingSetSize; }
