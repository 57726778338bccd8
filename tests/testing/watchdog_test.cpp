#include <gtest/gtest.h>

#include <kexlib/testing/message_pump.h>
#include <kexlib/testing/resource_balance.h>
#include <kexlib/testing/watchdog.h>

#include <support/child_process.h>
#include <support/files.h>

#include <chrono>
#include <string>

namespace {

using kexlib::testing::dialog_in_front;
using kexlib::testing::leak_of_rounds;
using kexlib::testing::pump_until;
using kexlib::testing::Watchdog;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

TEST(TestingWatchdog, ClosesADialogAndSaysSo) {
  const Watchdog watchdog("the question", milliseconds(200));
  const auto begin = steady_clock::now();
  EXPECT_EQ(MessageBoxA(nullptr, "Text", "Title", MB_OKCANCEL), IDCANCEL);
  EXPECT_GE(steady_clock::now() - begin, milliseconds(190));
  EXPECT_EQ(watchdog.problem(), "the question did not end within 200 ms: the dialog \"Title\" was closed");
}

TEST(TestingWatchdog, ClosesOneDialogAfterTheOther) {
  const Watchdog watchdog("the test", milliseconds(100));
  MessageBoxA(nullptr, "Text", "First", MB_YESNO);  // which cannot be cancelled
  MessageBoxA(nullptr, "Text", "Second", MB_OK);
  EXPECT_EQ(watchdog.problem(),
            "the test did not end within 100 ms: the dialog \"First\" was closed, the dialog \"Second\" was closed");
}

TEST(TestingWatchdog, ClosesADialogThatRefuses) {
  struct {
    DLGTEMPLATE dialog{WS_POPUP | WS_VISIBLE, 0, 0, 0, 0, 90, 40};
    WORD no_menu = 0, no_class = 0, no_title = 0;
  } empty;
  const Watchdog watchdog("the test", milliseconds(100));
  const auto refuse = [](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
    return message == WM_CLOSE || message == WM_COMMAND;
  };
  EXPECT_EQ(DialogBoxIndirectParamA(GetModuleHandleA(nullptr), &empty.dialog, nullptr, refuse, 0), IDCANCEL);
  EXPECT_EQ(watchdog.problem(), "the test did not end within 100 ms: the dialog \"\" was closed");
}

TEST(TestingWatchdog, ClosesAMenu) {
  const HWND owner =
      CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 99, 99, nullptr, nullptr, nullptr, nullptr);
  const HMENU menu = CreatePopupMenu();
  AppendMenuA(menu, MF_STRING, 1, "Item");
  const Watchdog watchdog("the menu", milliseconds(200));
  EXPECT_EQ(TrackPopupMenu(menu, TPM_RETURNCMD, 10, 10, 0, owner, nullptr), 0);
  EXPECT_EQ(watchdog.problem(), "the menu did not end within 200 ms: a menu was closed");
  DestroyMenu(menu);
  DestroyWindow(owner);
}

TEST(TestingWatchdog, CancelsTheMovingOfAWindow) {
  const HWND window = CreateWindowA("STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 50, 200, 99, nullptr, nullptr,
                                    nullptr, nullptr);
  const Watchdog watchdog("the move", milliseconds(200));
  SendMessageA(window, WM_SYSCOMMAND, SC_MOVE, 0);  // with the keyboard, until a key ends it
  EXPECT_EQ(watchdog.problem().find("the move did not end within 200 ms: the moving of a window was cancelled"), 0u)
      << watchdog.problem();
  DestroyWindow(window);
}

TEST(TestingWatchdog, IsSilentWhereTheTestEnds) {
  const Watchdog watchdog("the test", std::chrono::seconds(60));
  bool was_shown = false;
  kexlib::testing::DialogDriver user;
  user.add("close", [&](HWND dialog) { return was_shown = PostMessageA(dialog, WM_CLOSE, 0, 0) != 0; });
  MessageBoxA(nullptr, "Text", "Title", MB_OK);
  EXPECT_TRUE(was_shown);
  EXPECT_EQ(watchdog.problem(), "");
}

TEST(TestingWatchdog, SendsNoMessagesBeforeTheTimeIsOver) {
  const Watchdog closing("the test"), ending("the test", std::chrono::seconds(60), Watchdog::End::at_once);
  MSG message;
  EXPECT_FALSE(pump_until([&] { return PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE) != 0; }, milliseconds(100)));
}

TEST(TestingWatchdog, LeavesNothingBehind) {
  EXPECT_EQ(leak_of_rounds(50, [] { const Watchdog watchdog("a round"); }), "");
}

// ---- what does not end by itself ------------------------------------------------------------------------------------

class TestingWatchdogInChildProcess : public testing::Test {
 protected:
  // Runs the program and returns what it reports.
  std::string report_of(const std::string& way) {
    EXPECT_EQ(run_program("hanging.exe", way + " report.txt"), Watchdog::exit_code);
    return read_file(folder_.path() / "report.txt");
  }

 private:
  TemporaryFolder folder_;
};

TEST_F(TestingWatchdogInChildProcess, EndsTheProcessAndSaysWhere) {
  const std::string report = report_of("waiting");
  EXPECT_EQ(report.find("watchdog: the wait did not end within 100 ms\n  "), 0u) << report;
  EXPECT_NE(report.find(" WaitForSingleObject"), std::string::npos) << report;
  EXPECT_NE(report.find(" main "), std::string::npos) << report;
  EXPECT_NE(report.find("hanging.cpp:"), std::string::npos) << report;
}

TEST_F(TestingWatchdogInChildProcess, EndsAProcessThatHoldsTheHeap) {
  EXPECT_EQ(report_of("heap").find("watchdog: the wait did not end within 100 ms\n"), 0u);
}

TEST_F(TestingWatchdogInChildProcess, EndsALoopThatHasNothingToClose) {
  const auto begin = steady_clock::now();
  EXPECT_EQ(report_of("loop").find("watchdog: the loop did not end within 100 ms\n"), 0u);
  EXPECT_GE(steady_clock::now() - begin, milliseconds(5000)) << "it has time to close something";
}

}  // namespace
