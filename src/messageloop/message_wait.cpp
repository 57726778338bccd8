#include <kexlib/messageloop/message_wait.h>

namespace {

// QS_ALLINPUT without touch and pen: older systems reject the bits that newer headers add.
constexpr DWORD any_message =
    QS_KEY | QS_MOUSE | QS_POSTMESSAGE | QS_TIMER | QS_PAINT | QS_SENDMESSAGE | QS_HOTKEY | QS_RAWINPUT;
static_assert(any_message == 0x04FF);

// Mouse input outside client areas passes: users may move a window while it waits.
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
    // By design, although the next poll finds it again: callers rely on their own loop receiving the quit after the
    // wait.
    PostQuitMessage(static_cast<int>(message.wParam));
  }
  return 1;
}

DWORD SafeWaitWithMessageLoop(DWORD count, const HANDLE* handles, DWORD timeoutMs, BOOL dropUserInput,
                              MSG* quitMessage) {
  const DWORD start = GetTickCount();
  // Unsigned, so the result is right when the tick counter wraps.
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

    // The queue must be empty here: a message that was seen and left in the queue does not end the sleep.
    const DWORD left = time_left();
    if (left == 0) return WAIT_TIMEOUT;
    const DWORD woken = MsgWaitForMultipleObjects(count, handles, FALSE, left, any_message);
    if (woken != WAIT_OBJECT_0 + count) return woken;
  }
}
