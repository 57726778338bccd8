#include <gtest/gtest.h>

#include <kexlib/testing/dialog_driver.h>
#include <kexlib/testing/message_pump.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using kexlib::testing::dialog_in_front;
using kexlib::testing::DialogDriver;
using kexlib::testing::dialogs_of_process;
using kexlib::testing::dialogs_of_thread;
using kexlib::testing::pump_until;
using kexlib::testing::Ticker;
using kexlib::testing::window_text;
using std::chrono::milliseconds;

int show_box(UINT buttons = MB_OKCANCEL, const wchar_t* title = L"Title") {
  return MessageBoxW(nullptr, L"Text", title, buttons);
}

bool press(HWND dialog, int button) { return PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0) != 0; }

// A dialog without controls, whose procedure is the test's.
INT_PTR show_dialog(DLGPROC procedure) {
  struct {
    DLGTEMPLATE dialog{WS_POPUP | WS_VISIBLE | WS_CAPTION, 0, 0, 0, 0, 90, 40};
    WORD no_menu = 0, no_class = 0, no_title = 0;
  } empty;
  return DialogBoxIndirectParamA(GetModuleHandleA(nullptr), &empty.dialog, nullptr, procedure, 0);
}

TEST(TestingDialogDriver, ReadsWholeTexts) {
  const std::wstring title = L"\x30C6\x30B9\x30C8 of a window";
  const HWND window = CreateWindowW(L"STATIC", title.c_str(), WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(window_text(window), title);
  SetWindowTextW(window, L"");
  EXPECT_EQ(window_text(window), L"");
  DestroyWindow(window);
}

TEST(TestingDialogDriver, DoesItsStepsInOrder) {
  std::string done;
  DialogDriver user;
  user.add("read", [&](HWND dialog) {
    done += "a";
    EXPECT_EQ(window_text(dialog), L"Title");
    EXPECT_EQ(dialogs_of_thread(), std::vector<HWND>{dialog});
    EXPECT_EQ(dialogs_of_process(), std::vector<HWND>{dialog});
    EXPECT_EQ(dialog_in_front(), dialog);
    return true;
  });
  user.add("wait", [&](HWND) { return (done += "b") == "abbb"; });
  user.add("press", [&](HWND dialog) { return press(dialog, IDCANCEL); });
  EXPECT_FALSE(user.is_done());
  EXPECT_EQ(show_box(), IDCANCEL);
  EXPECT_TRUE(user.is_done());
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(done, "abbb");
  EXPECT_EQ(dialog_in_front(), nullptr);
}

TEST(TestingDialogDriver, GoesOnInADialogThatAStepOpens) {
  DialogDriver user;
  int inner = 0;
  user.add("open", [&](HWND) { return (inner = show_box(MB_YESNO, L"Inner")) != 0; });
  user.add("answer", [&](HWND dialog) { return window_text(dialog) == L"Inner" && press(dialog, IDYES); });
  user.add("close", [&](HWND dialog) { return window_text(dialog) == L"Outer" && press(dialog, IDOK); });
  EXPECT_EQ(show_box(MB_OKCANCEL, L"Outer"), IDOK);
  EXPECT_EQ(inner, IDYES);
  EXPECT_EQ(user.problem(), "");
}

TEST(TestingDialogDriver, DoesNoStepDuringAnother) {
  std::string done;
  DialogDriver user;
  user.add("pump", [&](HWND) {
    pump_until([] { return false; }, milliseconds(100));
    done += "a";
    return true;
  });
  user.add("press", [&](HWND dialog) {
    done += "b";
    return press(dialog, IDOK);
  });
  EXPECT_EQ(show_box(), IDOK);
  EXPECT_EQ(done, "ab");
}

TEST(TestingDialogDriver, SeesNoHiddenDialog) {
  struct {
    DLGTEMPLATE dialog{WS_POPUP, 0, 0, 0, 0, 90, 40};
    WORD no_menu = 0, no_class = 0, no_title = 0;
  } empty;
  const HWND hidden = CreateDialogIndirectParamA(
      GetModuleHandleA(nullptr), &empty.dialog, nullptr, [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; },
      0);
  ASSERT_TRUE(hidden);
  EXPECT_EQ(dialogs_of_thread(), std::vector<HWND>{});
  ShowWindow(hidden, SW_SHOW);
  EXPECT_EQ(dialogs_of_thread(), std::vector<HWND>{hidden});
  EnableWindow(hidden, FALSE);
  EXPECT_EQ(dialog_in_front(), nullptr);
  DestroyWindow(hidden);
}

TEST(TestingDialogDriver, SaysWhichStepTookTooLongAndCloses) {
  DialogDriver user(milliseconds(200));
  user.add("look", [](HWND) { return true; });
  user.add("wait in vain", [](HWND) { return false; });
  user.add("press", [](HWND dialog) { return press(dialog, IDOK); });
  EXPECT_EQ(show_box(), IDCANCEL);
  EXPECT_EQ(user.problem(), "step 2 of 3, wait in vain: it took too long");
}

TEST(TestingDialogDriver, SaysThatADialogStays) {
  DialogDriver user(milliseconds(200));
  EXPECT_EQ(show_box(MB_OKCANCEL, L"Question"), IDCANCEL);
  EXPECT_EQ(user.problem(), "the dialog \"Question\" stays after the last step");
}

TEST(TestingDialogDriver, SaysThatThereWasNoDialog) {
  DialogDriver user;
  user.add("press", [](HWND dialog) { return press(dialog, IDOK); });
  EXPECT_EQ(user.problem(), "step 1 of 1, press: it was not reached");
}

TEST(TestingDialogDriver, ClosesWhatCannotBeCancelled) {
  DialogDriver user(milliseconds(100));
  show_box(MB_YESNO);  // without a close box
  EXPECT_NE(user.problem(), "");

  DialogDriver again(milliseconds(100));
  EXPECT_EQ(show_dialog([](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }), IDCANCEL);
  EXPECT_NE(again.problem(), "");
}

TEST(TestingDialogDriver, ClosesADialogThatAsksFirst) {
  DialogDriver user(milliseconds(100));
  show_dialog([](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message != WM_CLOSE) return FALSE;
    if (MessageBoxA(dialog, "Close?", "Question", MB_OKCANCEL) == IDOK) EndDialog(dialog, IDOK);
    return TRUE;
  });
  EXPECT_NE(user.problem(), "");
}

