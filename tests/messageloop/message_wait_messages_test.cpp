#include <gtest/gtest.h>

#include <windows.h>

#include <messageloop/message_wait_fixture.h>
#include <support/message_pump.h>

#include <ios>
#include <thread>
#include <vector>

namespace {

// ---- messages -------------------------------------------------------------------------------------------------------

// The handler of the thousandth message signals: the next message must not be handled any more.
TEST_F(MessageWait, NoticesAnObjectInAFloodOfMessages) {
  constexpr int posted = 100000;
  constexpr int signalling = 1000;
  int handled = 0;
  const Event ready, flooded, signal;
  HWND target = nullptr;
  DWORD result = WAIT_FAILED;
  // On another thread, whose end discards the remaining messages.
  std::thread waiting([&] {
    RecordingWindow window;
    window.on_message = [&](UINT message, WPARAM) {
      if (message == WM_APP && ++handled == signalling) signal.set();
    };
    target = window.handle;
    ready.set();
    WaitForSingleObject(flooded, INFINITE);
    const HANDLE handle = signal;
    result = SafeWaitWithMessageLoop(1, &handle, INFINITE, FALSE, nullptr);
  });
  WaitForSingleObject(ready, INFINITE);
  for (int i = 0; i < posted; ++i) PostMessageA(target, WM_APP, 0, 0);
  flooded.set();
  waiting.join();
  EXPECT_EQ(result, WAIT_OBJECT_0);
  EXPECT_EQ(handled, signalling);
}

TEST_F(MessageWait, PrefersASignalledObjectToAWaitingMessage) {
  window_.post(WM_APP);
  const Event event(true);
  const HANDLE handle = event;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  EXPECT_EQ(window_.count(WM_APP), 0);
}

// A message that was peeked at and left in the queue is not new: it does not end a sleep.
TEST_F(MessageWait, HandlesMessagesThatAHandlerLookedAtAndLeft) {
  const Event event;
  window_.on_message = [&](UINT message, WPARAM) {
    MSG next;
    if (message == WM_APP) {
      EXPECT_TRUE(PeekMessageA(&next, nullptr, 0, 0, PM_NOREMOVE));
    }
    if (message == WM_APP + 1) event.set();
  };
  window_.post(WM_APP);
  window_.post(WM_APP + 1);
  const HANDLE handle = event;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
}

TEST_F(MessageWait, HandlesMessagesThatTheCallerLookedAtAndLeft) {
  const Event event;
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_APP) event.set();
  };
  window_.post(WM_APP);
  MSG next;
  ASSERT_TRUE(PeekMessageA(&next, nullptr, 0, 0, PM_NOREMOVE));
  const HANDLE handle = event;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
}

TEST_F(MessageWait, AnswersWhatOtherThreadsSend) {
  window_.answer = 42;
  const Event done;
  DWORD_PTR result = 0;
  std::thread other([&] {
    SendMessageTimeoutA(window_.handle, WM_APP, 0, 0, SMTO_NORMAL, ages / 2, &result);
    done.set();
  });
  const HANDLE handle = done;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  other.join();
  EXPECT_EQ(result, 42u);
}

// The loop of a message box checks neither objects nor time.
TEST_F(MessageWait, IsHeldUpByAHandlerThatRunsAModalLoop) {
  const Event event;
  const GivenTicks given({1000});
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_APP) {
      SetTimer(window_.handle, 1, 300, nullptr);
      event.set();
      MessageBoxA(nullptr, "held up", "message_wait_test", MB_OK);
      ticks = {ticks.back() + 300};
    }
    if (message == WM_TIMER) {
      if (const HWND box = FindWindowA("#32770", "message_wait_test")) {
        KillTimer(window_.handle, 1);
        PostMessageA(box, WM_COMMAND, IDOK, 0);
      }
    }
  };
  window_.post(WM_APP);
  const HANDLE handle = event;
  auto start = Clock::now();
  // The time has passed by then, but objects are polled first.
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, 100, FALSE, nullptr), WAIT_OBJECT_0);
  EXPECT_GE(milliseconds_since(start), 300 - grain);

  window_.post(WM_APP);
  start = Clock::now();
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 100, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_GE(milliseconds_since(start), 300 - grain);
}

