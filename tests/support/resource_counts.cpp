#include <windows.h>
#include <psapi.h>

#include <support/heap_use.h>
#include <support/resource_counts.h>

int count_heap_blocks() { return static_cast<int>(heap_use().blocks); }

static PROCESS_MEMORY_COUNTERS memory_counters() {
  PROCESS_MEMORY_COUNTERS counters = {};
  counters.cb = sizeof counters;
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters;
}

size_t count_memory() { return memory_counters().PagefileUsage; }

size_t physical_memory() { return memory_counters().WorkingSetSize; }

size_t most_memory() { return memory_counters().PeakWorkingSetSize; }
