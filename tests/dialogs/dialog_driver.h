// Operates modal dialogs as a user does, step by step, while the call that shows them waits.
#ifndef TESTS_DIALOGS_DIALOG_DRIVER_H
#define TESTS_DIALOGS_DIALOG_DRIVER_H

#include <gtest/gtest.h>

#include <windows.h>

#include <support/user_input.h>

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

inline bool is_a_dialog(HWND window) {
  char name[16];
  return IsWindowVisible(window) && GetClassNameA(window, name, sizeof name) && std::string(name) == "#32770";
}

// The topmost dialog of this thread; null if there is none.
inline HWND dialog_in_front() {
  HWND found = nullptr;
  const auto take_first = [](HWND window, LPARAM result) -> BOOL {
    if (!is_a_dialog(window)) return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
  };
  EnumThreadWindows(GetCurrentThreadId(), take_first, reinterpret_cast<LPARAM>(&found));
  return found;
}

// The number of dialogs that this thread shows. A press that opens a dialog takes effect after its step has ended.
inline int dialogs_of_this_thread() {
  int count = 0;
  const auto count_dialogs = [](HWND window, LPARAM result) -> BOOL {
    *reinterpret_cast<int*>(result) += is_a_dialog(window);
    return TRUE;
  };
  EnumThreadWindows(GetCurrentThreadId(), count_dialogs, reinterpret_cast<LPARAM>(&count));
  return count;
}

// Runs one step after another on the topmost dialog, starting when a dialog exists. If a step opens a dialog and waits
// for it, the following steps apply to that dialog. A timeout is a failure and closes all dialogs.
class DialogDriver {
 public:
  using Step = std::function<bool(HWND dialog)>;  // false: not yet, call again

  explicit DialogDriver(std::vector<Step> steps) : steps_(std::move(steps)) {
    running() = this;
    timer_ = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) { running()->tick(); });
  }
  DialogDriver(const DialogDriver&) = delete;
  DialogDriver& operator=(const DialogDriver&) = delete;
  ~DialogDriver() {
    KillTimer(nullptr, timer_);
    EXPECT_EQ(next_, steps_.size()) << "steps were not reached";
    running() = nullptr;
  }

 private:
  static DialogDriver*& running() {
    static DialogDriver* driver;
    return driver;
  }

  void tick() {
    const HWND dialog = dialog_in_front();
    if (!dialog || dialog == busy_with_) return;
    if (std::chrono::steady_clock::now() > deadline_) {
      ADD_FAILURE() << "step " << next_ << " of " << steps_.size() << " takes too long";
      EndDialog(dialog, 0);
      return;
    }
    if (next_ == steps_.size()) return;
    const HWND outer = std::exchange(busy_with_, dialog);
    const size_t step = next_++;
    const bool done = steps_[step](dialog);
    busy_with_ = outer;
    if (!done) next_ = step;
  }

  std::vector<Step> steps_;
  size_t next_ = 0;
  HWND busy_with_ = nullptr;
  UINT_PTR timer_;
  const std::chrono::steady_clock::time_point deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(15);
};

// Clicks on the window that `find` returns, once the mouse has arrived there.
inline DialogDriver::Step click_on(std::function<HWND(HWND dialog)> find) {
  return [find = std::move(find)](HWND dialog) {
    const HWND target = find(dialog);
    if (!target || !IsWindowEnabled(target) || !mouse_reaches(target)) return false;
    click_here();
    return true;
  };
}

#endif
