// A program whose common controls are of version 5. It shows a task dialog of kexlib, presses its buttons and checks
// that they are of version 6. The exit code is 0, or the number of the check that failed.
#include <kexlib/dialogs.h>

#include <windows.h>
#include <commctrl.h>

#include <support/crash_report.h>
#include <support/import_override.h>

#include <cwchar>

namespace {

// Only version 6 answers the message.
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

DWORD where_to_search = 0;

HMODULE WINAPI record_search(LPCWSTR name, HANDLE file, DWORD flags) {
  if (std::wcscmp(name, L"comctl32.dll") == 0) where_to_search = flags;
  return LoadLibraryExW(name, file, flags);
}

void CALLBACK give_up(HWND, UINT, UINT_PTR, DWORD) { ExitProcess(10); }

}  // namespace

int main() {
  report_crashes();
  if (new_button_is_of_version_6()) return 1;
  const ImportOverride recorded("kexlib.dll", "KERNEL32.dll", "LoadLibraryExW", &record_search);
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
  if (where_to_search != LOAD_LIBRARY_SEARCH_SYSTEM32) return 6;
  return 0;
}
