// The numeric edit box: in a dialog, in a window that it creates, and without a window; with keyboard input.
#include <gtest/gtest.h>

#include <kexlib/controls/button_menu.h>
#include <kexlib/controls/numeric_edit_box.h>

#include <controls/resources.h>
#include <support/c_library.h>
#include <support/expect_flat.h>
#include <support/import_override.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/user_input.h>
#include <support/window_text.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

const char* separator_of_the_user = ".";

int WINAPI answer_separator(LCID, LCTYPE, LPSTR text, int size) {
  const std::string separator = separator_of_the_user;
  if (size > static_cast<int>(separator.size())) separator.copy(text, separator.size() + 1), text[separator.size()] = 0;
  return static_cast<int>(separator.size()) + 1;
}

// A box for a user with this separator.
kexNumericEditBox box_with(const char* separator) {
  separator_of_the_user = separator;
  const ImportOverride locale("kexlib.dll", "kernel32.dll", "GetLocaleInfoA", answer_separator);
  EXPECT_TRUE(locale.made());
  return {};
}

// Records the notifications of its first field.
class LengthDialog : public CDialogImpl<LengthDialog> {
 public:
  enum { IDD = IDD_LENGTH };
  BEGIN_MSG_MAP(LengthDialog)
    COMMAND_ID_HANDLER(IDC_LENGTH, OnLength)
  END_MSG_MAP()
  LRESULT OnLength(WORD code, WORD, HWND, BOOL&) {
    told.push_back(code);
    if (fails && code == EN_CHANGE) throw 1;
    return 0;
  }
  bool fails = false;
  std::vector<int> told;
};

class NumericEditBox : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dialog_.Create(nullptr));
    edit_ = dialog_.GetDlgItem(IDC_LENGTH);
    ASSERT_TRUE(box_.SubclassWindow(edit_));
  }
  void TearDown() override {
    if (dialog_.IsWindow()) dialog_.DestroyWindow();
  }

  std::string text() const { return window_text(edit_); }

  LengthDialog dialog_;
  HWND edit_ = nullptr;
  kexNumericEditBox box_ = box_with(".");
};

TEST(NumericEditBoxWithoutAWindow, HoldsItsNumbers) {
  kexNumericEditBox box;
  EXPECT_EQ(box.get_value(), 0.0);
  EXPECT_EQ(box.get_decimal_places(), 3);
  box.set_value(-2.5);
  box.set_decimal_places(1);
  box.allow_negative_values(false);
  EXPECT_EQ(box.get_value(), -2.5) << "there is no text to read it from";
  EXPECT_EQ(box.get_decimal_places(), 1);
  EXPECT_EQ(box.m_hWnd, nullptr);
}

TEST(NumericEditBoxWithoutAWindow, MayNameAWindowThatIsGone) {
  kexNumericEditBox box;
  const HWND window = CreateWindowA("EDIT", "7", WS_POPUP, 0, 0, 50, 20, nullptr, nullptr, nullptr, nullptr);
  box.Attach(window);
  EXPECT_EQ(box.get_value(), 7.0);
  DestroyWindow(window);
  EXPECT_EQ(box.get_value(), 7.0);
  box.set_value(8.0);
  EXPECT_EQ(box.get_value(), 8.0);
}

TEST(NumericEditBoxWithoutAWindow, ShowsInItsFirstWindowWhatItWasToldBefore) {
  LengthDialog dialog;
  ASSERT_TRUE(dialog.Create(nullptr));
  kexNumericEditBox box = box_with(",");
  box.set_value(1.5);
  ASSERT_TRUE(box.SubclassWindow(dialog.GetDlgItem(IDC_LENGTH)));
  EXPECT_EQ(window_text(box), "") << "the first setter shows it";
  box.set_decimal_places(2);
  EXPECT_EQ(window_text(box), "1,50");
  dialog.DestroyWindow();
}

