// The bitmap button in a dialog: its pictures, its tooltip, and the real mouse over it.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/controls/bitmap_button.h>

#include <controls/bitmap_button_fixture.h>
#include <support/expect_flat.h>
#include <support/user_input.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

std::string tooltip_of(const kexWTLBitmapButton& button) {
  char text[80] = "";
  EXPECT_TRUE(button.GetToolTipText(text, sizeof text));
  return text;
}

// What the tooltip shows.
std::string shown_by_the_tooltip(kexWTLBitmapButton& button) {
  char text[80] = "";
  WTL::CToolInfo tool(0, button, 0, nullptr, text);
  button.m_tip.SendMessage(TTM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(&tool));
  return text;
}

TEST(BitmapButtonMade, HasTheStylesOfAHoveringButtonThatSharesItsImages) {
  kexWTLBitmapButton button;
  EXPECT_EQ(button.GetBitmapButtonExtendedStyle(), 0x13u);
  EXPECT_EQ(button.GetImageList(), nullptr);
  for (const int image : button.m_nImage) EXPECT_EQ(image, -1);
  EXPECT_EQ(button.m_hWnd, nullptr);
  kexWTLBitmapButton plain(kexBtnTypePlain);
  EXPECT_EQ(plain.GetBitmapButtonExtendedStyle(), 0x13u);
}

TEST_F(BitmapButtonControl, TakesTheButtonOver) {
  Button& button = make(kexBtnTypeThemed, "Open a file");
  EXPECT_EQ(button.m_hWnd, window());
  EXPECT_EQ(button.GetStyle() & BS_OWNERDRAW, DWORD{BS_OWNERDRAW});
  EXPECT_EQ(button.GetImageList(), images_.m_hImageList);
  EXPECT_EQ(images_.GetImageCount(), 2);
  EXPECT_EQ(button.m_nImage[Button::_nImageNormal], 0);
  EXPECT_EQ(button.m_nImage[Button::_nImagePushed], 0);
  EXPECT_EQ(button.m_nImage[Button::_nImageFocusOrHover], -1);
  EXPECT_EQ(button.m_nImage[Button::_nImageDisabled], 1);
  char name[32] = "";
  GetClassNameA(button.m_tip, name, sizeof name);
  EXPECT_STREQ(name, "tooltips_class32");
  EXPECT_EQ(tooltip_of(button), "Open a file");
}

TEST_F(BitmapButtonControl, AddsEachPictureWithItsDisabledLook) {
  kexWTLBitmapButton button;
  EXPECT_EQ(button.AddImage(&images_, IDB_FRAME, GetModuleHandle(nullptr)), 0);
  EXPECT_EQ(button.AddImage(&images_, IDB_FRAME, GetModuleHandle(nullptr)), 2);
  EXPECT_EQ(images_.GetImageCount(), 4);
}

TEST_F(BitmapButtonControl, HandlesNothingOfOtherMaps) {
  make(kexBtnTypeThemed);
  LRESULT result = 17;
  EXPECT_FALSE(button_->ProcessWindowMessage(*button_, WM_PAINT, 0, 0, result, 1));
  EXPECT_FALSE(button_->ProcessWindowMessage(*button_, WM_ERASEBKGND, 0, 0, result, 1));
  EXPECT_EQ(result, 17);
}

TEST_F(BitmapButtonControl, ShowsAnotherPictureAndKeepsThePushedOne) {
  make(kexBtnTypeThemed);
  const int second = button_->AddImage(&images_, IDB_FRAME, GetModuleHandle(nullptr));
  const auto is_invalid = [&] { return GetUpdateRect(*button_, nullptr, FALSE) != 0; };
  ValidateRect(*button_, nullptr);
  button_->SetImage(0);
  EXPECT_FALSE(is_invalid()) << "it is the current one";
  button_->SetImage(second);
  EXPECT_TRUE(is_invalid());
  EXPECT_EQ(button_->m_nImage[Button::_nImageNormal], second);
  EXPECT_EQ(button_->m_nImage[Button::_nImageDisabled], second + 1);
  EXPECT_EQ(button_->m_nImage[Button::_nImagePushed], 0) << "by design it stays the one of SetInfo";
  EXPECT_EQ(button_->m_nImage[Button::_nImageFocusOrHover], -1);
  button_->SetImage(-1);
  EXPECT_EQ(button_->m_nImage[Button::_nImageNormal], second);
  EXPECT_EQ(button_->m_nImage[Button::_nImageDisabled], 0);
  button_->SetImage(-2);
  EXPECT_EQ(button_->m_nImage[Button::_nImageNormal], -2);
  EXPECT_EQ(button_->m_nImage[Button::_nImageDisabled], 0);
}

