// A program that profiles and traces and then ends in the way that its argument names. It tests what unloading writes.
#include <kexlib/com/registration_free.h>
#include <kexlib/diagnostics.h>
#include <kexlib/messageloop.h>
#include <kexlib/windowtools/hwnd_table.h>

#include <windows.h>

#include <support/crash_report.h>
#include <support/import_override.h>

#include <in_process_server.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

constexpr int exit_code = 7;
constexpr int touched_lock = 8;
constexpr int touched_hook = 9;
constexpr int early_deactivation = 10;

// A thread that is always inside the profiler, most of the time with new names, so that the process ends in the middle
// of an insertion.
void keep_profiling(std::atomic<bool>& running) {
  for (unsigned i = 0;; ++i) {
    kexProfileScope scope("busy " + std::to_string(i));
    running = true;
  }
}

// The lock of the timers is the first that the library enters here; at the end of the process it is not to be touched.
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

// Its tick does not end.
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

// At the end of the process the hook goes by itself, as the memory does.
BOOL WINAPI unhooked(HHOOK) { return TerminateProcess(GetCurrentProcess(), touched_hook); }

// A class whose server leaves an activation context of its own active.
constexpr GUID careless_class = {0x5D0E8A60, 0x3C1B, 0x4B7A, {0x9E, 0x52, 0x6A, 0x1F, 0x0C, 0x7D, 0x2B, 0x10}};

class CarelessFactory : public in_process::Counted<IClassFactory> {
 public:
  explicit CarelessFactory(HANDLE context) : context_(context) {}
  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID, void** object) override {
    *object = nullptr;
    ULONG_PTR cookie;
    ActivateActCtx(context_, &cookie);
    return E_FAIL;
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  HANDLE context_;
};

LONG WINAPI end_at_early_deactivation(EXCEPTION_POINTERS* exception) {
  constexpr DWORD status = 0xC015000F;  // STATUS_SXS_EARLY_DEACTIVATION
  if (exception->ExceptionRecord->ExceptionCode == status) TerminateProcess(GetCurrentProcess(), early_deactivation);
  return EXCEPTION_CONTINUE_SEARCH;
}

// Makes an object of that class while this manifest is in force.
void make_carelessly(const std::string& manifest) {
  const std::string folder = manifest.substr(0, manifest.rfind('\\'));
  ACTCTXA wanted = {};
  wanted.cbSize = sizeof wanted;
  wanted.lpSource = manifest.c_str();
  AddVectoredExceptionHandler(TRUE, end_at_early_deactivation);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  DWORD registered = 0;
  CoRegisterClassObject(careless_class, new CarelessFactory(CreateActCtxA(&wanted)), CLSCTX_INPROC_SERVER,
                        REGCLS_MULTIPLEUSE, &registered);
  IUnknown* object = nullptr;
  reg_free_co_create(careless_class, folder.c_str(), manifest.c_str(), CLSCTX_INPROC_SERVER, &object);
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
  if (ending == "careless_server") {
    make_carelessly(argv[2]);
    return exit_code;
  }
  if (ending == "alert") {
    static CProblemAlert alert;
    return exit_code;
  }
  if (ending == "crash") {
    std::thread([] {}).join();
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
  }

  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("%s\n", ending.c_str());
  kex_begin_block_with_auto_start("closed");
  kex_end_block();
  kex_begin_block("open");

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
