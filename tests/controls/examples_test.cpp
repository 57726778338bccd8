// The examples of the guide's page.
#include <gtest/gtest.h>

#include <kexlib/controls/step_manager.h>
#include <kexlib/framework.h>
#include <kexlib/testing.h>

#include <controls/resources.h>
#include <support/message_pump.h>
#include <support/window_text.h>

#include <string>

CStringA length_text(double inches);
void double_number(HWND control);
bool ask_for_length(HWND owner, double& length);
bool ask_for_opening(HWND owner);
bool ask_for_copy(HWND owner);
void begin_steps(atlStepManager& steps, HWND dialog);
void go_on(atlStepManager& steps);

namespace {

using kexlib::testing::DialogDriver;

DialogDriver::Step command(int id) {
  return [id](HWND dialog) { return PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(id), 0) != 0; };
}

TEST(ControlsExamples, ShowALengthInMillimetres) { EXPECT_EQ(length_text(1), "25.40"); }

TEST(ControlsExamples, DoubleANumber) {
  const HWND edit = CreateWindowA("EDIT", "3.14", WS_POPUP, 0, 0, 90, 20, nullptr, nullptr, nullptr, nullptr);
  double_number(edit);
  EXPECT_EQ(window_text(edit), "6.28");
  DestroyWindow(edit);
}

TEST(ControlsExamples, AskForALength) {
  double length = 2.5;
  std::string shown;
  DialogDriver user;
  user.add("type", [&](HWND dialog) {
    shown = window_text(GetDlgItem(dialog, IDC_LENGTH));
    return SetDlgItemTextA(dialog, IDC_LENGTH, "-3.25") != 0;
  });
  user.add("press OK", command(IDOK));
  EXPECT_TRUE(ask_for_length(nullptr, length));
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(shown, "2.50");
  EXPECT_EQ(length, 3.25);
}

TEST(ControlsExamples, KeepTheLengthOfACancelledDialog) {
  double length = 2.5;
  DialogDriver user;
  user.add("type", [](HWND dialog) { return SetDlgItemTextA(dialog, IDC_LENGTH, "7") != 0; });
  user.add("press Cancel", command(IDCANCEL));
  EXPECT_FALSE(ask_for_length(nullptr, length));
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(length, 2.5);
}

TEST(ControlsExamples, PressAPicture) {
  LONG_PTR style = 0;
  DialogDriver user;
  user.add("press the button", [&](HWND dialog) {
    const HWND button = GetDlgItem(dialog, IDC_OPEN);
    style = GetWindowLongPtrA(button, GWL_STYLE);
    return PostMessageA(button, BM_CLICK, 0, 0) != 0;
  });
  EXPECT_TRUE(ask_for_opening(nullptr));
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(style & BS_TYPEMASK, BS_OWNERDRAW) << "the button draws the picture";
}

TEST(ControlsExamples, ChooseFromAMenu) {
  DialogDriver user;
  user.add("press the button",
           [](HWND dialog) { return PostMessageA(GetDlgItem(dialog, IDC_MORE), BM_CLICK, 0, 0) != 0; });
  user.add("choose", [](HWND) {
    GUITHREADINFO now{};
    now.cbSize = sizeof now;
    if (!GetGUIThreadInfo(GetCurrentThreadId(), &now) || !(now.flags & GUI_INMENUMODE)) return false;
    PostMessageA(now.hwndMenuOwner, WM_KEYDOWN, VK_DOWN, 0);
    PostMessageA(now.hwndMenuOwner, WM_KEYDOWN, VK_RETURN, 0);
    return true;
  });
  EXPECT_TRUE(ask_for_copy(nullptr));
  EXPECT_EQ(user.problem(), "");
}

TEST(ControlsExamples, DoStepAfterStep) {
  const HWND dialog = CreateDialogParamA(nullptr, MAKEINTRESOURCEA(IDD_STEPS), nullptr, nullptr, 0);
  const auto enabled = [&](int id) { return IsWindowEnabled(GetDlgItem(dialog, id)) != 0; };
  atlStepManager steps(nullptr, true);
  begin_steps(steps, dialog);
  EXPECT_EQ(window_text(GetDlgItem(dialog, IDC_NUMBER_1)), "1");
  EXPECT_EQ(window_text(GetDlgItem(dialog, IDC_NUMBER_2)), "2");
  EXPECT_TRUE(enabled(IDC_NAME));
  EXPECT_FALSE(enabled(IDC_DEPTH));
  for (int presses = 1; presses <= 2; ++presses) {  // there is no third step
    go_on(steps);
    EXPECT_FALSE(enabled(IDC_NAME));
    EXPECT_TRUE(enabled(IDC_DEPTH));
  }
  DestroyWindow(dialog);
}

}  // namespace