TEST_F(BitmapButtonControl, WithoutAWindowInvalidatesNoOther) {
  kexWTLBitmapButton button;
  pump_waiting();
  ValidateRect(dialog_, nullptr);
  button.SetImage(3);
  EXPECT_EQ(button.m_nImage[Button::_nImageNormal], 3);
  EXPECT_FALSE(GetUpdateRect(dialog_, nullptr, FALSE));
}

TEST_F(BitmapButtonControl, TellsTheImageThatItShows) {
  EXPECT_EQ(kexWTLBitmapButton().GetImage(), -1);
  kexWTLBitmapButton().AddImage(&images_, IDB_FRAME, GetModuleHandle(nullptr));
  make(kexBtnTypeThemed);
  EXPECT_EQ(button_->GetImage(), 2);
  button_->SetImage(0);
  EXPECT_EQ(button_->GetImage(), 0);
  button_->SetImage(-1);
  EXPECT_EQ(button_->GetImage(), 0) << "-1 sets the disabled picture only";
}

TEST_F(BitmapButtonControl, WithoutAPictureIsJustAFace) {
  button_ = std::make_unique<Button>(kexBtnTypeThemed);
  button_->SetInfo(window(), &images_, missing, nullptr, GetModuleHandle(nullptr));
  EXPECT_EQ(images_.GetImageCount(), 0);
  EXPECT_EQ(button_->m_nImage[Button::_nImageNormal], -1);
  set_drawer();
  EXPECT_EQ(color(true), face);
  EXPECT_EQ(color(false), behind);
  EXPECT_EQ(button_->GetToolTipTextLength(), -1);
}

TEST_F(BitmapButtonControl, WithoutAnImageListIsJustAFace) {
  button_ = std::make_unique<Button>(kexBtnTypeThemed);
  button_->SetInfo(window(), nullptr, IDB_FRAME, "text", GetModuleHandle(nullptr));
  EXPECT_EQ(color(false), behind);
}

TEST_F(BitmapButtonControl, WithoutAButtonKeepsTheRestOfItsInfo) {
  Button button(kexBtnTypeThemed);
  button.SetInfo(nullptr, &images_, IDB_FRAME, "text", GetModuleHandle(nullptr));
  EXPECT_EQ(button.m_hWnd, nullptr);
  EXPECT_EQ(button.m_nImage[Button::_nImageNormal], 0);
  EXPECT_EQ(button.m_nImage[Button::_nImageDisabled], 1);
  EXPECT_EQ(tooltip_of(button), "text");
}

TEST_F(BitmapButtonControl, TakesOtherInformationForItsButton) {
  make(kexBtnTypeThemed);
  button_->SetInfo(window(), &images_, IDB_FRAME, "again", GetModuleHandle(nullptr));
  EXPECT_EQ(button_->m_hWnd, window());
  EXPECT_EQ(button_->m_nImage[Button::_nImageNormal], 2);
  EXPECT_EQ(tooltip_of(*button_), "again");
  pump_waiting();
  EXPECT_EQ(color(), orange);
}

