#include <gtest/gtest.h>

#include <kexlib/testing/message_pump.h>

#include <chrono>
#include <functional>
#include <thread>

namespace {

using kexlib::testing::pump;
using kexlib::testing::pump_dialog_until;
using kexlib::testing::pump_until;
using kexlib::testing::pump_waiting;
using kexlib::testing::PumpEnd;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A window that calls a function for each WM_APP.
class Receiver {
 public:
  explicit Receiver(std::function<void()> received) : received_(std::move(received)) {
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure));
  }
  Receiver(const Receiver&) = delete;
  Receiver& operator=(const Receiver&) = delete;
  ~Receiver() { DestroyWindow(window_); }
  void post() const { PostMessageA(window_, WM_APP, 0, 0); }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_APP) reinterpret_cast<Receiver*>(GetWindowLongPtrA(window, GWLP_USERDATA))->received_();
    return DefWindowProcA(window, message, wparam, lparam);
  }

  std::function<void()> received_;
  HWND window_ = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
};

TEST(TestingMessagePump, EndsWhenTheConditionHolds) {
  int received = 0;
  const Receiver window([&] {
    if (++received < 3) window.post();
  });
  window.post();
  EXPECT_EQ(pump([&] { return received == 3; }), PumpEnd::happened);
  EXPECT_EQ(received, 3);
}

TEST(TestingMessagePump, LooksAgainThoughNoMessageComes) {
  std::atomic<bool> happened = false;
  const HANDLE waits = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  int looks = 0;
  std::thread other([&] {
    WaitForSingleObject(waits, INFINITE);
    happened = true;
  });
  EXPECT_EQ(pump([&] {
              if (++looks == 2) SetEvent(waits);
              return happened.load();
            }),
            PumpEnd::happened);
  other.join();
  CloseHandle(waits);
}

TEST(TestingMessagePump, EndsWhenTheTimeHasPassed) {
  int looks = 0;
  const auto begin = steady_clock::now();
  EXPECT_EQ(pump([&] { return ++looks < 0; }, milliseconds(200)), PumpEnd::timed_out);
  const auto took = steady_clock::now() - begin;
  EXPECT_GE(took, milliseconds(200));
  EXPECT_LT(took, milliseconds(2000));
  EXPECT_GT(looks, 1);
  EXPECT_LE(looks, 12) << "it waits between two looks";

  looks = 0;
  EXPECT_EQ(pump([&] { return ++looks < 0; }, milliseconds(0)), PumpEnd::timed_out);
  EXPECT_EQ(looks, 1);
}

TEST(TestingMessagePump, EndsThoughTheQueueNeverGetsEmpty) {
  const Receiver window([&] { window.post(); });
  window.post();
  EXPECT_EQ(pump([] { return false; }, milliseconds(100)), PumpEnd::timed_out);
}

TEST(TestingMessagePump, LeavesAQuitInTheQueue) {
  PostQuitMessage(42);
  EXPECT_EQ(pump([] { return false; }), PumpEnd::quit);
  MSG message{};
  ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 42u);

  PostQuitMessage(43);
  EXPECT_EQ(pump([] { return true; }), PumpEnd::happened);
  ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(message.wParam, 43u);
}

TEST(TestingMessagePump, UntilSaysWhetherItHappened) {
  EXPECT_TRUE(pump_until([] { return true; }));
  EXPECT_FALSE(pump_until([] { return false; }, milliseconds(1)));
}

TEST(TestingMessagePump, WaitingDispatchesWhatIsThereAndEnds) {
  int received = 0;
  const Receiver window([&] { ++received; });
  window.post();
  window.post();
  pump_waiting();
  EXPECT_EQ(received, 2);
  pump_waiting();
  EXPECT_EQ(received, 2);
}

TEST(TestingMessagePump, InADialogTabMovesTheFocus) {
  struct {
    DLGTEMPLATE dialog{WS_POPUP | WS_VISIBLE, 0, 0, 0, 0, 90, 40};
    WORD no_menu = 0, no_class = 0, no_title = 0;
  } empty;
  const HWND dialog = CreateDialogIndirectParamA(
      GetModuleHandleA(nullptr), &empty.dialog, nullptr, [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; },
      0);
  ASSERT_TRUE(dialog);
  const DWORD style = WS_CHILD | WS_VISIBLE | WS_TABSTOP;
  const HWND first = CreateWindowA("EDIT", "", style, 0, 0, 30, 20, dialog, nullptr, nullptr, nullptr);
  const HWND second = CreateWindowA("EDIT", "", style, 0, 30, 30, 20, dialog, nullptr, nullptr, nullptr);
  SetFocus(first);
  ASSERT_EQ(GetFocus(), first);
  PostMessageA(first, WM_KEYDOWN, VK_TAB, 0);
  EXPECT_TRUE(pump_dialog_until(dialog, [&] { return GetFocus() == second; }));
  DestroyWindow(dialog);
}

}  // namespace
