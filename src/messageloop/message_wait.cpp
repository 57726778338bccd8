#include <kexlib/messageloop/message_wait.h>

namespace {

// QS_ALLINPUT as it was before touch and pen: what newer headers add, older systems refuse.
constexpr DWORD any_message =
    QS_KEY | QS_MOUSE | QS_POSTMESSAGE | QS_TIMER | QS_PAINT | QS_SENDMESSAGE | QS_HOTKEY | QS_RAWINPUT;
static_assert(any_message == 0x04FF);

// Mouse input outside of client areas is left through: a window may be moved while it waits.
bool is_user_input(UINT message) {
  return message == WM_SETCURSOR || (message >= WM_KEYFIRST && message <= WM_UNICHAR) ||
         (message >= WM_MOUSEFIRST && message <= WM_MOUSEHWHEEL);
}

}  // namespace

int SafeWaitServiceMessageQueue(int dropUserInput, MSG* quitMessage) {
  if (quitMessage) quitMessage->message = 0;
  MSG message;
  if (!PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) return 0;
  if (dropUserInput && is_user_input(message.message)) return 1;

  if (message.message != WM_QUIT) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  } else if (quitMessage) {
    *quitMessage = message;
  } else {
    // Meant, although the next look finds it again: the quit has to outlive a wait that nobody can end for it.
    PostQuitMessage(static_cast<int>(message.wParam));
  }
  return 1;
}

DWORD SafeWaitWithMessageLoop(DWORD count, const HANDLE* handles, DWORD timeoutMs, BOOL dropUserInput,
                              MSG* quitMessage) {
  const DWORD start = GetTickCount();
  // Unsigned, so the tick counter may pass its end.
  const auto time_left = [=]() -> DWORD {
    if (timeoutMs == INFINITE) return INFINITE;
    const DWORD elapsed = GetTickCount() - start;
    return elapsed < timeoutMs ? timeoutMs - elapsed : 0;
  };

  for (;;) {
    if (count > 0) {
      const DWORD polled = WaitForMultipleObjects(count, handles, FALSE, 0);
      if (polled != WAIT_TIMEOUT) return polled;
    }
    if (time_left() == 0) return WAIT_TIMEOUT;

    if (SafeWaitServiceMessageQueue(dropUserInput, quitMessage)) {
      if (quitMessage && quitMessage->message != 0) return WAIT_OBJECT_0 + count;
      continue;
    }

    // The queue is empty now, so any message to come is new and ends the sleep: one that was seen but left would not.
    const DWORD left = time_left();
    if (left == 0) return WAIT_TIMEOUT;
    const DWORD woken = MsgWaitForMultipleObjects(count, handles, FALSE, left, any_message);
    if (woken != WAIT_OBJECT_0 + count) return woken;
  }
}