TEST(TestingDialogDriver, ClosesAndSaysWhatAStepThrows) {
  DialogDriver user;
  user.add("throw", [](HWND) -> bool { throw std::runtime_error("of the step"); });
  EXPECT_EQ(show_box(), IDCANCEL);
  EXPECT_EQ(user.problem(), "step 1 of 1, throw: it threw \"of the step\"");

  DialogDriver other;
  other.add("throw", [](HWND) -> bool { throw 5; });
  EXPECT_EQ(show_box(), IDCANCEL);
  EXPECT_EQ(other.problem(), "step 1 of 1, throw: it threw an exception");
}

TEST(TestingDialogDriver, TheLatestOneActs) {
  DialogDriver outer(milliseconds(0));  // would close each dialog
  {
    DialogDriver inner;
    inner.add("press", [](HWND dialog) { return press(dialog, IDOK); });
    EXPECT_EQ(show_box(), IDOK);
    EXPECT_EQ(inner.problem(), "");
  }
  EXPECT_EQ(outer.problem(), "");
  EXPECT_EQ(show_box(), IDCANCEL);
  EXPECT_NE(outer.problem(), "");
}

TEST(TestingDialogDriver, LeavesDialogsOfOtherThreadsAlone) {
  DialogDriver user;
  bool called = false;
  user.add("never", [&](HWND) { return called = true; });
  int pressed = 0;
  std::thread other([&] { pressed = show_box(); });
  ASSERT_TRUE(pump_until([] { return dialogs_of_process().size() == 1; }));
  EXPECT_EQ(dialogs_of_thread(), std::vector<HWND>{});
  EXPECT_FALSE(pump_until([&] { return called; }, milliseconds(200)));
  press(dialogs_of_process()[0], IDOK);
  other.join();
  EXPECT_EQ(pressed, IDOK);
}

TEST(TestingDialogDriver, TickersTickApart) {
  int first = 0, second = 0;
  Ticker one(milliseconds(10), [&] { ++first; });
  {
    Ticker two(milliseconds(10), [&] { ++second; });
    EXPECT_TRUE(pump_until([&] { return first > 2 && second > 2; }));
  }
  const int at_end = second, before = first;
  EXPECT_TRUE(pump_until([&] { return first > before + 2; }));
  EXPECT_EQ(second, at_end);
}

}  // namespace