TEST(NumericEditBoxCreated, TakesTheWindowThatItHoldsForItsParent) {
  LengthDialog host;
  ASSERT_TRUE(host.Create(nullptr));
  kexNumericEditBox box = box_with(".");
  box.Attach(host);
  box.Create(host);
  ASSERT_TRUE(box.IsWindow());
  EXPECT_NE(box.m_hWnd, host.m_hWnd);
  EXPECT_EQ(::GetParent(box), host.m_hWnd);
  EXPECT_EQ(window_text(box), "0.000");
  EXPECT_EQ(box.GetDlgCtrlID(), 0);
  EXPECT_EQ(box.GetStyle() & ~DWORD{WS_CLIPSIBLINGS}, DWORD{WS_CHILD | WS_VISIBLE});
  EXPECT_EQ(box.GetExStyle() & ~DWORD{WS_EX_NOPARENTNOTIFY}, DWORD{WS_EX_CLIENTEDGE});
  EXPECT_NE(box.GetFont(), nullptr);
  EXPECT_EQ(box.GetFont(), host.GetFont());

  const HWND edit = box;
  host.DestroyWindow();
  EXPECT_FALSE(IsWindow(edit));
  EXPECT_EQ(box.m_hWnd, nullptr) << "the object goes on without it";
  box.set_value(4.0);
  EXPECT_EQ(box.get_value(), 4.0);
}

TEST(NumericEditBoxCreated, ShowsTheNumberOfBefore) {
  LengthDialog host;
  ASSERT_TRUE(host.Create(nullptr));
  kexNumericEditBox box = box_with("::");
  box.set_value(12.25);
  box.set_decimal_places(1);
  box.Attach(host);
  box.Create(host);
  EXPECT_EQ(window_text(box), "12::2");
  host.DestroyWindow();
}

TEST(NumericEditBoxCreated, WithoutAParentThereIsNoWindow) {
  kexNumericEditBox box;
  CWindow none;
  box.Create(none);
  EXPECT_EQ(box.m_hWnd, nullptr);
  box.set_value(3.0);
  EXPECT_EQ(box.get_value(), 3.0);
}

TEST(NumericEditBoxCreated, MayFollowOneThatFailed) {
  LengthDialog host;
  ASSERT_TRUE(host.Create(nullptr));
  kexNumericEditBox box;
  CWindow none;
  box.Create(none);
  box.Attach(host);
  box.Create(host);
  EXPECT_EQ(GetParent(box), host.m_hWnd);
  host.DestroyWindow();
}

// The object writes to its attached window: attach the host immediately before Create.
TEST(NumericEditBoxCreated, ASetterBeforeItWritesToTheHost) {
  LengthDialog host;
  ASSERT_TRUE(host.Create(nullptr));
  kexNumericEditBox box = box_with(".");
  box.Attach(host);
  box.set_value(2.0);
  EXPECT_EQ(window_text(host), "2.000");
  box.Create(host);
  EXPECT_EQ(window_text(box), "2.000");
  host.DestroyWindow();
}

