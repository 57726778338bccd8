// Loads, runs and frees the plug-in. Does not itself use kexlib. The argument names the action; the exit code is 0 or
// identifies the failure.
#include <windows.h>

#include <support/crash_report.h>
#include <support/import_override.h>
#include <support/resource_counts.h>

#include <cstdio>
#include <cstring>

namespace {

UINT_PTR WINAPI refuse_timer(HWND, UINT_PTR, UINT, TIMERPROC) { return 0; }

int run_and_free(const char* function) {
  const HMODULE plugin = LoadLibraryA("plugin.dll");
  if (!plugin) return 1;
  if (!GetModuleHandleA("kexlib.dll")) return 2;
  {
    const ImportOverride no_timers("kexlib.dll", "USER32.dll", "SetTimer", &refuse_timer);
    if (!no_timers.made()) return 8;
    reinterpret_cast<void (*)()>(reinterpret_cast<void*>(GetProcAddress(plugin, function)))();
  }
  if (!FreeLibrary(plugin)) return 3;
  if (GetModuleHandleA("kexlib.dll")) return 4;
  return 0;
}

// Each record is written to "round N.js".
int free_three_times() {
  for (int round = 1; round <= 3; ++round) {
    if (const int problem = run_and_free("run_plugin")) return problem;
    char name[32];
    std::snprintf(name, sizeof name, "round %d.js", round);
    if (!MoveFileA("profiler.js", name)) return 5;
  }
  return 0;
}

// Three megabytes a round, twenty of which would be sixty.
int stay_flat(const char* function) {
  for (int round = 0; round < 3; ++round)
    if (const int problem = run_and_free(function)) return problem;
  const size_t before = count_memory();
  if (before == 0) return 6;
  for (int round = 0; round < 20; ++round)
    if (const int problem = run_and_free(function)) return problem;
  const size_t megabyte = size_t{1} << 20;
  return count_memory() < before + 4 * megabyte ? 0 : 7;
}

HHOOK installed = nullptr;

HHOOK WINAPI record_hook(int type, HOOKPROC procedure, HINSTANCE module, DWORD thread) {
  return installed = SetWindowsHookExA(type, procedure, module, thread);
}

// A window of its own class: those of the common controls are unregistered when the plug-in, which loaded them, is
// freed.
HWND make_window() {
  WNDCLASSA description{};
  description.lpfnWndProc = &DefWindowProcA;
  description.lpszClassName = "plugin_host";
  RegisterClassA(&description);
  return CreateWindowA("plugin_host", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
}

// The hook of the HWND table must be removed with the library: messages sent to this thread would call freed code.
int free_and_go_on() {
  const HMODULE plugin = LoadLibraryA("plugin.dll");
  if (!plugin) return 1;
  HWND window = make_window();
  {
    const ImportOverride recorded("kexlib.dll", "USER32.dll", "SetWindowsHookExA", &record_hook);
    if (!recorded.made()) return 8;
    reinterpret_cast<void (*)(HWND)>(reinterpret_cast<void*>(GetProcAddress(plugin, "register_window")))(window);
  }
  if (!installed) return 9;
  if (!FreeLibrary(plugin)) return 3;
  if (GetModuleHandleA("kexlib.dll")) return 4;
  if (UnhookWindowsHookEx(installed)) return 10;  // it was still installed
  SetTimer(window, 1, 10, nullptr);
  MSG message;
  for (int ticks = 0; ticks < 5 && GetMessageA(&message, nullptr, 0, 0); ticks += message.message == WM_TIMER)
    DispatchMessageA(&message);
  DestroyWindow(window);
  DestroyWindow(make_window());
  return GetModuleHandleA("kexlib.dll") ? 4 : 0;
}

}  // namespace

int main(int, char** arguments) {
  report_crashes();
  if (std::strcmp(arguments[1], "hook") == 0) return free_and_go_on();
  return std::strcmp(arguments[1], "flat") == 0 ? stay_flat(arguments[2]) : free_three_times();
}
