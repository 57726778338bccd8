#include <gtest/gtest.h>

#include <windows.h>

#include <messageloop/message_wait_fixture.h>
#include <support/message_pump.h>
#include <support/user_input.h>

namespace {

class MessageWaitOnScreen : public testing::Test {
 protected:
  void SetUp() override {
    park_mouse();
    ASSERT_TRUE(bring_to_front(window_.handle));
    ASSERT_TRUE(pump_until([&] { return GetFocus() == window_.handle; }));
    window_.seen.clear();
  }
  ~MessageWaitOnScreen() override {
    ReleaseCapture();
    park_mouse();
  }

  // Waits and drops input until none is left, however slow the machine is: a timer's message comes only then.
  void drop_input() {
    SetTimer(window_.handle, 1, 200, nullptr);
    wait_for(window_, WM_TIMER, TRUE);
    KillTimer(window_.handle, 1);
    pump_waiting();
  }

  RecordingWindow window_{true};
};

TEST_F(MessageWaitOnScreen, GivesAKeyPressToTheWindow) {
  const Event done;
  window_.on_message = [&](UINT message, WPARAM w) {
    if (message == WM_KEYUP && w == 'A') done.set();
  };
  press_key('A');
  const HANDLE handle = done;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  EXPECT_EQ(window_.count(WM_KEYDOWN), 1);
  EXPECT_EQ(window_.count(WM_CHAR), 1);
}

TEST_F(MessageWaitOnScreen, DropsAKeyPress) {
  press_key('A');
  drop_input();
  EXPECT_EQ(window_.count(WM_KEYDOWN), 0);
  EXPECT_EQ(window_.count(WM_CHAR), 0);
  EXPECT_EQ(window_.count(WM_KEYUP), 0);
}

TEST_F(MessageWaitOnScreen, GivesAClickToTheWindow) {
  const Event done;
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_LBUTTONUP) done.set();
  };
  put_mouse(window_.handle, 20, 20);
  click_here();
  const HANDLE handle = done;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  EXPECT_EQ(window_.count(WM_LBUTTONDOWN), 1);
  EXPECT_GE(window_.count(WM_MOUSEMOVE), 1);
}

// The system sends WM_SETCURSOR, which bypasses the queue and cannot be dropped.
TEST_F(MessageWaitOnScreen, DropsAClickButNotTheQuestionForTheCursor) {
  put_mouse(window_.handle, 20, 20);
  click_here();
  drop_input();
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
  put_mouse(window_.handle, 60, -10);
  const HANDLE handle = done;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, TRUE, nullptr), WAIT_OBJECT_0);
}

TEST_F(MessageWaitOnScreen, LeavesTheCaptureWhereTheReleaseOfAButtonWasDropped) {
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_LBUTTONDOWN) SetCapture(window_.handle);
    if (message == WM_LBUTTONUP) ReleaseCapture();
  };
  put_mouse(window_.handle, 20, 20);
  mouse_button(MOUSEEVENTF_LEFTDOWN);
  ASSERT_TRUE(pump_until([&] { return GetCapture() == window_.handle; }));
  mouse_button(MOUSEEVENTF_LEFTUP);
  drop_input();
  EXPECT_EQ(GetCapture(), window_.handle);
}

}  // namespace