TEST_F(BitmapButtonControl, MovesToTheButtonThatItIsGiven) {
  make(kexBtnTypeThemed);
  const HWND later = dialog_.GetDlgItem(IDC_LATER);
  button_->SetInfo(later, &images_, IDB_FRAME, "later", GetModuleHandle(nullptr));
  EXPECT_EQ(button_->m_hWnd, later);
  EXPECT_EQ(shown_by_the_tooltip(*button_), "later");

  kexWTLBitmapButton copy(*button_);
  copy.SetInfo(window(), &images_, IDB_FRAME, "copy", GetModuleHandle(nullptr));
  EXPECT_EQ(copy.m_hWnd, window());
  EXPECT_EQ(shown_by_the_tooltip(copy), "copy");
  EXPECT_EQ(button_->m_hWnd, later);
  copy.UnsubclassWindow();
}

TEST_F(BitmapButtonControl, KeepsItsButtonWhereItIsGivenNone) {
  make(kexBtnTypeThemed);
  button_->SetInfo(nullptr, &images_, IDB_FRAME, "none", GetModuleHandle(nullptr));
  EXPECT_EQ(button_->m_hWnd, window());
  EXPECT_EQ(tooltip_of(*button_), "none");
}

TEST_F(BitmapButtonControl, IsShownPressedByItsState) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  SendMessageA(window(), BM_SETSTATE, TRUE, 0);
  EXPECT_TRUE(button_->m_fPressed);
  SendMessageA(window(), BM_SETSTATE, FALSE, 0);
  EXPECT_FALSE(button_->m_fPressed);
  EXPECT_EQ(drawer->styles, (std::vector<int>{wbzThemePressed, wbzThemeNormal})) << "painted at once";
}

// A dialog that opens on the click gets the mouse.
TEST_F(BitmapButtonControl, NotifiesOfAClickAfterItHasReleasedTheMouse) {
  make(kexBtnTypeThemed);
  const LPARAM inside = MAKELPARAM(5, 5), outside = MAKELPARAM(-5, 5);
  SendMessageA(window(), WM_LBUTTONDOWN, MK_LBUTTON, inside);
  EXPECT_EQ(GetCapture(), window());
  SendMessageA(window(), WM_LBUTTONUP, 0, inside);
  EXPECT_EQ(dialog_.clicks, 1);
  EXPECT_EQ(dialog_.mouse_at_click, nullptr);
  EXPECT_FALSE(button_->m_fPressed);

  SendMessageA(window(), WM_LBUTTONDOWN, MK_LBUTTON, inside);
  SendMessageA(window(), WM_MOUSEMOVE, MK_LBUTTON, outside);
  SendMessageA(window(), WM_LBUTTONUP, 0, outside);
  EXPECT_EQ(dialog_.clicks, 1) << "the mouse has left it";
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_FALSE(button_->GetCheck());

  button_->SetBitmapButtonExtendedStyle(BMPBTN_AUTOCHECK, BMPBTN_AUTOCHECK);
  SendMessageA(window(), WM_LBUTTONDOWN, MK_LBUTTON, inside);
  SendMessageA(window(), WM_LBUTTONUP, 0, inside);
  EXPECT_EQ(dialog_.clicks, 2);
  EXPECT_TRUE(button_->GetCheck());
}

// ---- another window for the same object -----------------------------------------------------------------------------

WNDPROC procedure_of(HWND window) { return reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC)); }

TEST_F(BitmapButtonControl, TakesTheSameButtonTwice) {
  const WNDPROC of_the_system = procedure_of(window());
  make(kexBtnTypeThemed, "Open a file");
  const auto drawer = set_drawer();
  const HWND first_tip = button_->m_tip;
  ASSERT_TRUE(button_->SubclassWindow(window()));
  EXPECT_EQ(button_->m_pfnSuperWindowProc, of_the_system);
  EXPECT_FALSE(IsWindow(first_tip));
  EXPECT_EQ(button_->m_tip.GetToolCount(), 1);
  button_->Invalidate();
  button_->UpdateWindow();
  EXPECT_EQ(drawer->styles, std::vector<int>{wbzThemeNormal});
  EXPECT_EQ(button_->UnsubclassWindow(), window());
  EXPECT_EQ(procedure_of(window()), of_the_system);
}

