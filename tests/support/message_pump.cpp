#include <support/message_pump.h>

namespace {

using std::chrono::milliseconds;

void dispatch_waiting(HWND dialog) {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (dialog && IsDialogMessageA(dialog, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

bool dispatch_until(HWND dialog, const std::function<bool()>& happened, milliseconds at_most) {
  constexpr DWORD look_again_after = 20;
  const auto deadline = std::chrono::steady_clock::now() + at_most;
  for (;;) {
    dispatch_waiting(dialog);
    if (happened()) return true;
    if (std::chrono::steady_clock::now() > deadline) return false;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, look_again_after, QS_ALLINPUT);
  }
}

}  // namespace

void pump_waiting() { dispatch_waiting(nullptr); }

bool pump_until(const std::function<bool()>& happened, milliseconds at_most) {
  return dispatch_until(nullptr, happened, at_most);
}

bool pump_dialog_until(HWND dialog, const std::function<bool()>& happened) {
  return dispatch_until(dialog, happened, std::chrono::seconds(10));
}
