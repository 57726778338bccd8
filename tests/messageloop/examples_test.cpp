// The examples of the guide's page.
#include <gtest/gtest.h>

#include <kexlib/framework.h>
#include <kexlib/testing.h>

#include <commctrl.h>

#include <support/message_pump.h>
#include <support/window_text.h>

#include <cstdlib>
#include <functional>
#include <string>

void work_beside_windows(const std::function<void()>& work);
void serve_windows();
void export_parts(HWND owner, HWND bar);
ATL::CComPtr<IUnknown> count_in_title(HWND window);

namespace {

HWND make_window(const char* type) {
  return CreateWindowA(type, "", WS_POPUP, 0, 0, 90, 20, nullptr, nullptr, nullptr, nullptr);
}

// The worker's message to the window is answered while this thread waits.
TEST(MessageloopExamples, WorkBesideWindows) {
  const HWND window = make_window("STATIC");
  work_beside_windows([&] { SendMessageA(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("done")); });
  EXPECT_EQ(window_text(window), "done");
  DestroyWindow(window);
}

TEST(MessageloopExamples, LeaveTheEndOfTheProgramToItsLoop) {
  const DWORD thread = GetCurrentThreadId();
  work_beside_windows([&] { PostThreadMessageA(thread, WM_QUIT, 7, 0); });
  MSG message;
  ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.wParam, 7u);
}

TEST(MessageloopExamples, ServeWindows) {
  static int served;
  served = 0;
  const HWND window = make_window("STATIC");
  SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(WNDPROC([](HWND, UINT message, WPARAM, LPARAM) {
                      served += message == WM_APP;
                      return LRESULT{0};
                    })));
  for (int i = 0; i < 3; ++i) PostMessageA(window, WM_APP, 0, 0);
  serve_windows();
  EXPECT_EQ(served, 3);
  DestroyWindow(window);
}

TEST(MessageloopExamples, ShowProgressDuringAMessageBox) {
  InitCommonControls();
  const HWND bar = make_window(PROGRESS_CLASSA);
  kexlib::testing::DialogDriver user;
  user.add("wait for the last part", [&](HWND) { return SendMessageA(bar, PBM_GETPOS, 0, 0) == 100; });
  user.add("press OK", [](HWND box) { return PostMessageA(box, WM_COMMAND, IDOK, 0) != 0; });
  export_parts(nullptr, bar);
  EXPECT_EQ(user.problem(), "");
  DestroyWindow(bar);
}

TEST(MessageloopExamples, CountInATitle) {
  const HWND window = make_window("STATIC");
  std::string last;
  {
    const ATL::CComPtr<IUnknown> counter = count_in_title(window);
    EXPECT_TRUE(pump_until([&] { return atoi(window_text(window).c_str()) >= 2; }));
    last = window_text(window);  // more than 2 on a busy machine
  }
  pump_until([] { return false; }, std::chrono::milliseconds(300));
  EXPECT_EQ(window_text(window), last) << "the timer has ended with its object";
  DestroyWindow(window);
}

}  // namespace
