#include <windows.h>

#include <support/debugger_output.h>

#include <utility>

namespace {

std::vector<std::string> caught;
std::function<void()> call;

// Without a debugger the system raises an exception for each text. Its parameters are the length with terminator and
// the text.
LONG CALLBACK catch_text(EXCEPTION_POINTERS* exception) {
  constexpr DWORD print_exception = 0x40010006;
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  if (record.ExceptionCode != print_exception) return EXCEPTION_CONTINUE_SEARCH;
  caught.emplace_back(reinterpret_cast<const char*>(record.ExceptionInformation[1]),
                      record.ExceptionInformation[0] - 1);
  if (call) call();
  return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

DebuggerOutput::DebuggerOutput(std::function<void()> on_text) : handler_(AddVectoredExceptionHandler(1, catch_text)) {
  caught.clear();
  call = std::move(on_text);
}

DebuggerOutput::~DebuggerOutput() { RemoveVectoredExceptionHandler(handler_); }

const std::vector<std::string>& DebuggerOutput::texts() const { return caught; }