TEST_F(BitmapButtonControl, LeavesItsButtonForAnother) {
  const HWND first = window(), second = dialog_.GetDlgItem(IDC_LATER);
  const WNDPROC of_the_system = procedure_of(first);
  make(kexBtnTypeThemed, "Open a file");
  const HWND first_tip = button_->m_tip;
  SendMessageA(first, BM_SETSTATE, TRUE, 0);
  ASSERT_TRUE(button_->m_fPressed);
  ASSERT_TRUE(button_->SubclassWindow(second));
  EXPECT_EQ(button_->m_hWnd, second);
  EXPECT_EQ(procedure_of(first), of_the_system);
  EXPECT_FALSE(button_->m_fPressed) << "the first one was";
  EXPECT_FALSE(IsWindow(first_tip));
  EXPECT_EQ(GetWindow(button_->m_tip, GW_OWNER), dialog_.m_hWnd);
  EXPECT_EQ(button_->m_tip.GetToolCount(), 1);
  EXPECT_EQ(button_->GetStyle() & BS_OWNERDRAW, DWORD{BS_OWNERDRAW});
  EXPECT_EQ(color(), orange);

  const auto drawer = set_drawer();
  SendMessageA(first, BM_SETSTATE, FALSE, 0);
  ::DestroyWindow(first);
  EXPECT_EQ(button_->m_hWnd, second);
  button_->Invalidate();
  button_->UpdateWindow();
  EXPECT_EQ(drawer->styles, std::vector<int>{wbzThemeNormal});
}

TEST_F(BitmapButtonControl, TakesAnotherButtonWhenTheFirstIsDestroyed) {
  make(kexBtnTypeThemed, "Open a file");
  SendMessageA(window(), BM_SETSTATE, TRUE, 0);
  ::DestroyWindow(window());
  ASSERT_EQ(button_->m_hWnd, nullptr);
  const HWND second = dialog_.GetDlgItem(IDC_LATER);
  ASSERT_TRUE(button_->SubclassWindow(second));
  EXPECT_FALSE(button_->m_fPressed);
  EXPECT_EQ(button_->m_tip.GetToolCount(), 1);
  EXPECT_EQ(color(), orange);
}

TEST_F(BitmapButtonControl, KeepsItsButtonWhereTheSystemRefusesAnother) {
  make(kexBtnTypeThemed, "Open a file");
  const auto drawer = set_drawer();
  const HWND tip = button_->m_tip;
  SendMessageA(window(), BM_SETSTATE, TRUE, 0);
  EXPECT_FALSE(button_->SubclassWindow(nullptr));
  EXPECT_FALSE(button_->SubclassWindow(GetDesktopWindow()));
  EXPECT_EQ(button_->m_hWnd, window());
  EXPECT_EQ(button_->m_tip.m_hWnd, tip);
  EXPECT_TRUE(button_->m_fPressed);
  drawer->styles.clear();
  button_->Invalidate();
  button_->UpdateWindow();
  EXPECT_EQ(drawer->styles, std::vector<int>{wbzThemePressed});
}

TEST_F(BitmapButtonControl, KeepsItsButtonWhereSomebodyElseHasSubclassedIt) {
  make(kexBtnTypeThemed, "Open a file");
  const HWND tip = button_->m_tip, later = dialog_.GetDlgItem(IDC_LATER);
  const WNDPROC of_the_system = procedure_of(later);
  Button somebody_else(kexBtnTypeThemed);
  ASSERT_TRUE(somebody_else.SubclassWindow(window()));
  EXPECT_FALSE(button_->SubclassWindow(later));
  EXPECT_EQ(button_->m_hWnd, window());
  EXPECT_EQ(button_->m_tip.m_hWnd, tip);
  EXPECT_EQ(procedure_of(later), of_the_system);
  EXPECT_TRUE(somebody_else.UnsubclassWindow());
  EXPECT_TRUE(button_->SubclassWindow(later)) << "free again";
}

// ---------------------------------------------------------------------------------------------------------------------

