// Does with modal dialogs what a person would, step by step, while the call that shows them waits.
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

// The dialog of this thread that is in front; null where there is none.
inline HWND dialog_in_front() {
  HWND found = nullptr;
  const auto take_first = [](HWND window, LPARAM result) -> BOOL {
    char name[16];
    if (!IsWindowVisible(window) || !GetClassNameA(window, name, sizeof name) || std::string(name) != "#32770")
      return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
  };
  EnumThreadWindows(GetCurrentThreadId(), take_first, reinterpret_cast<LPARAM>(&found));
  return found;
}

// Takes one step after another on the dialog in front, the first when a dialog is there. A dialog that a step opens,
// and waits for, is for the steps behind it. What takes too long is a failure, and ends all dialogs.
class DialogDriver {
 public:
  using Step = std::function<bool(HWND dialog)>;  // false: not yet, ask again

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

// Clicks on what `find` finds in the dialog. First the mouse is moved there, and a step later it is seen to have
// arrived: the display may still be telling of where it was.
inline DialogDriver::Step click_on(std::function<HWND(HWND dialog)> find) {
  return [find = std::move(find), moved = false](HWND dialog) mutable {
    const HWND target = find(dialog);
    if (!target || !IsWindowEnabled(target)) return false;
    POINT mouse;
    GetCursorPos(&mouse);
    if (moved && WindowFromPoint(mouse) == target) {
      mouse_button(MOUSEEVENTF_LEFTDOWN);
      mouse_button(MOUSEEVENTF_LEFTUP);
      return true;
    }
    move_mouse_over(target);
    moved = true;
    return false;
  };
}

inline std::string text_of(HWND window) {
  char text[256]{};
  GetWindowTextA(window, text, sizeof text);
  return text;
}

#endif
