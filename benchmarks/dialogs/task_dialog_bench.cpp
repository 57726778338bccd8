#include <kexlib/dialogs/task_dialog.h>

#include <windows.h>
#include <commctrl.h>

#include <support/bench.h>
#include <support/import_override.h>

#include <string>

namespace {

const TASKDIALOGCONFIG* handed_over;
double system_took;

HRESULT WINAPI show_nothing(const TASKDIALOGCONFIG*, int*, int*, BOOL*) { return S_OK; }

// Presses the first button when the dialog is created.
HRESULT CALLBACK press_at_once(HWND dialog, UINT notification, WPARAM wparam, LPARAM lparam, LONG_PTR) {
  if (notification == TDN_CREATED) PostMessageW(dialog, TDM_CLICK_BUTTON, 101, 0);
  return handed_over->pfCallback(dialog, notification, wparam, lparam, handed_over->lpCallbackData);
}

decltype(&TaskDialogIndirect) real;
HRESULT WINAPI show_and_time(const TASKDIALOGCONFIG* config, int* pressed, int* radio, BOOL* verified) {
  handed_over = config;
  TASKDIALOGCONFIG watched = *config;
  watched.pfCallback = press_at_once;
  const double start = bench::now();
  const HRESULT result = real(&watched, pressed, radio, verified);
  system_took = bench::now() - start;
  return result;
}

decltype(&TaskDialogIndirect) replacement;
FARPROC WINAPI find(HMODULE module, LPCSTR name) {
  const FARPROC found = GetProcAddress(module, name);
  if (HIWORD(name) == 0 || std::string(name) != "TaskDialogIndirect") return found;
  real = reinterpret_cast<decltype(real)>(reinterpret_cast<void*>(found));
  return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(replacement));
}

void build_and_raise() {
  kexTaskDialog dialog;
  dialog.set_title("Task dialog");
  dialog.set_main_instruction("The file is there already.");
  dialog.set_message("Its contents would be lost.");
  for (int i = 0; i < 20; ++i) dialog.add_button("One of twenty");
  dialog.set_default_button(102);
  dialog.raise();
}

void measure_task_dialog() {
  const ImportOverride finder("kexlib.dll", "KERNEL32.dll", "GetProcAddress", &find);
  bench::Comparison shown("a task dialog of 20 buttons, shown");
  shown.add("the configuration", [] {
    replacement = show_nothing;
    return bench::nanoseconds_each(200, build_and_raise);
  });
  shown.add("all of ours", [] {
    replacement = show_and_time;
    return bench::nanoseconds_each(1, build_and_raise) - system_took;
  });
  shown.add("the system's", [] { return system_took; });  // of the dialog just shown
  shown.add("20 microseconds", [] { return 20000.0; });
  shown.run();
  bench::at_most(1.0, shown.ratio("the configuration", "20 microseconds"),
                 {.name = "the configuration of a task dialog",
                  .compared = "kexTaskDialog with 20 buttons, of 20 microseconds",
                  .reason = "a dialog shown by hand fills the same structure; nobody notices such a time"});
  bench::at_most(0.01, shown.ratio("all of ours", "the system's"),
                 {.name = "a task dialog shown",
                  .compared = "all that the library does, of the system's time to show the dialog",
                  .reason = "a dialog shown by hand calls TaskDialogIndirect too"});
}

const bench::Benchmark task_dialog_benchmark("task dialog", measure_task_dialog);

}  // namespace
