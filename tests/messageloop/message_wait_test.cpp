#include <kexlib/messageloop/message_wait.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <support/files.h>
#include <support/import_override.h>
#include <support/message_pump.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

int milliseconds_since(Clock::time_point start) {
  return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
}

constexpr int grain = 32;      // two steps of GetTickCount
constexpr DWORD ages = 20000;  // ends a test that would hang

class Event {
 public:
  explicit Event(bool signalled = false) : handle_(CreateEventA(nullptr, FALSE, signalled, nullptr)) {}
  Event(Event&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Event& operator=(Event&&) = delete;
  ~Event() {
    if (handle_) CloseHandle(handle_);
  }

  void set() const { SetEvent(handle_); }
  bool take() const { return WaitForSingleObject(handle_, 0) == WAIT_OBJECT_0; }
  operator HANDLE() const { return handle_; }

 private:
  HANDLE handle_;
};

// A window that takes note of what its procedure gets, and does what the test wants on each message.
class RecordingWindow {
 public:
  explicit RecordingWindow(bool visible = false) {
    WNDCLASSA description{};
    description.lpfnWndProc = &procedure;
    description.hInstance = GetModuleHandleA(nullptr);
    description.lpszClassName = "message_wait_test";
    description.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    RegisterClassA(&description);
    const DWORD style = visible ? WS_OVERLAPPEDWINDOW | WS_VISIBLE : WS_OVERLAPPED;
    handle = CreateWindowA("message_wait_test", "wait", style, 100, 100, 300, 200, visible ? nullptr : HWND_MESSAGE,
                           nullptr, description.hInstance, nullptr);
    SetWindowLongPtrA(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ~RecordingWindow() { DestroyWindow(handle); }
  RecordingWindow(const RecordingWindow&) = delete;
  RecordingWindow& operator=(const RecordingWindow&) = delete;

  int count(UINT message) const { return static_cast<int>(std::count(seen.begin(), seen.end(), message)); }
  void post(UINT message, WPARAM w = 0, LPARAM l = 0) const { EXPECT_TRUE(PostMessageA(handle, message, w, l)); }

  HWND handle;
  std::vector<UINT> seen;
  std::function<void(UINT, WPARAM)> on_message;
  LRESULT answer = 0;  // to WM_APP and above

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    auto* self = reinterpret_cast<RecordingWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (self) {
      self->seen.push_back(message);
      if (self->on_message) self->on_message(message, w);
      if (message >= WM_APP) return self->answer;
    }
    return DefWindowProcA(window, message, w, l);
  }
};

// What has been left in the queue: a WM_QUIT, whose exit code it takes, or nothing (-1).
int take_quit() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
    if (message.message == WM_QUIT) return static_cast<int>(message.wParam);
  return -1;
}

class MessageWait : public testing::Test {
 protected:
  MessageWait() { pump_waiting(); }
  ~MessageWait() override { take_quit(); }

  RecordingWindow window_;
};

// ---- objects -------------------------------------------------------------------------------------------------------

TEST_F(MessageWait, GivesTheLowestSignalledIndexAndTakesThatObjectOnly) {
  const Event first, second(true), third(true);
  const HANDLE handles[] = {first, second, third};
  EXPECT_EQ(SafeWaitWithMessageLoop(3, handles, ages, FALSE, nullptr), WAIT_OBJECT_0 + 1);
  EXPECT_FALSE(second.take());
  EXPECT_TRUE(third.take());
}

TEST_F(MessageWait, EndsWhenAnObjectIsSignalledDuringTheSleep) {
  const Event first, second;
  const HANDLE handles[] = {first, second};
  std::thread other([&] { second.set(); });
  EXPECT_EQ(SafeWaitWithMessageLoop(2, handles, INFINITE, FALSE, nullptr), WAIT_OBJECT_0 + 1);
  other.join();
}

TEST_F(MessageWait, TakesAMutexAndSaysWhenItWasAbandoned) {
  const HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
  const Event never;
  const HANDLE handles[] = {never, mutex};
  EXPECT_EQ(SafeWaitWithMessageLoop(2, handles, ages, FALSE, nullptr), WAIT_OBJECT_0 + 1);
  EXPECT_TRUE(ReleaseMutex(mutex));

  std::thread([&] { WaitForSingleObject(mutex, INFINITE); }).join();
  EXPECT_EQ(SafeWaitWithMessageLoop(2, handles, ages, FALSE, nullptr), WAIT_ABANDONED_0 + 1);
  EXPECT_TRUE(ReleaseMutex(mutex));  // it is ours now
  CloseHandle(mutex);
}

TEST_F(MessageWait, SaysThatAMutexWasAbandonedDuringTheSleep) {
  const HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
  const Event held, end;
  std::thread owner([&] {
    WaitForSingleObject(mutex, INFINITE);
    held.set();
    WaitForSingleObject(end, INFINITE);
  });
  ASSERT_EQ(WaitForSingleObject(held, ages), WAIT_OBJECT_0);
  // Sent by a third thread while this one sleeps: then the owner ends.
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_APP) end.set();
  };
  std::thread sender([&] { SendMessageA(window_.handle, WM_APP, 0, 0); });
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &mutex, ages, FALSE, nullptr), WAIT_ABANDONED_0);
  EXPECT_TRUE(ReleaseMutex(mutex));
  owner.join();
  sender.join();
  CloseHandle(mutex);
}