TEST_F(BitmapButtonControl, TakesTheSizeOfItsPictureOnlyWhereItIsAsked) {
  const auto size = [&] {
    WTL::CRect rect;
    ::GetWindowRect(window(), rect);
    return std::pair{rect.Width(), rect.Height()};
  };
  const auto before = size();
  ASSERT_NE(before, (std::pair{picture_size, picture_size}));
  make(kexBtnTypeThemed);
  EXPECT_EQ(size(), before);

  button_->SetBitmapButtonExtendedStyle(BMPBTN_AUTOSIZE, BMPBTN_AUTOSIZE);
  button_->SetInfo(window(), &images_, IDB_FRAME, nullptr, GetModuleHandle(nullptr));
  EXPECT_EQ(size(), (std::pair{picture_size, picture_size}));
  button_->UnsubclassWindow();

  ::SetWindowPos(window(), nullptr, 0, 0, before.first, before.second, SWP_NOMOVE | SWP_NOZORDER);
  Button sized(kexBtnTypeThemed);
  sized.SetBitmapButtonExtendedStyle(BMPBTN_AUTOSIZE, BMPBTN_AUTOSIZE);
  sized.SetInfo(window(), &images_, IDB_FRAME, nullptr, GetModuleHandle(nullptr));
  EXPECT_EQ(size(), (std::pair{picture_size, picture_size})) << "the first time too";
  sized.UnsubclassWindow();
}

// Whether the tooltip was switched on (1) or off (0), in order.
std::vector<int> activations;
WNDPROC tooltip_procedure = nullptr;
LRESULT CALLBACK record_activation(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == TTM_ACTIVATE) activations.push_back(static_cast<int>(w));
  return CallWindowProcA(tooltip_procedure, window, message, w, l);
}

TEST_F(BitmapButtonControl, HasNoTooltipForANullText) {
  make(kexBtnTypeThemed, "Open a file");
  tooltip_procedure = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(button_->m_tip, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(record_activation)));
  activations.clear();
  button_->SetInfo(window(), &images_, IDB_FRAME, nullptr, GetModuleHandle(nullptr));
  EXPECT_EQ(activations, std::vector<int>{0});
  EXPECT_EQ(button_->GetToolTipTextLength(), -1);
  button_->SetInfo(window(), &images_, IDB_FRAME, "again", GetModuleHandle(nullptr));
  EXPECT_EQ(activations, (std::vector<int>{0, 1}));
}

TEST_F(BitmapButtonControl, LeavesTheImageListToTheCaller) {
  make(kexBtnTypeThemed);
  dialog_.DestroyWindow();
  EXPECT_EQ(button_->m_hWnd, nullptr);
  button_.reset();
  EXPECT_EQ(images_.GetImageCount(), 2);
}

TEST_F(BitmapButtonControl, ShowsTheLatestTextInItsTooltip) {
  make(kexBtnTypeThemed, "first");
  EXPECT_EQ(shown_by_the_tooltip(*button_), "first");
  button_->SetInfo(window(), &images_, IDB_FRAME, "second", GetModuleHandle(nullptr));
  EXPECT_EQ(shown_by_the_tooltip(*button_), "second");
  EXPECT_EQ(button_->m_tip.GetToolCount(), 1);
}

TEST_F(BitmapButtonControl, WithoutAnImageListDoesNotTakeItsSize) {
  make(kexBtnTypeThemed);
  button_->SetBitmapButtonExtendedStyle(BMPBTN_AUTOSIZE, BMPBTN_AUTOSIZE);
  button_->SetInfo(window(), nullptr, IDB_FRAME, nullptr, GetModuleHandle(nullptr));
  EXPECT_EQ(button_->GetImageList(), nullptr);
  button_->UpdateWindow();
}

TEST_F(BitmapButtonControl, ACopySharesTheThemer) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  EXPECT_EQ(drawer.use_count(), 2);
  {
    Button copy(*button_);
    Picture picture(30, 30, behind);
    copy.DoPaint(CDCHandle(picture.dc()), true);
    EXPECT_EQ(drawer->styles.size(), 1u);
    EXPECT_EQ(copy.m_nImage[Button::_nImageDisabled], 1);
  }
  EXPECT_EQ(images_.GetImageCount(), 2);
}

