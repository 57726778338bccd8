// Shared by the tests of the message-pumping waits: events, a window that records, and an observer of the sleep.
#ifndef TESTS_MESSAGELOOP_MESSAGE_WAIT_FIXTURE_H
#define TESTS_MESSAGELOOP_MESSAGE_WAIT_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/messageloop/message_wait.h>

#include <windows.h>

#include <support/import_override.h>
#include <support/message_pump.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <utility>
#include <vector>

using Clock = std::chrono::steady_clock;

inline int milliseconds_since(Clock::time_point start) {
  return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
}

inline constexpr int grain = 32;      // two steps of GetTickCount
inline constexpr DWORD ages = 20000;  // ends a test that would hang

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

// A window that records the messages of its procedure and runs the test's action for each.
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
  LRESULT answer = 0;  // the result for WM_APP and above

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

// Removes a WM_QUIT from the queue and returns its exit code; -1 if there is none.
inline int take_quit() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
    if (message.message == WM_QUIT) return static_cast<int>(message.wParam);
  return -1;
}

// Waits until the window has got this message, however slow the machine is. What was posted before has then been
// handled or dropped.
inline void wait_for(RecordingWindow& window, UINT message, BOOL drop_user_input) {
  const Event seen;
  const auto handler = window.on_message;
  window.on_message = [&](UINT got, WPARAM w) {
    if (got == message) seen.set();
    if (handler) handler(got, w);
  };
  const HANDLE handle = seen;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, drop_user_input, nullptr), WAIT_OBJECT_0);
  window.on_message = handler;
}

class MessageWait : public testing::Test {
 protected:
  MessageWait() { pump_waiting(); }
  ~MessageWait() override { take_quit(); }

  RecordingWindow window_;
};

// The library's tick counter: the ticks of its next calls. The last one stays until the test gives others.
inline std::vector<DWORD> ticks;

inline DWORD WINAPI next_tick_count() {
  const DWORD tick = ticks.front();
  if (ticks.size() > 1) ticks.erase(ticks.begin());
  return tick;
}

// Gives the library `ticks` during its lifetime.
class GivenTicks {
 public:
  explicit GivenTicks(std::vector<DWORD> first) {
    ticks = std::move(first);
    EXPECT_TRUE(given_.made());
  }

 private:
  ImportOverride given_{"kexlib.dll", "KERNEL32.dll", "GetTickCount", &next_tick_count};
};

// How the library polls and sleeps.
struct Sleeps {
  int polls = 0;
  DWORD poll_time = 0;                       // the longest time-out of a poll
  std::vector<std::array<DWORD, 4>> sleeps;  // count, all, time, mask
  std::function<void()> before_sleep;
};
inline Sleeps sleeps;

inline DWORD WINAPI counted_poll(DWORD count, const HANDLE* handles, BOOL all, DWORD time) {
  ++sleeps.polls;
  sleeps.poll_time = std::max(sleeps.poll_time, time);
  return WaitForMultipleObjects(count, handles, all, time);
}

inline DWORD WINAPI counted_sleep(DWORD count, const HANDLE* handles, BOOL all, DWORD time, DWORD mask) {
  sleeps.sleeps.push_back({count, static_cast<DWORD>(all), time, mask});
  if (sleeps.before_sleep) sleeps.before_sleep();
  return MsgWaitForMultipleObjects(count, handles, all, time, mask);
}

// Records the library's calls in `sleeps` during its lifetime.
class SleepObserver {
 public:
  SleepObserver() {
    sleeps = {};
    EXPECT_TRUE(poll_.made());
    EXPECT_TRUE(sleep_.made());
  }

 private:
  ImportOverride poll_{"kexlib.dll", "KERNEL32.dll", "WaitForMultipleObjects", &counted_poll};
  ImportOverride sleep_{"kexlib.dll", "USER32.dll", "MsgWaitForMultipleObjects", &counted_sleep};
};

class SleepOfMessageWait : public MessageWait {
 private:
  SleepObserver observer_;
};

#endif
