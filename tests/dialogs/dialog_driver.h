// The installed driver of dialogs, which fails the test where a step is not done.
#ifndef TESTS_DIALOGS_DIALOG_DRIVER_H
#define TESTS_DIALOGS_DIALOG_DRIVER_H

#include <gtest/gtest.h>

#include <kexlib/testing/dialog_driver.h>

#include <support/user_input.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

using kexlib::testing::dialog_in_front;

// The number of dialogs that this thread shows. A press that opens a dialog takes effect after its step has ended.
inline std::size_t dialogs_of_this_thread() { return kexlib::testing::dialogs_of_thread().size(); }

class DialogDriver : public kexlib::testing::DialogDriver {
 public:
  explicit DialogDriver(std::vector<Step> steps) {
    for (Step& step : steps) add("as listed", std::move(step));
  }
  ~DialogDriver() { EXPECT_EQ(problem(), ""); }
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
