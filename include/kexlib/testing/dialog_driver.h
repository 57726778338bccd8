// A driver of modal dialogs: it does what a user does while the call that shows the dialog waits.
//
//     DialogDriver user;
//     user.add("read the title", [](HWND dialog) {
//       EXPECT_EQ(window_text(dialog), L"Export");
//       return true;
//     });
//     user.add("press OK", [](HWND dialog) { return PostMessage(dialog, WM_COMMAND, IDOK, 0) != 0; });
//     EXPECT_EQ(ask_for_a_name(frame), IDOK);       // a message box, a dialog, a property sheet
//     EXPECT_EQ(user.problem(), "");                // "step 2 of 2, press OK: it took too long"
//
// A step gets the thread's topmost dialog and returns true when it is done; a step that returns false is called again
// after 20 ms. Steps begin when there is a dialog. If a step opens another dialog, the following steps are for that
// one. A step that posts its input, rather than sends it, has ended before the dialog reacts: let the next one wait for
// what it expects.
//
// When the time is over, or a step throws, the driver closes the dialogs of its thread one after the other, so that the
// test ends; problem() says which step it was.
//
// kexlib/testing/task_dialog_driver.h has the steps for a task dialog.
//
// Threads. Steps run on the thread that made the driver, from a timer, for dialogs of that thread. Use the object on
// it.
#ifndef KEXLIB_TESTING_DIALOG_DRIVER_H
#define KEXLIB_TESTING_DIALOG_DRIVER_H

#include <kexlib/windows.h>

#include <windows.h>

#include <chrono>
#include <cstddef>
#include <cstring>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kexlib::testing {

/// The text of a window or control of this process, whole (WM_GETTEXT).
inline std::wstring window_text(HWND window) {
  std::wstring text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(
      SendMessageW(window, WM_GETTEXT, static_cast<WPARAM>(text.size()), reinterpret_cast<LPARAM>(text.data()))));
  return text;
}

// What the functions and classes below call.
namespace detail {

inline bool has_class(HWND window, const char* wanted) {
  char name[64] = "";
  GetClassNameA(window, name, sizeof name);
  return lstrcmpiA(name, wanted) == 0;
}

inline BOOL CALLBACK add_dialog(HWND window, LPARAM found) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process == GetCurrentProcessId() && IsWindowVisible(window) && has_class(window, "#32770"))
    reinterpret_cast<std::vector<HWND>*>(found)->push_back(window);
  return TRUE;
}

// In the code page of the process, for sentences.
inline std::string narrow(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string made(text.size() * 4, '\0');
  const int size = static_cast<int>(made.size());
  made.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_ACP, 0, text.data(), length, made.data(), size, nullptr, nullptr)));
  return made;
}

}  // namespace detail

/// The visible dialogs of a thread, topmost first: dialogs, message boxes, property sheets, task dialogs, all of the
/// system's class #32770.
inline std::vector<HWND> dialogs_of_thread(DWORD thread = GetCurrentThreadId()) {
  std::vector<HWND> found;
  EnumThreadWindows(thread, detail::add_dialog, reinterpret_cast<LPARAM>(&found));
  return found;
}

/// The visible dialogs of all threads of this process, topmost first.
inline std::vector<HWND> dialogs_of_process() {
  std::vector<HWND> found;
  EnumWindows(detail::add_dialog, reinterpret_cast<LPARAM>(&found));
  return found;
}

/// The topmost dialog of this thread that is enabled; null if there is none.
inline HWND dialog_in_front() {
  for (const HWND dialog : dialogs_of_thread())
    if (IsWindowEnabled(dialog)) return dialog;
  return nullptr;
}

/// Closes dialogs of its thread that may not want to: with the close box at the first call for a dialog, with Cancel at
/// the second one, and then by EndDialog. A dialog may need time, or ask: call it until there is no dialog.
class DialogCloser {
 public:
  /// Does the next for this dialog.
  void close(HWND dialog) {
    const int attempt = attempts_[dialog]++;
    if (attempt == 0)
      PostMessageA(dialog, WM_CLOSE, 0, 0);
    else if (attempt == 1)
      PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    else
      EndDialog(dialog, IDCANCEL);
  }

 private:
  std::map<HWND, int> attempts_;
};

