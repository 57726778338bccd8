#include <windows.h>
#include <psapi.h>
#include <winternl.h>

#include <support/resource_counts.h>

#include <cstring>
#include <vector>

namespace {

// The table of GDI handles, which is mapped into every process. GetGuiResources returns 0 under Wine.
struct GdiEntry {
  unsigned long long object;
  unsigned short process;
  unsigned short reserved;
  unsigned short count;
  unsigned char type;
  unsigned char flags;
  unsigned long long user;
};
constexpr size_t gdi_entries = 16384;
constexpr size_t gdi_table_in_peb = 0xF8;

struct HandleEntry {
  ULONG process;
  BYTE type;
  BYTE flags;
  USHORT handle;
  void* object;
  ULONG access;
};
struct HandleTable {
  ULONG count;
  HandleEntry entries[1];
};
constexpr auto too_small = static_cast<NTSTATUS>(0xC0000004);  // STATUS_INFO_LENGTH_MISMATCH
constexpr auto system_handle_information = static_cast<SYSTEM_INFORMATION_CLASS>(16);

bool is_of_the_system(HWND window) {
  char name[64];
  GetClassNameA(window, name, sizeof name);
  return !strcmp(name, "IME") || !strcmp(name, "MSCTFIME UI") || !strcmp(name, "OleMainThreadWndClass") ||
         !strcmp(name, "OleDdeWndClass");
}

}  // namespace

int count_gdi_objects() {
  GdiFlush();
  PROCESS_BASIC_INFORMATION process;
  NtQueryInformationProcess(GetCurrentProcess(), ProcessBasicInformation, &process, sizeof process, nullptr);
  auto* peb = reinterpret_cast<const char*>(process.PebBaseAddress);
  const GdiEntry* table;
  memcpy(&table, peb + gdi_table_in_peb, sizeof table);
  int count = 0;
  for (size_t i = 0; i < gdi_entries; ++i) count += table[i].type != 0;
  return count;
}

int count_kernel_handles() {
  std::vector<char> buffer(1 << 20);
  ULONG needed;
  NTSTATUS status;
  while ((status = NtQuerySystemInformation(system_handle_information, buffer.data(), static_cast<ULONG>(buffer.size()),
                                            &needed)) == too_small)
    buffer.resize(buffer.size() * 2);
  if (status) return -1;
  auto* table = reinterpret_cast<const HandleTable*>(buffer.data());
  int count = 0;
  for (ULONG i = 0; i < table->count; ++i) count += table->entries[i].process == GetCurrentProcessId();
  return count;
}

int count_windows() {
  int count = 0;
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND window, LPARAM counted) -> BOOL {
        if (!is_of_the_system(window)) ++*reinterpret_cast<int*>(counted);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&count));
  return count;
}

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