TEST_F(MessageWait, WaitsForAThread) {
  const Event end;
  std::thread thread([&] { WaitForSingleObject(end, INFINITE); });
  const HANDLE handle =
      OpenThread(SYNCHRONIZE, FALSE, GetThreadId(reinterpret_cast<HANDLE>(pthread_gethandle(thread.native_handle()))));
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, 20, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  end.set();
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  thread.join();
  CloseHandle(handle);
}

TEST(MessageWaitInChildProcess, WaitsForAProcess) {
  std::string command = "\"" + (program_folder() / "kexlib_host.exe").string() + "\" silent";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process;
  ASSERT_TRUE(
      CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &process.hProcess, ages, FALSE, nullptr), WAIT_OBJECT_0);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  EXPECT_EQ(code, 7u);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

// As many objects as are asked for, none signalled.
struct Events {
  explicit Events(size_t count) : events(count), handles(events.begin(), events.end()) {}
  DWORD wait(DWORD timeout) const {
    return SafeWaitWithMessageLoop(static_cast<DWORD>(handles.size()), handles.data(), timeout, FALSE, nullptr);
  }
  std::vector<Event> events;
  std::vector<HANDLE> handles;
};

TEST_F(MessageWait, SleepsOnSixtyThreeObjects) {
  for (const size_t count : {size_t{1}, size_t{63}}) {
    const Events objects(count);
    EXPECT_EQ(objects.wait(20), static_cast<DWORD>(WAIT_TIMEOUT));
    objects.events.back().set();
    EXPECT_EQ(objects.wait(ages), WAIT_OBJECT_0 + count - 1);
    std::thread other([&] { objects.events.back().set(); });
    EXPECT_EQ(objects.wait(ages), WAIT_OBJECT_0 + count - 1);
    other.join();
  }
}

TEST_F(MessageWait, AsksSixtyFourObjectsButCannotSleepOnThem) {
  const Events objects(64);
  objects.events.back().set();
  EXPECT_EQ(objects.wait(ages), WAIT_OBJECT_0 + 63);
  EXPECT_EQ(objects.wait(0), static_cast<DWORD>(WAIT_TIMEOUT));

  window_.post(WM_APP);
  EXPECT_EQ(objects.wait(ages), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(window_.count(WM_APP), 1);  // the queue had to be empty before it failed
}

TEST_F(MessageWait, CannotAskMoreThanSixtyFourObjects) {
  const Events objects(65);
  objects.events.front().set();
  window_.post(WM_APP);
  EXPECT_EQ(objects.wait(ages), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(window_.count(WM_APP), 0);
}

TEST_F(MessageWait, TellsABadHandleAsTheSystemDoes) {
  const Event good;
  const HANDLE closed = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  CloseHandle(closed);
  for (const HANDLE bad : {HANDLE{nullptr}, closed}) {
    const HANDLE handles[] = {good, bad};
    for (const DWORD timeout : {DWORD{0}, ages}) {
      SetLastError(0);
      EXPECT_EQ(SafeWaitWithMessageLoop(2, handles, timeout, FALSE, nullptr), WAIT_FAILED);
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    }
  }
}

// ---- time ----------------------------------------------------------------------------------------------------------

TEST_F(MessageWait, WithoutTimeAsksTheObjectsOnceAndLeavesTheQueueAlone) {
  window_.post(WM_APP);
  MSG quit{};
  quit.message = 4711;
  Event event;
  const HANDLE handle = event;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, 0, FALSE, &quit), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 0, FALSE, &quit), static_cast<DWORD>(WAIT_TIMEOUT));
  event.set();
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, 0, FALSE, &quit), WAIT_OBJECT_0);
  EXPECT_EQ(window_.count(WM_APP), 0);
  EXPECT_EQ(quit.message, 4711u);
}