TEST(BitmapButtonCopies, OfAFreshOneAreFresh) {
  const kexWTLBitmapButton plain(kexBtnTypePlain);
  kexWTLBitmapButton copy(plain), assigned;
  EXPECT_EQ(&(assigned = plain), &assigned);
  const kexWTLBitmapButton& itself = assigned;
  assigned = itself;
  for (const kexWTLBitmapButton* each : {&copy, &assigned}) {
    EXPECT_EQ(each->GetBitmapButtonExtendedStyle(), 0x13u);
    EXPECT_EQ(each->m_hWnd, nullptr);
    EXPECT_EQ(each->GetImageList(), nullptr);
    for (const int image : each->m_nImage) EXPECT_EQ(image, -1);
    EXPECT_EQ(each->GetToolTipTextLength(), -1);
  }
}

TEST_F(BitmapButtonControl, ACopyOfOneWithoutAWindowHasItsSettingsAndATextOfItsOwn) {
  for (const bool source_goes_first : {true, false}) {
    auto source = std::make_unique<Button>(other_type);
    source->SetInfo(nullptr, &images_, IDB_FRAME, "text", GetModuleHandle(nullptr));
    source->SetBitmapButtonExtendedStyle(BMPBTN_CHECK | BMPBTN_AUTOSIZE, BMPBTN_CHECK | BMPBTN_AUTOSIZE);
    source->SetCheck(true, false);
    auto copy = std::make_unique<Button>(*source);
    Button assigned;
    assigned.SetToolTipText("before");
    assigned = *source;
    if (source_goes_first) source.reset();
    for (Button* each : {copy.get(), &assigned}) {
      EXPECT_EQ(each->GetBitmapButtonExtendedStyle(), DWORD{0x13 | BMPBTN_CHECK | BMPBTN_AUTOSIZE});
      EXPECT_EQ(each->GetImageList(), images_.m_hImageList);
      EXPECT_EQ(each->m_nImage[Button::_nImageDisabled], each->m_nImage[Button::_nImageNormal] + 1);
      EXPECT_TRUE(each->GetCheck());
      EXPECT_EQ(tooltip_of(*each), "text");
    }
    copy->SetToolTipText("other");
    if (!source_goes_first) {
      EXPECT_EQ(tooltip_of(*source), "text");
    }
    copy.reset();
    source.reset();
  }
  EXPECT_GT(images_.GetImageCount(), 0);
}

TEST_F(BitmapButtonControl, ACopyOfALiveOneHasItsWindowButNotItsMessages) {
  make(kexBtnTypeThemed, "text");
  const auto drawer = set_drawer();
  {
    Button copy(*button_), assigned;
    assigned = *button_;
    for (Button* each : {&copy, &assigned}) {
      EXPECT_EQ(each->m_hWnd, window());
      EXPECT_EQ(each->m_tip.m_hWnd, button_->m_tip.m_hWnd);
    }
    EXPECT_EQ(button_->m_tip.GetToolCount(), 1) << "copying adds no text to the tooltip";
  }
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(drawer->styles.size(), 1u) << "the source is there still";
  EXPECT_EQ(shown_by_the_tooltip(*button_), "text");

  const Button copy(*button_);
  button_->UnsubclassWindow();
  button_.reset();
  EXPECT_TRUE(::IsWindow(copy)) << "the source may go first";
}

TEST_F(BitmapButtonControl, ALiveOneKeepsItsWindowWhenItIsAssignedTo) {
  make(kexBtnTypeThemed, "text");
  const HWND tip = button_->m_tip, before = window();
  Button other(kexBtnTypePlain);
  other.SetInfo(dialog_.GetDlgItem(IDC_LATER), &images_, IDB_FRAME, "other", GetModuleHandle(nullptr));
  *button_ = other;
  EXPECT_EQ(button_->m_hWnd, before);
  EXPECT_EQ(button_->m_tip.m_hWnd, tip);
  EXPECT_EQ(shown_by_the_tooltip(*button_), "other");
  EXPECT_EQ(button_->m_nImage[Button::_nImageNormal], 2);
  *button_ = Button();
  EXPECT_EQ(button_->m_hWnd, before);
  EXPECT_EQ(button_->GetImageList(), nullptr);
  EXPECT_EQ(button_->GetToolTipTextLength(), -1);
  button_->UpdateWindow();
  other.UnsubclassWindow();
}

