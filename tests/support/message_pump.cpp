#include <support/message_pump.h>

#include <windows.h>

void pump_waiting() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

bool pump_until(const std::function<bool()>& happened, std::chrono::milliseconds at_most) {
  constexpr DWORD look_again_after = 20;
  const auto deadline = std::chrono::steady_clock::now() + at_most;
  for (;;) {
    pump_waiting();
    if (happened()) return true;
    if (std::chrono::steady_clock::now() > deadline) return false;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, look_again_after, QS_ALLINPUT);
  }
}
