// Where code is: the module, the function and the line of an address, for the reports of tests.
//
//     std::puts(code_place(__builtin_return_address(0)).c_str());   // parts_list.exe+0x1a2b load() main.cpp:17
//
// Function and line are there where the system's dbghelp.dll finds debug information; it is loaded at the first call.
//
// Threads. Any; dbghelp.dll is called by one thread at a time.
#ifndef KEXLIB_TESTING_CODE_PLACE_H
#define KEXLIB_TESTING_CODE_PLACE_H

#include <kexlib/windows.h>

#include <windows.h>
#include <dbghelp.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace kexlib::testing {

/// The module that the address lies in; null if it lies in none. The module is not kept loaded (GetModuleHandleEx).
inline HMODULE module_of(const void* address) {
  HMODULE module = nullptr;
  constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  return GetModuleHandleExA(flags, static_cast<const char*>(address), &module) ? module : nullptr;
}

/// Whether the address lies in a module of the system, one whose file is in the Windows folder. Allocates nothing.
inline bool is_code_of_the_system(const void* address) {
  const HMODULE module = module_of(address);
  char file[MAX_PATH], system[MAX_PATH];
  if (!module || !GetModuleFileNameA(module, file, MAX_PATH)) return false;
  const UINT length = GetWindowsDirectoryA(system, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return false;
  file[MAX_PATH - 1] = '\0';
  if (std::strlen(file) <= length || file[length] != '\\') return false;
  file[length] = '\0';
  return lstrcmpiA(file, system) == 0;
}

// What code_place calls.
namespace detail {

// The functions of dbghelp.dll, which programs need not link.
class DebugHelp {
 public:
  static DebugHelp& get() {
    static DebugHelp one;
    return one;
  }

  // " function file:line", as far as it is known.
  std::string place(const void* address) {
    AcquireSRWLockExclusive(&lock_);
    std::string text;
    const HANDLE process = GetCurrentProcess();
    const auto at = reinterpret_cast<DWORD64>(address);
    alignas(SYMBOL_INFO) char memory[sizeof(SYMBOL_INFO) + MAX_SYM_NAME];
    SYMBOL_INFO& symbol = *reinterpret_cast<SYMBOL_INFO*>(memory);
    symbol = {};
    symbol.SizeOfStruct = sizeof symbol;
    symbol.MaxNameLen = MAX_SYM_NAME;
    IMAGEHLP_LINE64 line{};
    line.SizeOfStruct = sizeof line;
    DWORD64 offset;
    DWORD column;
    if (refresh_) refresh_(process);
    if (name_ && name_(process, at, &offset, &symbol)) text = std::string(" ") + symbol.Name;
    if (line_ && line_(process, at, &column, &line))
      text += std::string(" ") + line.FileName + ":" + std::to_string(line.LineNumber);
    ReleaseSRWLockExclusive(&lock_);
    return text;
  }

 private:
  DebugHelp() {
    const HMODULE library = LoadLibraryExA("dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (!library) return;
    decltype(&SymSetOptions) options = nullptr;
    decltype(&SymInitialize) initialize = nullptr;
    find(library, "SymSetOptions", options);
    find(library, "SymInitialize", initialize);
    if (!options || !initialize) return;
    options(SYMOPT_LOAD_LINES | SYMOPT_UNDNAME | SYMOPT_DEFERRED_LOADS);
    // It fails where the program has initialized it, whose symbols are used then.
    initialize(GetCurrentProcess(), nullptr, TRUE);
    find(library, "SymRefreshModuleList", refresh_);
    find(library, "SymFromAddr", name_);
    find(library, "SymGetLineFromAddr64", line_);
  }

  template <typename Function>
  static void find(HMODULE library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
  }

  SRWLOCK lock_ = SRWLOCK_INIT;
  BOOL(WINAPI* refresh_)(HANDLE) = nullptr;
  decltype(&SymFromAddr) name_ = nullptr;
  decltype(&SymGetLineFromAddr64) line_ = nullptr;
};

}  // namespace detail

/// The place of an address as text: "kexlib.dll+0x1a2b", then the function and "file:line" as far as they are known.
/// An address in no module is given as a number.
inline std::string code_place(const void* address) {
  const HMODULE module = module_of(address);
  char file[MAX_PATH] = "", text[MAX_PATH + 32];
  if (!module || !GetModuleFileNameA(module, file, MAX_PATH)) {
    std::snprintf(text, sizeof text, "%p", address);
    return text;
  }
  file[MAX_PATH - 1] = '\0';
  const char* const slash = std::strrchr(file, '\\');
  std::snprintf(text, sizeof text, "%s+0x%llx", slash ? slash + 1 : file,
                static_cast<unsigned long long>(static_cast<const char*>(address) - reinterpret_cast<char*>(module)));
  return text + detail::DebugHelp::get().place(address);
}

}  // namespace kexlib::testing

#endif
