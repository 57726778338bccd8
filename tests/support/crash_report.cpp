#include <support/crash_report.h>

#include <windows.h>

#include <dbghelp.h>

#include <cstdio>

namespace {

// Function, file and line where the debug information tells them.
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

}  // namespace

void report_crashes() { SetUnhandledExceptionFilter(report); }
