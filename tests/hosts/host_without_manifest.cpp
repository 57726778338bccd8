// A program whose own common controls are of version 5. It raises a task dialog of kexlib's, presses its buttons and
// sees that they are of version 6. The exit code is 0, or tells what went wrong.
#include <kexlib/dialogs.h>

#include <windows.h>

#include <commctrl.h>

#include <support/crash_report.h>

namespace {

// Only version 6 answers.
bool is_of_version_6(HWND button) {
  SIZE size{};
  return SendMessageA(button, BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&size)) && size.cx > 0;
}

bool new_button_is_of_version_6() {
  const HWND button = CreateWindowA("BUTTON", "text", WS_POPUP, 0, 0, 50, 20, nullptr, nullptr, nullptr, nullptr);
  const bool answers = is_of_version_6(button);
  DestroyWindow(button);
  return answers;
}

bool dialog_is_of_version_6 = false, is_in_action = false;

void CALLBACK press_buttons(HWND, UINT, UINT_PTR, DWORD) {
  const HWND dialog = FindWindowA("#32770", "without a manifest");
  if (!dialog || !IsWindowVisible(dialog)) return;
  for (HWND button = nullptr; (button = FindWindowExA(dialog, button, "BUTTON", nullptr));) {
    dialog_is_of_version_6 = is_of_version_6(button);
    SendMessageA(button, BM_CLICK, 0, 0);
    if (!IsWindow(button)) return;
  }
}

void CALLBACK give_up(HWND, UINT, UINT_PTR, DWORD) { ExitProcess(10); }

}  // namespace

int main() {
  report_crashes();
  if (new_button_is_of_version_6()) return 1;
  SetTimer(nullptr, 0, 50, press_buttons);
  SetTimer(nullptr, 0, 20000, give_up);

  kexTaskDialog dialog;
  dialog.set_title("without a manifest");
  const int act = dialog.add_button("Act"), close = dialog.add_button("Close");
  dialog.add_action(act, [](const kexTaskDialogActionContext&) { is_in_action = new_button_is_of_version_6(); });
  if (dialog.raise() != close) return 2;
  if (!dialog_is_of_version_6) return 3;
  if (!is_in_action) return 4;
  if (new_button_is_of_version_6()) return 5;  // the program's own again
  return 0;
}