/// Calls a function again and again, on the thread that makes it, whichever loop of that thread dispatches messages.
class Ticker {
 public:
  /// The function must not throw.
  Ticker(std::chrono::milliseconds after, std::function<void()> tick) : tick_(std::move(tick)) { set_interval(after); }

  Ticker(const Ticker&) = delete;
  Ticker& operator=(const Ticker&) = delete;

  /// From now on: the time between two calls. The function may call it.
  void set_interval(std::chrono::milliseconds interval) {
    SetTimer(window_, reinterpret_cast<UINT_PTR>(this), static_cast<UINT>(interval.count()), ticked);
  }

  /// The function is not called any more.
  ~Ticker() { DestroyWindow(window_); }

 private:
  // A timer of a window keeps the identifier that it is given.
  static void CALLBACK ticked(HWND, UINT, UINT_PTR id, DWORD) { reinterpret_cast<Ticker*>(id)->tick_(); }

  std::function<void()> tick_;
  const HWND window_ = CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
};

/// Does steps on the dialogs that its thread shows.
class DialogDriver {
 public:
  /// Gets the dialog; false: not yet, call again.
  using Step = std::function<bool(HWND dialog)>;

  /// Begins when there is a dialog. `at_most` is the time for all steps and for the dialog to close, from now on.
  explicit DialogDriver(std::chrono::milliseconds at_most = std::chrono::seconds(15))
      : deadline_(std::chrono::steady_clock::now() + at_most), earlier_(latest()) {
    latest() = this;
  }

  DialogDriver(const DialogDriver&) = delete;
  DialogDriver& operator=(const DialogDriver&) = delete;

  /// What is not done yet is not done any more.
  ~DialogDriver() {
    DialogDriver** place = &latest();
    while (*place != this) place = &(*place)->earlier_;
    *place = earlier_;
  }

  /// Appends a step; `what` says what it does. A step may append steps.
  void add(std::string what, Step step) { steps_.emplace_back(std::move(what), std::move(step)); }

  /// Whether all steps are done.
  bool is_done() const { return next_ == steps_.size(); }

  /// Empty if all steps are done and nothing had to be closed, otherwise a sentence.
  std::string problem() const {
    if (!problem_.empty()) return problem_;
    return is_done() ? "" : step_text(next_) + ": it was not reached";
  }

 private:
  void tick() {
    const HWND dialog = latest() == this ? dialog_in_front() : nullptr;
    if (!dialog) return;
    if (problem_.empty() && std::chrono::steady_clock::now() > deadline_) {
      if (is_done())
        problem_ = "the dialog \"" + detail::narrow(window_text(dialog)) + "\" stays after the last step";
      else
        problem_ = step_text(busy_with_ ? running_ : next_) + ": it took too long";
    }
    if (!problem_.empty()) return closer_.close(dialog);
    if (dialog == busy_with_ || is_done()) return;

    // The step counts as done while it runs: it may show another dialog, for which the following ones are.
    const HWND outer = std::exchange(busy_with_, dialog);
    const std::size_t outer_step = std::exchange(running_, next_);
    const std::size_t step = next_++;
    const Step function = steps_[step].second;
    bool done = false;
    try {
      done = function(dialog);
    } catch (const std::exception& exception) {
      problem_ = step_text(step) + ": it threw \"" + exception.what() + "\"";
    } catch (...) {
      problem_ = step_text(step) + ": it threw an exception";
    }
    busy_with_ = outer;
    running_ = outer_step;
    if (!done) next_ = step;
  }

  static DialogDriver*& latest() {
    thread_local DialogDriver* one = nullptr;
    return one;
  }

  std::string step_text(std::size_t step) const {
    return "step " + std::to_string(step + 1) + " of " + std::to_string(steps_.size()) + ", " + steps_[step].first;
  }

  const std::chrono::steady_clock::time_point deadline_;
  std::vector<std::pair<std::string, Step>> steps_;
  std::size_t next_ = 0, running_ = 0;
  HWND busy_with_ = nullptr;
  std::string problem_;
  DialogDriver* earlier_;
  DialogCloser closer_;
  Ticker ticker_{std::chrono::milliseconds(20), [this] { tick(); }};
};

}  // namespace kexlib::testing

#endif