TEST(NumericEditBoxCreated, TwiceLeavesTheFirstEditControlToItself) {
  LengthDialog host;
  ASSERT_TRUE(host.Create(nullptr));
  kexNumericEditBox box = box_with(".");
  box.Attach(host);
  box.Create(host);
  const HWND first = box;
  box.Create(host);
  ASSERT_TRUE(box.IsWindow());
  EXPECT_EQ(::GetParent(box), first);
  SetWindowTextA(first, "7x");
  SendMessageA(first, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(window_text(first), "7x");
  EXPECT_EQ(box.get_value(), 0.0);
  host.DestroyWindow();
  EXPECT_EQ(box.m_hWnd, nullptr);
}

// ---- another window for the same object -----------------------------------------------------------------------------

TEST_F(NumericEditBox, LeavesItsEditControlForAnother) {
  const HWND width = dialog_.GetDlgItem(IDC_WIDTH);
  ASSERT_TRUE(box_.SubclassWindow(width));
  EXPECT_EQ(box_.m_hWnd, width);
  SetWindowTextA(edit_, "7x");
  SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(text(), "7x") << "it is an edit control as any other now";
  SetWindowTextA(width, "8x");
  SendMessageA(width, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(window_text(width), "8.000");
}

TEST_F(NumericEditBox, KeepsItsEditControlWhereTheSystemRefusesAnother) {
  EXPECT_FALSE(box_.SubclassWindow(nullptr));
  EXPECT_FALSE(box_.SubclassWindow(GetDesktopWindow()));
  EXPECT_EQ(box_.m_hWnd, edit_);
  SetWindowTextA(edit_, "7x");
  SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(text(), "7.000");
}

TEST_F(NumericEditBox, MayBeAttachedToAWindowBefore) {
  kexNumericEditBox box;
  box.Attach(dialog_.GetDlgItem(IDC_WIDTH));
  EXPECT_FALSE(box.SubclassWindow(GetDesktopWindow()));
  EXPECT_EQ(box.m_hWnd, dialog_.GetDlgItem(IDC_WIDTH));
  EXPECT_TRUE(box.SubclassWindow(dialog_.GetDlgItem(IDC_WIDTH)));
  EXPECT_TRUE(box.UnsubclassWindow());
}

// Another window procedure forwards the messages of the first edit control to this object.
class NumericEditBoxSubclassedOver : public NumericEditBox {
 protected:
  void SetUp() override {
    NumericEditBox::SetUp();
    ASSERT_TRUE(somebody_else_.SubclassWindow(edit_));
  }
  void expect_nothing_changed() {
    const HWND width = dialog_.GetDlgItem(IDC_WIDTH);
    EXPECT_EQ(box_.m_hWnd, edit_);
    SetWindowTextA(width, "of its own");
    SetWindowTextA(edit_, "7x");
    EXPECT_EQ(text(), "7x");
    SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
    EXPECT_EQ(text(), "7.000");
    EXPECT_EQ(box_.get_value(), 7.0);
    EXPECT_EQ(window_text(width), "of its own");
  }
  atlButtonMenu somebody_else_;
};

TEST_F(NumericEditBoxSubclassedOver, TakesNoOther) {
  EXPECT_FALSE(box_.SubclassWindow(dialog_.GetDlgItem(IDC_WIDTH)));
  expect_nothing_changed();
}

TEST_F(NumericEditBoxSubclassedOver, CreatesNone) {
  CWindow font_source(dialog_);
  box_.Create(font_source);
  EXPECT_EQ(GetWindow(edit_, GW_CHILD), nullptr);
  expect_nothing_changed();
}

TEST_F(NumericEditBoxSubclassedOver, TakesAnotherWhenTheFirstIsFreeAgain) {
  ASSERT_TRUE(somebody_else_.UnsubclassWindow());
  ASSERT_TRUE(box_.SubclassWindow(dialog_.GetDlgItem(IDC_WIDTH)));
  SetWindowTextA(edit_, "7x");
  SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(text(), "7x");
}

TEST_F(NumericEditBox, ShowsANumberAtOnce) {
  box_.set_value(0.0);
  EXPECT_EQ(text(), "0.000");
  box_.set_value(3.14159);
  EXPECT_EQ(text(), "3.142");
  box_.set_decimal_places(2);
  EXPECT_EQ(text(), "3.14");
  box_.set_decimal_places(0);
  EXPECT_EQ(text(), "3");
  box_.set_value(-7.0);
  EXPECT_EQ(text(), "-7");
}

// The text does not change the number: setters write the number that was last read.
TEST_F(NumericEditBox, ASetterWritesOverWhatWasNotReadYet) {
  box_.set_value(1.0);
  SetWindowTextA(edit_, "12");
  box_.set_decimal_places(1);
  EXPECT_EQ(text(), "1.0");
}

// Kept for compatibility: callers may allow the sign again until the text is read.
TEST_F(NumericEditBox, LosesTheSignOfTheTextAtOnceAndThatOfTheNumberWithTheNextRead) {
  box_.set_value(-1.5);
  box_.allow_negative_values(false);
  EXPECT_EQ(text(), "1.500");
  box_.allow_negative_values(true);
  EXPECT_EQ(text(), "-1.500") << "the number had kept it";
  box_.allow_negative_values(false);
  EXPECT_EQ(box_.get_value(), 1.5);
  box_.allow_negative_values(true);
  EXPECT_EQ(text(), "1.500") << "the read has dropped it";

  box_.set_value(-1.5);
  box_.allow_negative_values(false);
  SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
  box_.allow_negative_values(true);
  EXPECT_EQ(text(), "1.500") << "and so does the focus when it leaves";
}

TEST_F(NumericEditBox, ReadsWhatStandsThereAndLeavesIt) {
  SetWindowTextA(edit_, " 12mm");
  EXPECT_EQ(box_.get_value(), 12.0);
  EXPECT_EQ(text(), " 12mm");
}

TEST_F(NumericEditBox, TakesNumbersThatAreNone) {
  box_.set_value(std::numeric_limits<double>::infinity());
  EXPECT_EQ(text(), "inf");
  box_.set_value(-0.0);
  EXPECT_EQ(text(), "-0.000");
  EXPECT_TRUE(std::signbit(box_.get_value()));
  box_.set_value(1e308);
  EXPECT_EQ(text().size(), 259u) << "as putValue cuts it";
  SetWindowTextA(edit_, std::string(400, '9').c_str());
  EXPECT_TRUE(std::isfinite(box_.get_value())) << "260 characters are read";
}

TEST_F(NumericEditBox, ServesItsOwnMapOnly) {
  SetWindowTextA(edit_, "5x");
  LRESULT result = 17;
  EXPECT_FALSE(box_.ProcessWindowMessage(edit_, WM_KILLFOCUS, 0, 0, result, 1));
  EXPECT_EQ(text(), "5x");
  EXPECT_FALSE(box_.ProcessWindowMessage(edit_, WM_SETFOCUS, 0, 0, result, 0));
  EXPECT_EQ(text(), "5x");
  EXPECT_EQ(result, 17);
  EXPECT_FALSE(box_.ProcessWindowMessage(edit_, WM_KILLFOCUS, 0, 0, result, 0)) << "the edit control gets it as well";
  EXPECT_EQ(text(), "5.000");
  EXPECT_EQ(result, 0);
}

TEST_F(NumericEditBox, ACopyHasTheNumbersButNotTheMessages) {
  box_.set_value(2.0);
  {
    kexNumericEditBox copy(box_);
    EXPECT_EQ(copy.m_hWnd, edit_);
    EXPECT_EQ(copy.get_value(), 2.0);
    copy.set_decimal_places(1);
    EXPECT_EQ(text(), "2.0");
  }
  SetWindowTextA(edit_, "3x");
  SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(text(), "3.000") << "the source is there still";
}

TEST(NumericEditBoxWithoutAWindow, IsCopiedWithItsNumbers) {
  auto source = std::make_unique<kexNumericEditBox>(box_with(","));
  source->set_value(-1.5);
  source->set_decimal_places(1);
  kexNumericEditBox copy(*source), assigned;
  EXPECT_EQ(&(assigned = *source), &assigned);
  source.reset();
  LengthDialog dialog;
  ASSERT_TRUE(dialog.Create(nullptr));
  for (kexNumericEditBox* each : {&copy, &assigned}) {
    EXPECT_EQ(each->m_hWnd, nullptr);
    EXPECT_EQ(each->get_value(), -1.5);
    EXPECT_EQ(each->get_decimal_places(), 1);
    ASSERT_TRUE(each->SubclassWindow(dialog.GetDlgItem(each == &copy ? IDC_LENGTH : IDC_WIDTH)));
    each->set_value(-2.5);
    EXPECT_EQ(window_text(*each), "-2,5") << "the separator and the sign are copied as well";
  }
  dialog.DestroyWindow();
}

TEST_F(NumericEditBox, KeepsItsWindowWhenItIsAssignedTo) {
  const HWND width = dialog_.GetDlgItem(IDC_WIDTH);
  kexNumericEditBox other;
  ASSERT_TRUE(other.SubclassWindow(width));
  other.set_value(7.0);
  box_.set_value(1.0);
  box_ = other;
  EXPECT_EQ(box_.m_hWnd, edit_);
  EXPECT_EQ(text(), "7.000");
  EXPECT_EQ(box_.get_value(), 7.0);
  const kexNumericEditBox& itself = box_;
  box_ = itself;
  SetWindowTextA(edit_, "8x");
  SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(text(), "8.000") << "it gets the messages still";
  EXPECT_EQ(window_text(width), "7.000");
  EXPECT_TRUE(other.UnsubclassWindow());
}

TEST_F(NumericEditBox, ACopyMayLeaveTheWindowThatItNames) {
  const HWND width = dialog_.GetDlgItem(IDC_WIDTH);
  {
    kexNumericEditBox copy(box_);
    ASSERT_TRUE(copy.SubclassWindow(width));
    SetWindowTextA(width, "4x");
    SendMessageA(width, WM_KILLFOCUS, 0, 0);
    EXPECT_EQ(window_text(width), "4.000");
    EXPECT_TRUE(copy.UnsubclassWindow());
  }
  SetWindowTextA(edit_, "5x");
  SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(text(), "5.000");
}

TEST_F(NumericEditBox, LetsTheEditControlDoItsOwnWorkWhenTheFocusLeaves) {
  dialog_.told.clear();
  SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(dialog_.told, (std::vector<int>{EN_UPDATE, EN_CHANGE, EN_KILLFOCUS}));
}

TEST_F(NumericEditBox, GoesOnWithoutTheWindowThatIsDestroyed) {
  box_.set_value(6.0);
  dialog_.DestroyWindow();
  EXPECT_EQ(box_.m_hWnd, nullptr);
  EXPECT_EQ(box_.get_value(), 6.0);
  box_.set_value(7.0);
  EXPECT_EQ(box_.get_value(), 7.0);

  ASSERT_TRUE(dialog_.Create(nullptr));
  edit_ = dialog_.GetDlgItem(IDC_LENGTH);
  ASSERT_TRUE(box_.SubclassWindow(edit_)) << "it may have another one";
  SetWindowTextA(edit_, "1e1");
  SendMessageA(edit_, WM_KILLFOCUS, 0, 0);
  EXPECT_EQ(text(), "10.000");
}

TEST_F(NumericEditBox, MayBeAttachedToAHostAfterItsWindowIsGone) {
  ::DestroyWindow(edit_);
  box_.Attach(dialog_);
  box_.Create(dialog_);
  EXPECT_EQ(::GetParent(box_), dialog_.m_hWnd);
}

TEST(NumericEditBoxRounds, LeaveNothingBehind) {
  CWindow host(CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 100, 100, nullptr, nullptr, nullptr, nullptr));
  expect_flat(1000, [&] {
    kexNumericEditBox box;
    box.Attach(host);
    box.Create(host);
    box.set_value(1.5);
    box.SendMessage(WM_KILLFOCUS);
    box.get_value();
    box.DestroyWindow();
  });
  host.DestroyWindow();
}

// The exception would unwind the edit control, which does not support exceptions.
class NumericEditBoxInChildProcess : public NumericEditBox {
 protected:
  void SetUp() override {
    NumericEditBox::SetUp();
    dialog_.fails = true;
  }
  void TearDown() override {
    dialog_.fails = false;  // destroying the dialog removes the focus
    NumericEditBox::TearDown();
  }
};

TEST_F(NumericEditBoxInChildProcess, AnExceptionOfTheParentEndsTheProgram) {
  EXPECT_EXIT(box_.set_value(1.0), testing::ExitedWithCode(3), c_library::said_by_terminate);
  EXPECT_EXIT(SendMessageA(edit_, WM_KILLFOCUS, 0, 0), testing::ExitedWithCode(3), c_library::said_by_terminate);
}

// ---- with the real keyboard ----------------------------------------------------------------------------------------

class NumericEditBoxOnScreen : public NumericEditBox {
 protected:
  void SetUp() override {
    park_mouse();
    NumericEditBox::SetUp();
    ASSERT_TRUE(bring_to_front(dialog_));
    click(edit_);
    ASSERT_TRUE(until([&] { return GetFocus() == edit_; }));
    dialog_.told.clear();
  }

  bool until(const std::function<bool()>& happened) const { return pump_dialog_until(dialog_, happened); }

  // Replaces the text by typing, and waits until it is shown.
  std::string type(const std::string& typed) {
    SendMessageA(edit_, EM_SETSEL, 0, -1);
    press_key(VK_DELETE);
    type_text(typed.c_str());
    until([&] { return text() == typed; });
    return text();
  }
  std::string leave() {
    press_key(VK_TAB);
    EXPECT_TRUE(until([&] { return GetFocus() == dialog_.GetDlgItem(IDC_WIDTH); }));
    const std::string shown = text();
    press_key(VK_TAB, VK_SHIFT);
    EXPECT_TRUE(until([&] { return GetFocus() == edit_; }));
    return shown;
  }
};

TEST_F(NumericEditBoxOnScreen, ShowsTheNumberWhenTheFocusLeaves) {
  ASSERT_EQ(type("2.5x"), "2.5x") << "nothing is filtered while typing";
  EXPECT_EQ(leave(), "2.500");
  EXPECT_EQ(box_.get_value(), 2.5);
  ASSERT_EQ(type("-4"), "-4");
  EXPECT_EQ(leave(), "-4.000");
  ASSERT_EQ(type("3,75"), "3,75");
  EXPECT_EQ(leave(), "3.000") << "the comma is not this user's";
  ASSERT_EQ(type("1.5e3"), "1.5e3");
  EXPECT_EQ(leave(), "1500.000");
  EXPECT_TRUE(Picture(dialog_).save("numeric_edit_box", 2));
}

TEST_F(NumericEditBoxOnScreen, TakesTextThatIsNoNumberFor0) {
  ASSERT_EQ(type("abc"), "abc");
  EXPECT_EQ(leave(), "0.000");
  ASSERT_EQ(type(""), "");
  EXPECT_EQ(leave(), "0.000");
  box_.set_decimal_places(1);
  ASSERT_EQ(type("-"), "-");
  EXPECT_EQ(leave(), "0.0");
}

TEST_F(NumericEditBoxOnScreen, DropsTheSignWhereNegativeNumbersAreNotAllowed) {
  box_.allow_negative_values(false);
  ASSERT_EQ(type("-4"), "-4");
  EXPECT_EQ(leave(), "4.000");
  EXPECT_EQ(box_.get_value(), 4.0);
}

TEST_F(NumericEditBoxOnScreen, ReadsWhatIsTypedSoFar) {
  ASSERT_EQ(type("12"), "12");
  EXPECT_EQ(box_.get_value(), 12.0);
  EXPECT_EQ(text(), "12");
}

TEST_F(NumericEditBoxOnScreen, TakesWhatIsPasted) {
  ASSERT_TRUE(OpenClipboard(dialog_));
  EmptyClipboard();
  const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 8);
  lstrcpyA(static_cast<char*>(GlobalLock(memory)), "8.25 kg");
  GlobalUnlock(memory);
  SetClipboardData(CF_TEXT, memory);
  CloseClipboard();
  ASSERT_EQ(type(""), "");
  press_key('V', VK_CONTROL);
  ASSERT_TRUE(until([&] { return text() == "8.25 kg"; }));
  EXPECT_EQ(leave(), "8.250");
}

TEST_F(NumericEditBoxOnScreen, TellsItsParentWhatAnEditControlTells) {
  type_text("1");
  ASSERT_TRUE(until([&] { return text() == "1"; }));
  press_key(VK_TAB);
  ASSERT_TRUE(until([&] { return GetFocus() != edit_; }));
  EXPECT_EQ(dialog_.told, (std::vector<int>{EN_UPDATE, EN_CHANGE,  // typed
                                            EN_UPDATE, EN_CHANGE,  // written again
                                            EN_KILLFOCUS}));
}

class NumericEditBoxWithACommaOnScreen : public NumericEditBoxOnScreen {
 protected:
  NumericEditBoxWithACommaOnScreen() { box_ = box_with(","); }
};

TEST_F(NumericEditBoxWithACommaOnScreen, ReadsAndShowsTheComma) {
  ASSERT_EQ(type("2,5x"), "2,5x");
  EXPECT_EQ(leave(), "2,500");
  EXPECT_EQ(box_.get_value(), 2.5);
  ASSERT_EQ(type("2.5"), "2.5");
  EXPECT_EQ(leave(), "2,500") << "a point is one everywhere";
}

}  // namespace