TEST_F(MessageWait, MayBeCalledByAHandlerOfAWait) {
  const Event inner(true), outer(true);
  DWORD inner_result = WAIT_FAILED;
  window_.on_message = [&](UINT message, WPARAM) {
    const HANDLE handle = inner;
    if (message == WM_APP) inner_result = SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr);
    if (message == WM_APP) outer.set();
  };
  EXPECT_TRUE(outer.take());
  window_.post(WM_APP);
  const HANDLE handle = outer;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  EXPECT_EQ(inner_result, WAIT_OBJECT_0);
}

TEST_F(MessageWait, TranslatesKeysIntoCharacters) {
  window_.post(WM_KEYDOWN, 'A', 0x001E0001);
  wait_for(window_, WM_CHAR, FALSE);
  EXPECT_EQ(window_.count(WM_KEYDOWN), 1);
  EXPECT_EQ(window_.count(WM_CHAR), 1);
}

const std::vector<UINT> around_the_filter = {0x001F, 0x0020, 0x0021, 0x00A0, 0x00FF, 0x0100, 0x0102,
                                             0x0109, 0x010A, 0x01FF, 0x0200, 0x0201, 0x020E, 0x020F};

TEST_F(MessageWait, DropsExactlyCursorKeyboardAndMouseMessages) {
  for (const UINT message : around_the_filter) window_.post(message);
  window_.post(WM_APP);
  wait_for(window_, WM_APP, TRUE);
  EXPECT_EQ(window_.seen, (std::vector<UINT>{0x001F, 0x0021, 0x00A0, 0x00FF, 0x010A, 0x01FF, 0x020F, WM_APP}));
  window_.seen.clear();
  pump_waiting();
  EXPECT_EQ(window_.seen, std::vector<UINT>{});  // dropped, not left
}

TEST_F(MessageWait, DropsNothingUnlessAsked) {
  for (const UINT message : around_the_filter) window_.post(message);
  window_.post(WM_APP);
  wait_for(window_, WM_APP, FALSE);
  for (const UINT message : around_the_filter) EXPECT_EQ(window_.count(message), 1) << std::hex << message;
}

TEST_F(MessageWait, LetsPaintingTimersAndPostedMessagesThroughTheFilter) {
  RecordingWindow visible(true);
  pump_until([&] { return visible.count(WM_PAINT) > 0; });
  visible.seen.clear();
  InvalidateRect(visible.handle, nullptr, TRUE);
  SetTimer(visible.handle, 1, 10, nullptr);
  visible.post(WM_APP);
  const Event done;
  visible.on_message = [&](UINT, WPARAM) {
    if (visible.count(WM_PAINT) && visible.count(WM_TIMER) && visible.count(WM_APP)) done.set();
  };
  const HANDLE handle = done;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, TRUE, nullptr), WAIT_OBJECT_0);
  KillTimer(visible.handle, 1);
}

// ---- quitting -------------------------------------------------------------------------------------------------------

TEST_F(MessageWait, HandsAQuitOverWhole) {
  const Event first, second;
  const HANDLE handles[] = {first, second};
  MSG quit;
  std::fill_n(reinterpret_cast<char*>(&quit), sizeof quit, '\xCC');
  ASSERT_TRUE(PostThreadMessageA(GetCurrentThreadId(), WM_QUIT, 5, 6));
  EXPECT_EQ(SafeWaitWithMessageLoop(2, handles, ages, FALSE, &quit), 2u);
  EXPECT_EQ(quit.hwnd, nullptr);
  EXPECT_EQ(quit.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(quit.wParam, 5u);
  EXPECT_EQ(quit.lParam, 6);
  EXPECT_EQ(take_quit(), -1);  // the caller has it now
}

TEST_F(MessageWait, WithoutObjectsGivesZeroForAQuit) {
  PostQuitMessage(5);
  MSG quit{};
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, ages, TRUE, &quit), 0u);
  EXPECT_EQ(quit.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(quit.wParam, 5u);
}