TEST_F(MessageWait, WithoutObjectsIsASleepThatKeepsMessagesGoing) {
  for (int i = 0; i < 10; ++i) window_.post(WM_APP);
  MSG quit{};
  quit.message = 4711;
  const auto start = Clock::now();
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 150, FALSE, &quit), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_GE(milliseconds_since(start), 150 - grain);
  EXPECT_EQ(window_.count(WM_APP), 10);
  EXPECT_EQ(quit.message, 0u);
}

TEST_F(MessageWait, KeepsTheTimeInAFloodThatNeverEnds) {
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_APP) window_.post(WM_APP);
  };
  window_.post(WM_APP);
  const auto start = Clock::now();
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 100, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_GE(milliseconds_since(start), 100 - grain);
  EXPECT_LT(milliseconds_since(start), 5000);
  window_.on_message = {};
}

DWORD first_tick;
DWORD real_first_tick;

// The tick counter, but close to its end.
DWORD WINAPI late_tick_count() { return first_tick + (GetTickCount() - real_first_tick); }

TEST_F(MessageWait, SurvivesTheEndOfTheTickCounter) {
  first_tick = 0xFFFFFFFF - 50;
  real_first_tick = GetTickCount();
  const ImportOverride late("kexlib.dll", "KERNEL32.dll", "GetTickCount", &late_tick_count);
  ASSERT_TRUE(late.made());
  const auto start = Clock::now();
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 200, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_GE(milliseconds_since(start), 200 - grain);
  EXPECT_LT(milliseconds_since(start), 5000);
  EXPECT_LT(late_tick_count(), first_tick);  // it did pass its end
}

// How the library asks and sleeps.
struct Sleeps {
  int polls = 0;
  std::vector<std::array<DWORD, 4>> sleeps;  // count, all, time, mask
} sleeps;

DWORD WINAPI counted_poll(DWORD count, const HANDLE* handles, BOOL all, DWORD time) {
  ++sleeps.polls;
  return WaitForMultipleObjects(count, handles, all, time);
}

DWORD WINAPI counted_sleep(DWORD count, const HANDLE* handles, BOOL all, DWORD time, DWORD mask) {
  sleeps.sleeps.push_back({count, static_cast<DWORD>(all), time, mask});
  return MsgWaitForMultipleObjects(count, handles, all, time, mask);
}

class SleepOfMessageWait : public MessageWait {
 protected:
  SleepOfMessageWait() {
    sleeps = {};
    EXPECT_TRUE(poll_.made());
    EXPECT_TRUE(sleep_.made());
  }

  ImportOverride poll_{"kexlib.dll", "KERNEL32.dll", "WaitForMultipleObjects", &counted_poll};
  ImportOverride sleep_{"kexlib.dll", "USER32.dll", "MsgWaitForMultipleObjects", &counted_sleep};
};

double processor_milliseconds() {
  FILETIME made, ended, kernel, user;
  GetThreadTimes(GetCurrentThread(), &made, &ended, &kernel, &user);
  return (static_cast<double>(kernel.dwLowDateTime) + static_cast<double>(user.dwLowDateTime)) / 1e4;
}

TEST_F(SleepOfMessageWait, CostsNothingWhileNothingHappens) {
  const Event event;
  const HANDLE handle = event;
  const double before = processor_milliseconds();
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, 500, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_LT(processor_milliseconds() - before, 50);
  EXPECT_EQ(sleeps.polls, 1);
  ASSERT_EQ(sleeps.sleeps.size(), 1u);
}

