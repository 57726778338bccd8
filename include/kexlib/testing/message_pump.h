// A message pump for tests: dispatches messages until something has happened, and gives up after a time.
//
//     SetTimer(window, 1, 50, nullptr);
//     EXPECT_TRUE(pump_until([&] { return ticks == 3; }));           // not after ten seconds
//
//     const PumpEnd end = pump([&] { return ticks == 3; }, std::chrono::seconds(2));
//     if (end == PumpEnd::quit) ...
//
// A condition is anything that can be called without arguments and converted to bool. It is looked at when the queue is
// empty, and every 20 ms while no message comes: it may depend on another thread, or on a kernel object
// (WaitForSingleObject with no time). Between two looks the thread waits for messages (MsgWaitForMultipleObjects); it
// never sleeps for a fixed time.
//
// A window procedure that runs its own loop, as a message box does, holds the pump until that loop ends, whatever the
// time: kexlib/testing/watchdog.h is for those. An exception of the condition leaves the pump.
//
// Threads. Each call works on the queue of the calling thread.
#ifndef KEXLIB_TESTING_MESSAGE_PUMP_H
#define KEXLIB_TESTING_MESSAGE_PUMP_H

#include <kexlib/windows.h>

#include <windows.h>

#include <chrono>

namespace kexlib::testing {

/// How a pump ended.
enum class PumpEnd {
  happened,   ///< the condition holds
  timed_out,  ///< the time has passed
  quit        ///< there was a WM_QUIT, which is posted again
};

// What the functions below call.
namespace detail {

// Dispatches what is in the queue, until `deadline`: a window that posts itself messages never lets the queue get
// empty. Returns whether there was a WM_QUIT.
inline bool dispatch_until(HWND dialog, std::chrono::steady_clock::time_point deadline) {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return true;
    }
    if (!dialog || !IsDialogMessageA(dialog, &message)) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
    if (std::chrono::steady_clock::now() > deadline) return false;
  }
  return false;
}

}  // namespace detail

/// Dispatches the messages of this thread until the condition holds.
///   condition  is called at least once, after the messages that are in the queue
///   at_most    the time; a WM_QUIT ends the pump before
///   dialog     null, or a modeless dialog whose keys, such as Tab, move the focus (IsDialogMessage)
template <typename Condition>
PumpEnd pump(Condition&& condition, std::chrono::milliseconds at_most = std::chrono::seconds(10),
             HWND dialog = nullptr) {
  constexpr DWORD look_again_after = 20;
  const auto deadline = std::chrono::steady_clock::now() + at_most;
  for (;;) {
    const bool quit = detail::dispatch_until(dialog, deadline);
    if (condition()) return PumpEnd::happened;
    if (quit) return PumpEnd::quit;
    if (std::chrono::steady_clock::now() >= deadline) return PumpEnd::timed_out;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, look_again_after, QS_ALLINPUT);
  }
}

/// The same; returns whether the condition holds.
template <typename Condition>
bool pump_until(Condition&& condition, std::chrono::milliseconds at_most = std::chrono::seconds(10)) {
  return pump(condition, at_most) == PumpEnd::happened;
}

/// The same in a modeless dialog.
template <typename Condition>
bool pump_dialog_until(HWND dialog, Condition&& condition) {
  return pump(condition, std::chrono::seconds(10), dialog) == PumpEnd::happened;
}

/// Dispatches the messages that are in the queue, and waits for none.
inline void pump_waiting() {
  pump([] { return true; });
}

}  // namespace kexlib::testing

#endif
