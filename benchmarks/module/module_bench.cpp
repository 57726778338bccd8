// Loading and unloading kexlib.dll as the package has it: without debugging information, most of the file, which the
// loader would read too. This program does not use the library otherwise.
#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

#include <support/bench.h>
#include <support/files.h>
#include <support/heap_use.h>

#include <string>

namespace {

// The loader tells when a module is mapped and its imports are found: before its constructors run at load, and after
// its destructors have run at unload.
using Notify = VOID CALLBACK(ULONG reason, const void* data, void* context);
using RegisterNotification = LONG NTAPI(ULONG flags, Notify* function, void* context, void** cookie);

double told;
HeapUse heap_when_told;
bool count_heap = false;

void CALLBACK remember(ULONG, const void*, void*) {
  if (count_heap) heap_when_told = heap_use();
  told = bench::now();
}

HMODULE load() {
  static const std::wstring path = program_folder() / "as_packaged" / "kexlib.dll";
  return LoadLibraryW(path.c_str());
}

// All modules that kexlib.dll needs stay loaded: they belong to every program on the framework.
void keep_what_is_needed() {
  const HMODULE library = load();
  HMODULE modules[256];
  DWORD bytes = 0;
  EnumProcessModules(GetCurrentProcess(), modules, sizeof modules, &bytes);
  for (std::size_t i = 0; i < bytes / sizeof *modules; ++i) {
    char path[MAX_PATH];
    if (modules[i] != library && GetModuleFileNameA(modules[i], path, MAX_PATH)) LoadLibraryA(path);
  }
  FreeLibrary(library);
}

DWORD threads() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  DWORD count = 0;
  for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
    count += entry.th32OwnerProcessID == GetCurrentProcessId();
  CloseHandle(snapshot);
  return count;
}

struct Times {
  double load, initialize, unload, release;
};

Times load_and_unload() {
  Times times{};
  const double start = bench::now();
  const HMODULE library = load();
  const double loaded = bench::now();
  times.load = loaded - start;
  times.initialize = loaded - told;
  const double before = bench::now();
  FreeLibrary(library);
  times.unload = bench::now() - before;
  times.release = told - before;
  return times;
}

void measure_loading() {
  const auto register_notification = reinterpret_cast<RegisterNotification*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "LdrRegisterDllNotification")));
  void* cookie = nullptr;
  if (!register_notification || register_notification(0, &remember, nullptr, &cookie) != 0)
    throw bench::CannotRun{"the loader does not notify"};
  keep_what_is_needed();

  static Times times;
  bench::Comparison work("kexlib.dll loaded and unloaded", 51);
  work.add("loading and unloading", [] {
    times = load_and_unload();
    return times.load + times.unload;
  });
  work.add("of that its constructors and destructors", [] { return times.initialize + times.release; });
  work.add("one millisecond", [] { return 1e6; });
  work.run();
  const std::string reason = "nobody notices such a time at the start of a program";
  bench::at_most(1, work.ratio("loading and unloading", "one millisecond"),
                 {.name = "loading and unloading kexlib.dll",
                  .compared = "milliseconds, where all modules that it needs are loaded",
                  .reason = reason});
  bench::at_most(0.3, work.ratio("of that its constructors and destructors", "one millisecond"),
                 {.name = "what kexlib.dll does when loaded and unloaded",
                  .compared = "milliseconds, without what the loader does",
                  .reason = reason});

  count_heap = true;
  const DWORD threads_before = threads();
  const HMODULE library = load();
  const HeapUse heap = heap_use();
  const std::string why = "every program pays what is made at load, whatever it uses";
  bench::at_most(2, static_cast<double>(heap.blocks - heap_when_told.blocks),
                 {.name = "memory taken at load",
                  .compared = "blocks of the heap: two locks and the list of destructors, and the loader frees one",
                  .reason = why});
  bench::at_most(0, threads() - threads_before, {.name = "threads made at load", .compared = "threads", .reason = why});
  FreeLibrary(library);
}

const bench::Benchmark loading_benchmark("loading", measure_loading);

}  // namespace