TEST_F(SleepOfMessageWait, IsForAnyObjectAndAnyKindOfMessage) {
  const Event event;
  const HANDLE handle = event;
  SafeWaitWithMessageLoop(1, &handle, 100, FALSE, nullptr);
  ASSERT_EQ(sleeps.sleeps.size(), 1u);
  EXPECT_EQ(sleeps.sleeps[0][0], 1u);
  EXPECT_EQ(sleeps.sleeps[0][1], 0u);
  EXPECT_LE(sleeps.sleeps[0][2], 100u);
  EXPECT_EQ(sleeps.sleeps[0][3], 0x04FFu);
}

TEST_F(SleepOfMessageWait, HasNoLimitWhereTheWaitHasNone) {
  std::thread other([&] { PostMessageA(window_.handle, WM_APP, 0, 0); });
  window_.on_message = [](UINT message, WPARAM) {
    if (message == WM_APP) PostQuitMessage(3);
  };
  MSG quit{};
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, INFINITE, FALSE, &quit), 0u);
  other.join();
  for (const auto& sleep : sleeps.sleeps) EXPECT_EQ(sleep[2], INFINITE);
  EXPECT_EQ(sleeps.polls, 0);  // there is nothing to ask
}

TEST_F(SleepOfMessageWait, HasTheRestOfTheTimeOnlyAfterAMessage) {
  window_.on_message = [](UINT message, WPARAM) {
    if (message == WM_APP) Sleep(100);  // the work of a handler
  };
  window_.post(WM_APP);
  SafeWaitWithMessageLoop(0, nullptr, 200, FALSE, nullptr);
  ASSERT_EQ(sleeps.sleeps.size(), 1u);
  EXPECT_LE(sleeps.sleeps[0][2], 100u + grain);
}

// ---- messages ------------------------------------------------------------------------------------------------------

// The handler of the thousandth message signals: the next message must not be handled any more.
TEST_F(MessageWait, NoticesAnObjectInAFloodOfMessages) {
  constexpr int posted = 100000;
  constexpr int signalling = 1000;
  int handled = 0;
  const Event ready, flooded, signal;
  HWND target = nullptr;
  DWORD result = WAIT_FAILED;
  // On a thread of its own: the rest of the flood goes with it.
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

// A message that somebody looked at and left is no news to the system: a sleep would not end for it.
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

// A message box has a loop of its own, which knows nothing of the wait.
TEST_F(MessageWait, IsHeldUpByAHandlerThatRunsAModalLoop) {
  const Event event;
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_APP) {
      SetTimer(window_.handle, 1, 300, nullptr);
      event.set();
      MessageBoxA(nullptr, "held up", "message_wait_test", MB_OK);
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
  // The time is over by then, but objects are asked first.
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
  SafeWaitWithMessageLoop(0, nullptr, 50, FALSE, nullptr);
  EXPECT_EQ(window_.count(WM_KEYDOWN), 1);
  EXPECT_EQ(window_.count(WM_CHAR), 1);
}

const std::vector<UINT> around_the_filter = {0x001F, 0x0020, 0x0021, 0x00A0, 0x00FF, 0x0100, 0x0102,
                                             0x0109, 0x010A, 0x01FF, 0x0200, 0x0201, 0x020E, 0x020F};

TEST_F(MessageWait, DropsExactlyCursorKeyboardAndMouseMessages) {
  for (const UINT message : around_the_filter) window_.post(message);
  SafeWaitWithMessageLoop(0, nullptr, 50, TRUE, nullptr);
  EXPECT_EQ(window_.seen, (std::vector<UINT>{0x001F, 0x0021, 0x00A0, 0x00FF, 0x010A, 0x01FF, 0x020F}));
  window_.seen.clear();
  pump_waiting();
  EXPECT_EQ(window_.seen, std::vector<UINT>{});  // dropped, not left
}

TEST_F(MessageWait, DropsNothingUnlessAsked) {
  for (const UINT message : around_the_filter) window_.post(message);
  SafeWaitWithMessageLoop(0, nullptr, 50, FALSE, nullptr);
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

// ---- quitting ------------------------------------------------------------------------------------------------------

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
  EXPECT_EQ(take_quit(), -1);  // the caller's now
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
  SafeWaitWithMessageLoop(0, nullptr, 100, FALSE, nullptr);
  EXPECT_EQ(sleeps.sleeps.size(), 0u);
  EXPECT_EQ(visible.count(WM_APP), 1);
  EXPECT_EQ(visible.count(WM_PAINT), 0);
  EXPECT_EQ(visible.count(WM_TIMER), 0);
  KillTimer(visible.handle, 1);
}

// ---- one message ---------------------------------------------------------------------------------------------------

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

// ---- with the real mouse and keyboard ------------------------------------------------------------------------------

class MessageWaitOnScreen : public testing::Test {
 protected:
  void SetUp() override {
    SetCursorPos(5, 5);
    SetForegroundWindow(window_.handle);
    ASSERT_TRUE(pump_until([&] { return GetForegroundWindow() == window_.handle && GetFocus() == window_.handle; }));
    window_.seen.clear();
  }
  ~MessageWaitOnScreen() override {
    ReleaseCapture();
    SetCursorPos(5, 5);
    pump_waiting();
  }

  static void key(WORD code, DWORD flags) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = code;
    input.ki.dwFlags = flags;
    ASSERT_EQ(SendInput(1, &input, sizeof input), 1u);
  }
  static void press_a() {
    key('A', 0);
    key('A', KEYEVENTF_KEYUP);
  }
  static void mouse(DWORD what) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = what;
    ASSERT_EQ(SendInput(1, &input, sizeof input), 1u);
  }
  void point_at(int x, int y) const {
    POINT place{x, y};
    ClientToScreen(window_.handle, &place);
    SetCursorPos(place.x, place.y);
  }

  RecordingWindow window_{true};
};

