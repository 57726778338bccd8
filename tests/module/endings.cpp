// A program that profiles and traces, and ends as its argument names. The tests check the results of the unload.
#include <kexlib/diagnostics.h>
#include <kexlib/messageloop.h>
#include <kexlib/windowtools/hwnd_table.h>

#include <windows.h>

#include <support/crash_report.h>
#include <support/import_override.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

constexpr int exit_code = 7;
constexpr int touched_lock = 8;
constexpr int touched_hook = 9;

// A thread that is always inside the profiler, most of the time with new names, so that the process ends in the middle
// of an insertion.
void keep_profiling(std::atomic<bool>& running) {
  for (unsigned i = 0;; ++i) {
    kexProfileScope scope("busy " + std::to_string(i));
    running = true;
  }
}

// The lock of the timers is the first that the library enters here; it must not be accessed at the end of the process.
std::atomic<CRITICAL_SECTION*> timers_lock{nullptr};
std::atomic<bool> ending_now{false};

void check(CRITICAL_SECTION* section) {
  CRITICAL_SECTION* none = nullptr;
  timers_lock.compare_exchange_strong(none, section);
  if (ending_now && section == timers_lock) TerminateProcess(GetCurrentProcess(), touched_lock);
}

void WINAPI checked_enter(CRITICAL_SECTION* section) {
  check(section);
  EnterCriticalSection(section);
}

void WINAPI checked_delete(CRITICAL_SECTION* section) {
  check(section);
  DeleteCriticalSection(section);
}

// Its tick does not return.
class EndlessTick : public CATLWindowLessTimer {
 public:
  void OnTimerTick() override {
    ticking = true;
    Sleep(INFINITE);
  }
  std::atomic<bool> ticking{false};
};

void tick_endlessly(EndlessTick& timer) {
  timer.SetEnabled(1);
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0)) DispatchMessageA(&message);
}

// At the end of the process the system removes the hook, as it frees the memory.
BOOL WINAPI unhooked(HHOOK) { return TerminateProcess(GetCurrentProcess(), touched_hook); }

void write_to_nowhere() {
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
}

// The system handles the fault and continues.
LRESULT CALLBACK fault(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_CREATE) write_to_nowhere();
  return DefWindowProcA(window, message, w, l);
}

}  // namespace

int main(int argc, char** argv) {
  report_crashes();
  const std::string ending = argc > 1 ? argv[1] : "";

  if (ending == "silent") return exit_code;
  if (ending == "in_tick") {
    static EndlessTick timer;
    timer.SetInterval(50);
    new ImportOverride("kexlib.dll", "KERNEL32.dll", "EnterCriticalSection", &checked_enter);
    new ImportOverride("kexlib.dll", "KERNEL32.dll", "DeleteCriticalSection", &checked_delete);
    std::thread([] { tick_endlessly(timer); }).detach();
    while (!timer.ticking) Sleep(1);
    ending_now = true;
    return exit_code;
  }
  if (ending == "hwnd_table") {
    new ImportOverride("kexlib.dll", "USER32.dll", "UnhookWindowsHookEx", &unhooked);
    kexHWNDTable::singleton().reg_window(GetDesktopWindow(), "desktop", 1);
    return exit_code;
  }
  if (ending == "alert") {
    static CProblemAlert alert;
    return exit_code;
  }
  if (ending == "crash") {
    std::thread([] {}).join();
    write_to_nowhere();
  }

  if (ending == "crash_in_window_procedure") {
    WNDCLASSA description{};
    description.lpfnWndProc = &fault;
    description.lpszClassName = "endings";
    RegisterClassA(&description);
    CreateWindowA("endings", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    return exit_code;
  }

  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("%s\n", ending.c_str());
  kex_begin_block_with_auto_start("closed");
  kex_end_block();
  kex_begin_block("open");

  if (ending == "killed") Sleep(INFINITE);
  if (ending == "crash_on_thread") std::thread(&write_to_nowhere).join();
  if (ending == "box") {
    (new CProblemAlert)->RaiseProblemMessage();
    while (!FindWindowA("#32770", "Error")) Sleep(1);
    return exit_code;
  }
  if (ending == "stopped") {
    kex_stop_profiling("stopped.js");
    return exit_code;
  }
  if (ending == "exit") std::exit(exit_code);
  if (ending == "quick_exit") std::_Exit(exit_code);
  if (ending == "ExitProcess") ExitProcess(exit_code);
  if (ending == "TerminateProcess") TerminateProcess(GetCurrentProcess(), exit_code);
  if (ending == "ExitProcess_on_thread") {
    std::thread([] { ExitProcess(exit_code); }).join();
  }
  if (ending == "busy_thread") {
    static std::atomic<bool> running{false};
    std::thread([] { keep_profiling(running); }).detach();
    while (!running) {
    }
    ExitProcess(exit_code);
  }
  return exit_code;
}