TEST_F(MessageWait, IsOutlivedByAQuitThatNobodyTakes) {
  PostQuitMessage(5);
  const auto start = Clock::now();
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 100, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_GE(milliseconds_since(start), 100 - grain);
  EXPECT_EQ(take_quit(), 5);
}

TEST_F(MessageWait, SeesAnObjectWhileAQuitGoesRound) {
  PostQuitMessage(-1);
  const Event event;
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_APP) event.set();
  };
  std::thread other([&] { SendMessageA(window_.handle, WM_APP, 0, 0); });
  const HANDLE handle = event;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  other.join();
  MSG message;
  ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(static_cast<int>(message.wParam), -1);
}

// The wait does not sleep meanwhile, and the quit comes before painting and timers, but after posted messages.
TEST_F(SleepOfMessageWait, IsNoneWhileAQuitGoesRoundAndOnlyPostedMessagesComeThrough) {
  RecordingWindow visible(true);
  pump_until([&] { return visible.count(WM_PAINT) > 0; });
  visible.seen.clear();
  InvalidateRect(visible.handle, nullptr, TRUE);
  SetTimer(visible.handle, 1, 10, nullptr);
  PostQuitMessage(5);
  visible.post(WM_APP);
  // On a busy machine the time of the first wait may pass before it looks at the queue.
  const auto start = Clock::now();
  do {
    SafeWaitWithMessageLoop(0, nullptr, 100, FALSE, nullptr);
  } while (visible.count(WM_APP) == 0 && milliseconds_since(start) < static_cast<int>(ages));
  EXPECT_EQ(sleeps.sleeps.size(), 0u);
  EXPECT_EQ(visible.count(WM_APP), 1);
  EXPECT_EQ(visible.count(WM_PAINT), 0);
  EXPECT_EQ(visible.count(WM_TIMER), 0);
  KillTimer(visible.handle, 1);
}

// ---- one message ----------------------------------------------------------------------------------------------------

TEST_F(MessageWait, ServicingAnEmptyQueueDoesNothing) {
  MSG quit{};
  quit.message = 4711;
  EXPECT_EQ(SafeWaitServiceMessageQueue(0, &quit), 0);
  EXPECT_EQ(quit.message, 0u);
  EXPECT_EQ(SafeWaitServiceMessageQueue(0, nullptr), 0);
}

TEST_F(MessageWait, ServicingTakesOneMessageAtATime) {
  window_.post(WM_APP);
  window_.post(WM_APP);
  MSG quit{};
  quit.message = 4711;
  EXPECT_EQ(SafeWaitServiceMessageQueue(0, &quit), 1);
  EXPECT_EQ(window_.count(WM_APP), 1);
  EXPECT_EQ(quit.message, 0u);
  EXPECT_EQ(SafeWaitServiceMessageQueue(1, nullptr), 1);
  EXPECT_EQ(window_.count(WM_APP), 2);
  EXPECT_EQ(SafeWaitServiceMessageQueue(0, nullptr), 0);
}

TEST_F(MessageWait, ServicingCountsADroppedMessage) {
  window_.post(WM_LBUTTONDOWN);
  EXPECT_EQ(SafeWaitServiceMessageQueue(1, nullptr), 1);
  EXPECT_EQ(SafeWaitServiceMessageQueue(1, nullptr), 0);
  EXPECT_EQ(window_.count(WM_LBUTTONDOWN), 0);
}

TEST_F(MessageWait, ServicingHandsAQuitOverOrLeavesItThere) {
  PostQuitMessage(5);
  EXPECT_EQ(SafeWaitServiceMessageQueue(1, nullptr), 1);
  EXPECT_EQ(SafeWaitServiceMessageQueue(1, nullptr), 1);
  MSG quit{};
  EXPECT_EQ(SafeWaitServiceMessageQueue(1, &quit), 1);
  EXPECT_EQ(quit.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(quit.wParam, 5u);
  EXPECT_EQ(SafeWaitServiceMessageQueue(1, &quit), 0);
  EXPECT_EQ(quit.message, 0u);
}

}  // namespace
