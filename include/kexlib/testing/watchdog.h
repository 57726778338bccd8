// A watchdog: ends a test that does not end by itself.
//
//     const Watchdog watchdog("Export.AsksForTheFormat", std::chrono::seconds(20));
//     EXPECT_EQ(export_the_drawing(frame), IDOK);          // shows a dialog that nobody closes
//     EXPECT_EQ(watchdog.problem(), "");
//     // Export.AsksForTheFormat did not end within 20000 ms: the dialog "Format" was closed
//
// When the time is over and the thread that made the watchdog runs a message loop, the watchdog closes what keeps it: a
// menu, the moving of a window, then dialogs, one after the other. The test goes on, and problem() says what was
// closed.
//
// If the watchdog is still there after some more time, it writes a sentence and the stack of that thread to the error
// output and ends the process (TerminateProcess). Watchdog::End::at_once ends the process without closing anything: for
// a runner's watchdog over each test.
//
//     watchdog: Export.AsksForTheFormat did not end within 20000 ms
//       ntdll.dll+0x5c3a NtWaitForSingleObject
//       export.dll+0x1a2b wait_for_printer() export.cpp:17
//       ...
//
// Threads. Dialogs of the thread that made the watchdog are closed; make it and destroy it on that thread. The time is
// measured by another thread of its own.
#ifndef KEXLIB_TESTING_WATCHDOG_H
#define KEXLIB_TESTING_WATCHDOG_H

#include <kexlib/testing/code_place.h>
#include <kexlib/testing/dialog_driver.h>
#include <kexlib/windows.h>

#include <windows.h>

#include <chrono>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

namespace kexlib::testing {

/// Watches over its thread while it lives.
class Watchdog {
 public:
  /// The status of a process that a watchdog ended.
  static constexpr UINT exit_code = 99;

  /// What is done when the time is over.
  enum class End {
    after_closing,  ///< closes dialogs, and ends the process if that does not help within as much time again, at least
                    ///< 5 s
    at_once         ///< ends the process
  };

  /// Begins to measure the time.
  ///   what     what is watched, for the sentence
  ///   at_most  the time for it
  explicit Watchdog(std::string what, std::chrono::milliseconds at_most = std::chrono::seconds(60),
                    End end = End::after_closing)
      : sentence_(std::move(what) + " did not end within " + std::to_string(at_most.count()) + " ms"),
        last_line_("watchdog: " + sentence_ + "\n"),
        time_(at_most) {
    if (end == End::after_closing) {
      constexpr std::chrono::milliseconds least = std::chrono::seconds(5);
      time_ += at_most < least ? least : at_most;
      ticker_.emplace(at_most, [this] { tick(); });
    }
    const HANDLE process = GetCurrentProcess();
    DuplicateHandle(process, GetCurrentThread(), process, &watched_, 0, FALSE, DUPLICATE_SAME_ACCESS);
    thread_ = CreateThread(nullptr, 0, watch, this, 0, nullptr);
    // A thread that is still being made uses the heap and the loader's lock: the test begins after that.
    if (thread_) WaitForSingleObject(runs_, INFINITE);
  }

  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

  /// Ends the watch.
  ~Watchdog() {
    SetEvent(ends_);
    if (thread_) WaitForSingleObject(thread_, INFINITE);
    for (const HANDLE handle : {thread_, watched_, runs_, ends_})
      if (handle) CloseHandle(handle);
  }

  /// Empty if the time is not over or nothing had to be closed, otherwise a sentence that says what was closed.
  std::string problem() const { return closed_.empty() ? "" : sentence_ + ": " + closed_; }

 private:
  static constexpr int most_frames = 64;

  // On the watched thread, in whichever loop it runs.
  void tick() {
    ticker_->set_interval(std::chrono::milliseconds(20));
    GUITHREADINFO loop{};
    loop.cbSize = sizeof loop;
    GetGUIThreadInfo(GetCurrentThreadId(), &loop);
    if (loop.flags & GUI_INMENUMODE) {
      note("a menu was closed");
      EndMenu();
    } else if (loop.flags & GUI_INMOVESIZE) {
      note("the moving of a window was cancelled");
      PostMessageA(loop.hwndMoveSize, WM_KEYDOWN, VK_ESCAPE, 0);
    } else if (const HWND dialog = dialog_in_front()) {
      if (dialog != noted_) note("the dialog \"" + detail::narrow(window_text(dialog)) + "\" was closed");
      noted_ = dialog;
      closer_.close(dialog);
    }
  }

  void note(const std::string& what) {
    if (closed_.size() > 1000) return;  // what does not close
    closed_ += (closed_.empty() ? "" : ", ") + what;
  }

  static DWORD WINAPI watch(void* self) {
    auto& watchdog = *static_cast<Watchdog*>(self);
    SetEvent(watchdog.runs_);
    if (WaitForSingleObject(watchdog.ends_, static_cast<DWORD>(watchdog.time_.count())) == WAIT_OBJECT_0) return 0;
    // From here on the watched thread may own any lock, such as the heap's or the C library's: what may need one runs
    // on another thread, which gets its time.
    write(watchdog.last_line_.c_str());
    const HANDLE dump = CreateThread(nullptr, 0, write_stack, self, 0, nullptr);
    if (dump) WaitForSingleObject(dump, 10000);
    TerminateProcess(GetCurrentProcess(), exit_code);
    return 0;
  }

  static void write(const char* text) {
    DWORD written;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
    OutputDebugStringA(text);
  }

  static DWORD WINAPI write_stack(void* self) {
    const void* frames[most_frames];
    const int count = stack_of(static_cast<Watchdog*>(self)->watched_, frames);
    for (int i = 0; i < count; ++i) write(("  " + code_place(frames[i]) + "\n").c_str());
    return 0;
  }

  // Walks by the unwind information of the modules. Allocates nothing, since the thread may own the heap's lock.
  static int stack_of(HANDLE thread, const void* (&frames)[most_frames]) {
    int count = 0;
    alignas(16) CONTEXT context{};
    context.ContextFlags = CONTEXT_FULL;
    if (SuspendThread(thread) == static_cast<DWORD>(-1)) return 0;
    if (GetThreadContext(thread, &context)) {
      while (context.Rip && count < most_frames) {
        frames[count++] = reinterpret_cast<const void*>(context.Rip);
        DWORD64 base = 0, frame = 0;
        void* data = nullptr;
        if (auto* const function = RtlLookupFunctionEntry(context.Rip, &base, nullptr)) {
          RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, context.Rip, function, &context, &data, &frame, nullptr);
        } else {  // a function without a frame of its own: the address to return to is on the stack
          SIZE_T read = 0;
          DWORD64 next = 0;
          if (!ReadProcessMemory(GetCurrentProcess(), reinterpret_cast<const void*>(context.Rsp), &next, sizeof next,
                                 &read))
            break;
          context.Rip = next;
          context.Rsp += sizeof next;
        }
      }
    }
    ResumeThread(thread);
    return count;
  }

  const std::string sentence_, last_line_;
  std::chrono::milliseconds time_;
  std::string closed_;
  HWND noted_ = nullptr;
  DialogCloser closer_;
  const HANDLE runs_ = CreateEventA(nullptr, TRUE, FALSE, nullptr), ends_ = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  HANDLE watched_ = nullptr, thread_ = nullptr;
  std::optional<Ticker> ticker_;
};

}  // namespace kexlib::testing

#endif