TEST_F(MessageWaitOnScreen, GivesAKeyPressToTheWindow) {
  const Event done;
  window_.on_message = [&](UINT message, WPARAM w) {
    if (message == WM_KEYUP && w == 'A') done.set();
  };
  press_a();
  const HANDLE handle = done;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  EXPECT_EQ(window_.count(WM_KEYDOWN), 1);
  EXPECT_EQ(window_.count(WM_CHAR), 1);
}

TEST_F(MessageWaitOnScreen, DropsAKeyPress) {
  press_a();
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 200, TRUE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  pump_waiting();
  EXPECT_EQ(window_.count(WM_KEYDOWN), 0);
  EXPECT_EQ(window_.count(WM_CHAR), 0);
  EXPECT_EQ(window_.count(WM_KEYUP), 0);
}

TEST_F(MessageWaitOnScreen, GivesAClickToTheWindow) {
  const Event done;
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_LBUTTONUP) done.set();
  };
  point_at(20, 20);
  mouse(MOUSEEVENTF_LEFTDOWN);
  mouse(MOUSEEVENTF_LEFTUP);
  const HANDLE handle = done;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  EXPECT_EQ(window_.count(WM_LBUTTONDOWN), 1);
  EXPECT_GE(window_.count(WM_MOUSEMOVE), 1);
}

// The system itself sends WM_SETCURSOR, past the queue: it is no message that could be dropped.
TEST_F(MessageWaitOnScreen, DropsAClickButNotTheQuestionForTheCursor) {
  point_at(20, 20);
  mouse(MOUSEEVENTF_LEFTDOWN);
  mouse(MOUSEEVENTF_LEFTUP);
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 200, TRUE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  pump_waiting();
  EXPECT_EQ(window_.count(WM_MOUSEMOVE), 0);
  EXPECT_EQ(window_.count(WM_LBUTTONDOWN), 0);
  EXPECT_EQ(window_.count(WM_LBUTTONUP), 0);
  EXPECT_GE(window_.count(WM_SETCURSOR), 1);
}

TEST_F(MessageWaitOnScreen, LetsTheMouseOverTheTitleBarThrough) {
  const Event done;
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_NCMOUSEMOVE) done.set();
  };
  point_at(60, -10);
  const HANDLE handle = done;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, TRUE, nullptr), WAIT_OBJECT_0);
}

TEST_F(MessageWaitOnScreen, LeavesTheCaptureWhereTheReleaseOfAButtonWasDropped) {
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_LBUTTONDOWN) SetCapture(window_.handle);
    if (message == WM_LBUTTONUP) ReleaseCapture();
  };
  point_at(20, 20);
  mouse(MOUSEEVENTF_LEFTDOWN);
  ASSERT_TRUE(pump_until([&] { return GetCapture() == window_.handle; }));
  mouse(MOUSEEVENTF_LEFTUP);
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 200, TRUE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  pump_waiting();
  EXPECT_EQ(GetCapture(), window_.handle);
}

}  // namespace
