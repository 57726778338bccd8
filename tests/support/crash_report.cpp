#include <windows.h>
#include <dbghelp.h>

#include <support/crash_report.h>

#include <cstdio>

namespace {

// Function, file and line, if the debug information contains them.
void print_frame(HANDLE process, void* address) {
  alignas(SYMBOL_INFO) char memory[sizeof(SYMBOL_INFO) + MAX_SYM_NAME];
  SYMBOL_INFO& symbol = *reinterpret_cast<SYMBOL_INFO*>(memory);
  symbol.SizeOfStruct = sizeof symbol;
  symbol.MaxNameLen = MAX_SYM_NAME;
  IMAGEHLP_LINE64 line{};
  line.SizeOfStruct = sizeof line;
  DWORD64 offset;
  DWORD column;
  const auto at = reinterpret_cast<DWORD64>(address);
  std::fprintf(stderr, "  %p", address);
  if (SymFromAddr(process, at, &offset, &symbol)) std::fprintf(stderr, " %s", symbol.Name);
  if (SymGetLineFromAddr64(process, at, &column, &line))
    std::fprintf(stderr, " %s:%lu", line.FileName, line.LineNumber);
  std::fputc('\n', stderr);
}

LONG WINAPI report(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  std::fprintf(stderr, "crash: exception %08lx at %p\n", record.ExceptionCode, record.ExceptionAddress);
  const HANDLE process = GetCurrentProcess();
  SymSetOptions(SYMOPT_LOAD_LINES | SYMOPT_UNDNAME);
  SymInitialize(process, nullptr, TRUE);
  print_frame(process, record.ExceptionAddress);
  void* frames[32];
  const USHORT count = CaptureStackBackTrace(0, 32, frames, nullptr);
  for (USHORT i = 0; i < count; ++i) print_frame(process, frames[i]);
  TerminateProcess(process, crash_exit_code);
  return EXCEPTION_EXECUTE_HANDLER;
}

bool is_fault(DWORD code) {
  return code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_IN_PAGE_ERROR ||
         code == EXCEPTION_ILLEGAL_INSTRUCTION || code == EXCEPTION_PRIV_INSTRUCTION ||
         code == EXCEPTION_INT_DIVIDE_BY_ZERO;
}

// The system's own code raises and handles faults, for instance to probe a pointer.
bool is_ours(void* instruction) {
  HMODULE module = nullptr;
  constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (!GetModuleHandleExA(flags, static_cast<const char*>(instruction), &module)) return true;
  return module == GetModuleHandleA(nullptr) || module == GetModuleHandleA("kexlib.dll") ||
         module == GetModuleHandleA("kexframework.dll");
}

LONG WINAPI observe(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  return is_fault(record.ExceptionCode) && is_ours(record.ExceptionAddress) ? report(exception)
                                                                            : EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void report_crashes() {
  SetUnhandledExceptionFilter(report);
  AddVectoredExceptionHandler(TRUE, observe);
}
