// WTL's bitmap button under the real mouse and keyboard.
#include <gtest/gtest.h>

#include <framework/bitmap_button.h>
#include <support/message_pump.h>
#include <support/user_input.h>

#include <string>

namespace {

class BitmapButtonOnScreen : public BitmapButton {
 protected:
  void SetUp() override {
    SetCursorPos(5, 5);
    BitmapButton::SetUp();
    parent.ShowWindow(SW_SHOW);
    SetForegroundWindow(parent);
    ASSERT_TRUE(pump_until([&] { return GetForegroundWindow() == parent.m_hWnd; }));
  }
  void TearDown() override {
    SetCursorPos(5, 5);
    BitmapButton::TearDown();
  }

  // In client coordinates of the button; may be outside it.
  void move(int x, int y) { move_mouse(button->m_hWnd, x, y); }
  static void mouse(DWORD what) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = what;
    SendInput(1, &input, sizeof input);
    pump_waiting();
  }
  // The colour on the screen.
  COLORREF on_screen(int x = 10, int y = 10) const { return Picture(button->m_hWnd).at(x, y); }
  testing::AssertionResult comes(COLORREF expected) {
    if (pump_until([&] { return on_screen() == expected; })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << std::hex << on_screen() << " instead of " << expected;
  }
};

TEST_F(BitmapButtonOnScreen, ShowsThatTheMouseIsOverIt) {
  make(BMPBTN_HOVER);
  EXPECT_TRUE(comes(red));
  move(10, 10);
  EXPECT_TRUE(comes(blue));
  move(20, 20);
  EXPECT_TRUE(comes(blue));
  move(100, 100);
  EXPECT_TRUE(comes(red));
  move(10, 10);
  EXPECT_TRUE(comes(blue)) << "again";
}

TEST_F(BitmapButtonOnScreen, WithoutHoverModeTheMouseChangesNothing) {
  make(0);
  EXPECT_TRUE(comes(red));
  move(10, 10);
  mouse(MOUSEEVENTF_LEFTDOWN);  // a press proves that the previous moves have arrived
  EXPECT_TRUE(comes(green));
  EXPECT_FALSE(button->m_fMouseOver);
  mouse(MOUSEEVENTF_LEFTUP);
  EXPECT_TRUE(comes(blue)) << "the focus that a click gives";
}

TEST_F(BitmapButtonOnScreen, IsPressedWhileTheMouseIsHeldDownOverIt) {
  make(BMPBTN_HOVER);
  move(10, 10);
  EXPECT_TRUE(comes(blue));
  mouse(MOUSEEVENTF_LEFTDOWN);
  EXPECT_TRUE(comes(green));
  move(100, 100);
  EXPECT_TRUE(comes(red));
  move(12, 12);
  EXPECT_TRUE(comes(green));
  mouse(MOUSEEVENTF_LEFTUP);
  EXPECT_TRUE(comes(blue));
  EXPECT_TRUE(pump_until([&] { return parent.clicks == 1; }));
}

TEST_F(BitmapButtonOnScreen, AClickThatEndsOutsideOfItIsNone) {
  make(BMPBTN_HOVER);
  move(10, 10);
  mouse(MOUSEEVENTF_LEFTDOWN);
  EXPECT_TRUE(comes(green));
  move(100, 100);
  EXPECT_TRUE(comes(red));
  mouse(MOUSEEVENTF_LEFTUP);
  EXPECT_TRUE(pump_until([&] { return GetCapture() == nullptr; }));
  EXPECT_EQ(parent.clicks, 0);
  EXPECT_TRUE(comes(red));
}

TEST_F(BitmapButtonOnScreen, LosingTheMouseReleasesIt) {
  make(BMPBTN_HOVER);
  move(10, 10);
  mouse(MOUSEEVENTF_LEFTDOWN);
  EXPECT_TRUE(comes(green));
  parent.SetCapture();
  EXPECT_FALSE(button->m_fPressed);
  mouse(MOUSEEVENTF_LEFTUP);
  ReleaseCapture();
  pump_waiting();
  EXPECT_EQ(parent.clicks, 0);
}

TEST_F(BitmapButtonOnScreen, TwoQuickClicksAreTwoClicks) {
  make(BMPBTN_HOVER);
  move(10, 10);
  EXPECT_TRUE(comes(blue));
  for (int i = 0; i < 2; ++i) {
    mouse(MOUSEEVENTF_LEFTDOWN);
    EXPECT_TRUE(comes(green));
    mouse(MOUSEEVENTF_LEFTUP);
    EXPECT_TRUE(comes(blue));
  }
  EXPECT_EQ(parent.clicks, 2);
  EXPECT_EQ(parent.double_clicks, 0);
}

TEST_F(BitmapButtonOnScreen, ShowsTheFocusUnlessItIsInHoverMode) {
  make(BMPBTN_AUTO3D_SINGLE);
  button->SetFocus();
  EXPECT_TRUE(comes(blue));
  // The focus rectangle is inset by two edges.
  int inset = 2 * GetSystemMetrics(SM_CXEDGE);
  Picture focused(*button);
  bool dotted = false;
  for (int x = inset; x < 40 - inset; ++x) dotted |= focused.at(x, inset) != blue;
  EXPECT_TRUE(dotted);
  parent.SetFocus();
  EXPECT_TRUE(comes(red));

  button->SetBitmapButtonExtendedStyle(BMPBTN_HOVER);
  button->SetFocus();
  EXPECT_TRUE(button->m_fFocus);
  EXPECT_TRUE(comes(red));
}

TEST_F(BitmapButtonOnScreen, ShowsItsTooltip) {
  make(BMPBTN_HOVER);
  button->SetToolTipText("What it does");
  button->m_tip.SetDelayTime(TTDT_INITIAL, 20);
  move(10, 10);
  move(11, 11);
  EXPECT_TRUE(pump_until([&] { return button->m_tip.IsWindowVisible(); }));
  Picture(button->m_tip).save("framework_bitmap_button_tooltip", 3);
  move(100, 100);
  EXPECT_TRUE(pump_until([&] { return !button->m_tip.IsWindowVisible(); }));

  button->SetToolTipText(nullptr);
  move(10, 10);
  move(11, 11);
  EXPECT_TRUE(comes(blue));
  // The timer of the tooltip has expired long before.
  bool over = false;
  UINT_PTR timer = SetTimer(nullptr, 0, 400, nullptr);
  MSG message;
  while (!over && GetMessage(&message, nullptr, 0, 0) > 0) {
    over = message.message == WM_TIMER && message.wParam == timer && !message.hwnd;
    DispatchMessage(&message);
    EXPECT_FALSE(button->m_tip.IsWindowVisible());
  }
  KillTimer(nullptr, timer);
}

}  // namespace
