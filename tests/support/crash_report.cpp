#include <kexlib/testing/fault_observer.h>

#include <windows.h>

#include <support/crash_report.h>

#include <atomic>
#include <cstdio>

namespace {

using kexlib::testing::code_place;
using kexlib::testing::is_fault;
using kexlib::testing::module_of;

LONG WINAPI report(EXCEPTION_POINTERS* exception) {
  static std::atomic<DWORD> reporter = 0;
  DWORD before = 0;
  if (!reporter.compare_exchange_strong(before, GetCurrentThreadId())) {
    if (before == GetCurrentThreadId()) TerminateProcess(GetCurrentProcess(), crash_exit_code);  // the report crashed
    Sleep(INFINITE);  // another thread reports, and ends the process
  }
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  std::fprintf(stderr, "crash: exception %08lx at %p\n", record.ExceptionCode, record.ExceptionAddress);
  std::fflush(stderr);  // Wine's ucrtbase keeps it, and what follows may crash
  std::fprintf(stderr, "  %s\n", code_place(record.ExceptionAddress).c_str());
  void* frames[32];
  const USHORT count = CaptureStackBackTrace(0, 32, frames, nullptr);
  for (USHORT i = 0; i < count; ++i) std::fprintf(stderr, "  %s\n", code_place(frames[i]).c_str());
  std::fflush(stderr);
  TerminateProcess(GetCurrentProcess(), crash_exit_code);
  return EXCEPTION_EXECUTE_HANDLER;
}

// The system's own code raises and handles faults, for instance to probe a pointer.
bool is_ours(void* instruction) {
  const HMODULE module = module_of(instruction);
  return !module || module == GetModuleHandleA(nullptr) || module == GetModuleHandleA("kexlib.dll") ||
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