TEST_F(BitmapButtonControl, ACopyNeverOwnsTheImageList) {
  const HIMAGELIST owned = ImageList_Create(picture_size, picture_size, ILC_COLOR32, 1, 1),
                   replaced = ImageList_Create(picture_size, picture_size, ILC_COLOR32, 1, 1);
  {
    Button owner;
    owner.SetImageList(owned);
    owner.SetBitmapButtonExtendedStyle(0, BMPBTN_SHAREIMAGELISTS);
    { const Button copy(owner); }
    EXPECT_EQ(ImageList_GetImageCount(owned), 0);
    EXPECT_TRUE(ImageList_SetImageCount(owned, 1)) << "it is there still";

    Button assigned;
    assigned.SetImageList(replaced);
    assigned.SetBitmapButtonExtendedStyle(0, BMPBTN_SHAREIMAGELISTS);
    assigned = owner;
    EXPECT_FALSE(ImageList_SetImageCount(replaced, 1)) << "it was the object's own";
    EXPECT_EQ(ImageList_GetImageCount(owned), 1);
  }
  EXPECT_FALSE(ImageList_SetImageCount(owned, 1));
}

TEST_F(BitmapButtonControl, RoundsLeaveNothingBehind) {
  expect_flat(1000, [&] {
    const HWND made =
        CreateWindowA("BUTTON", "", WS_CHILD | WS_VISIBLE, 0, 0, 30, 30, dialog_, nullptr, nullptr, nullptr);
    kexWTLBitmapButton button;
    button.SetInfo(made, &images_, IDB_FRAME, "text", GetModuleHandle(nullptr));
    button.SetInfo(made, &images_, missing, nullptr, GetModuleHandle(nullptr));
    button.UpdateWindow();
    DestroyWindow(made);
    while (images_.GetImageCount() > 0) ImageList_Remove(images_, -1);
  });
}

// ---- with the real mouse -------------------------------------------------------------------------------------------

class BitmapButtonControlOnScreen : public BitmapButtonControl {
 protected:
  void SetUp() override {
    park_mouse();
    BitmapButtonControl::SetUp();
    ASSERT_TRUE(bring_to_front(dialog_));
  }
  void TearDown() override {
    park_mouse();
    BitmapButtonControl::TearDown();
  }
};

TEST_F(BitmapButtonControlOnScreen, FollowsTheMouse) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  const auto last = [&](wbzThemeStyle style) {
    return pump_until([&] { return !drawer->styles.empty() && drawer->styles.back() == style; });
  };
  move_mouse_over(*button_);
  EXPECT_TRUE(last(wbzThemeHot));
  mouse_button(MOUSEEVENTF_LEFTDOWN);
  EXPECT_TRUE(last(wbzThemePressed));
  EXPECT_EQ(dialog_.clicks, 0);
  mouse_button(MOUSEEVENTF_LEFTUP);
  EXPECT_TRUE(pump_until([&] { return dialog_.clicks == 1; }));
  EXPECT_TRUE(last(wbzThemeHot));
  park_mouse();
  EXPECT_TRUE(last(wbzThemeNormal));
}

TEST_F(BitmapButtonControlOnScreen, ShowsItsTooltip) {
  make(kexBtnTypeThemed, "Open a file");
  button_->m_tip.SetDelayTime(TTDT_INITIAL, 20);
  move_mouse_over(*button_);
  EXPECT_TRUE(pump_until([&] { return button_->m_tip.IsWindowVisible(); }));
  EXPECT_TRUE(Picture(button_->m_tip).save("bitmap_button_tooltip", 3));
  park_mouse();
  EXPECT_TRUE(pump_until([&] { return !button_->m_tip.IsWindowVisible(); }));
}

}  // namespace
