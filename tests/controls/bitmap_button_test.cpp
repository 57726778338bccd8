// The bitmap button in a dialog: what it paints in each state and type, with the visual styles on and off.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/controls/bitmap_button.h>

#include <controls/resources.h>
#include <support/expect_flat.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/user_input.h>

#include <uxtheme.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace WTL;

namespace {

constexpr COLORREF behind = RGB(255, 255, 200), face = RGB(10, 200, 120), orange = RGB(0xE0, 0x60, 0x20);
constexpr int picture_size = 16;
constexpr int missing = 999;
constexpr auto other_type = static_cast<kexWTLButtonType>(2);

// A drawer of one colour that notes what it is asked to draw.
class Drawer : public wbzThemeDrawer {
 public:
  bool can_draw() const override {
    ++asked;
    return able;
  }
  void draw(HDC dc, const RECT& rect, wbzThemeStyle style) const override {
    styles.push_back(style);
    if (fails) throw std::runtime_error("cannot draw");
    const HBRUSH brush = CreateSolidBrush(face);
    FillRect(dc, &rect, brush);
    DeleteObject(brush);
  }
  bool able = true, fails = false;
  mutable int asked = 0;
  mutable std::vector<int> styles;
};

// Counts its paintings and clicks; its background is easily told from others.
class ButtonsDialog : public CDialogImpl<ButtonsDialog> {
 public:
  enum { IDD = IDD_BUTTONS };
  BEGIN_MSG_MAP(ButtonsDialog)
    MESSAGE_HANDLER(WM_PAINT, OnPaint)
    MESSAGE_HANDLER(WM_ERASEBKGND, OnErase)
    COMMAND_ID_HANDLER(IDC_OPEN, OnOpen)
  END_MSG_MAP()
  LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&) {
    ++paints;
    const WTL::CPaintDC dc(m_hWnd);
    if (on_paint) on_paint();
    return 0;
  }
  LRESULT OnErase(UINT, WPARAM wParam, LPARAM, BOOL&) {
    RECT client;
    GetClientRect(&client);
    const HBRUSH brush = CreateSolidBrush(behind);
    FillRect(reinterpret_cast<HDC>(wParam), &client, brush);
    DeleteObject(brush);
    return 1;
  }
  LRESULT OnOpen(WORD code, WORD, HWND, BOOL&) {
    if (code == BN_CLICKED) ++clicks;
    return 0;
  }
  int paints = 0, clicks = 0;
  std::function<void()> on_paint;
};

// The button with its inner workings in reach.
class Button : public kexWTLBitmapButton {
 public:
  using kexWTLBitmapButton::DoPaint;
  using kexWTLBitmapButton::kexWTLBitmapButton;
  using kexWTLBitmapButton::OnPaint;
};

class BitmapButtonControl : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dialog_.Create(nullptr));
    images_.Create(picture_size, picture_size, ILC_COLOR32, 2, 2);
    pump_waiting();
  }
  void TearDown() override {
    if (dialog_.IsWindow()) dialog_.DestroyWindow();
    images_.Destroy();
  }

  HWND window() const { return dialog_.GetDlgItem(IDC_OPEN); }
  Button& make(kexWTLButtonType type, const char* tooltip = nullptr) {
    button_ = std::make_unique<Button>(type);
    button_->SetInfo(window(), &images_, IDB_FRAME, tooltip, GetModuleHandle(nullptr));
    pump_waiting();
    return *button_;
  }
  std::shared_ptr<Drawer> set_drawer() {
    auto drawer = std::make_shared<Drawer>();
    button_->set_themer(wbzThemer::create(drawer, nullptr));
    return drawer;
  }
  // What DoPaint draws over a background.
  Picture paint(bool themed) const {
    RECT client;
    button_->GetClientRect(&client);
    Picture picture(client.right, client.bottom, behind);
    button_->DoPaint(CDCHandle(picture.dc()), themed);
    return picture;
  }
  WTL::CPoint middle() const {
    CRect client;
    button_->GetClientRect(client);
    return client.CenterPoint();
  }
  COLORREF color(bool themed = false) const { return paint(themed).at(middle().x, middle().y); }
  bool is_shifted(bool themed) const {
    RECT client;
    button_->GetClientRect(&client);
    const int left = (client.right - picture_size) / 2, top = (client.bottom - picture_size) / 2;
    const Picture picture = paint(themed);
    // The frame begins two pixels inside the picture.
    const COLORREF blue = RGB(0x20, 0x40, 0xA0);
    const bool at_place = picture.at(left + 2, top + 2) == blue && picture.at(left + 14, top + 14) != blue;
    const bool moved = picture.at(left + 2, top + 2) != blue && picture.at(left + 14, top + 14) == blue;
    EXPECT_NE(at_place, moved);
    return moved;
  }

  ButtonsDialog dialog_;
  WTL::CImageList images_;
  std::unique_ptr<Button> button_;
};

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
  EXPECT_STREQ(button.m_strToolTipText, "Open a file");
}

TEST_F(BitmapButtonControl, AddsEachPictureWithItsDisabledLook) {
  kexWTLBitmapButton button;
  EXPECT_EQ(button.AddImage(&images_, IDB_FRAME, GetModuleHandle(nullptr)), 0);
  EXPECT_EQ(button.AddImage(&images_, IDB_FRAME, GetModuleHandle(nullptr)), 2);
  EXPECT_EQ(images_.GetImageCount(), 4);
}

TEST_F(BitmapButtonControl, ShowsItsPictureInTheMiddle) {
  make(kexBtnTypePlain);
  EXPECT_EQ(color(), orange);
  EXPECT_FALSE(is_shifted(false));
  const CPoint at = middle();
  EXPECT_EQ(paint(false).at(at.x - 8, at.y), GetSysColor(COLOR_BTNFACE)) << "magenta became the face";
  EXPECT_EQ(paint(false).at(at.x - 9, at.y), behind);
}

TEST_F(BitmapButtonControl, IsGreyedWhereItIsThemedAndDisabled) {
  make(kexBtnTypeThemed);
  button_->EnableWindow(FALSE);
  const COLORREF grey = color();
  EXPECT_NE(grey, orange);
  EXPECT_EQ(GetRValue(grey), GetGValue(grey));
  EXPECT_EQ(GetGValue(grey), GetBValue(grey));
}

TEST_F(BitmapButtonControl, KeepsItsColorsWhereItIsOfAnotherTypeAndDisabled) {
  make(other_type);
  button_->EnableWindow(FALSE);
  EXPECT_EQ(color(), orange);
  EXPECT_EQ(button_->m_nImage[Button::_nImageDisabled], 1);
}

TEST_F(BitmapButtonControl, IsShiftedWhilePressedOnlyWithoutAPushedPicture) {
  make(kexBtnTypeThemed);
  set_drawer();
  button_->m_fPressed = 1;
  EXPECT_FALSE(is_shifted(false)) << "SetInfo sets one";
  button_->m_nImage[Button::_nImagePushed] = -1;
  EXPECT_TRUE(is_shifted(false));
  EXPECT_TRUE(is_shifted(true));
  button_->m_fPressed = 0;
  EXPECT_FALSE(is_shifted(false));
  button_->m_fPressed = 1;
  button_->SetBitmapButtonExtendedStyle(0, BMPBTN_AUTO3D_SINGLE);
  EXPECT_FALSE(is_shifted(false)) << "there is no edge to be pressed";
}

struct StateOfButton {
  const char* what;
  DWORD style;
  bool pressed, over, focus, enabled;
  int theme, image;  // images: 0 normal, 1 pushed, 2 hot, 3 disabled
};

const StateOfButton states_of_button[] = {
    {"normal", BMPBTN_HOVER, false, false, false, true, 0, 0},
    {"hot", BMPBTN_HOVER, false, true, false, true, 2, 2},
    {"pressed", BMPBTN_HOVER, true, true, true, true, 3, 1},
    {"pressed goes before disabled", BMPBTN_HOVER, true, false, false, false, 3, 1},
    {"disabled", BMPBTN_HOVER, false, false, false, false, 1, 3},
    {"disabled under the mouse is hot", BMPBTN_HOVER, false, true, false, false, 2, 2},
    {"in hover mode the focus does not show", BMPBTN_HOVER, false, false, true, true, 0, 0},
    {"the focus", 0, false, false, true, true, 2, 2},
    {"without hover mode the mouse does not show", 0, false, true, false, true, 0, 0},
    {"a check button looks pressed", BMPBTN_HOVER | BMPBTN_CHECK, false, false, false, true, 3, 0},
    {"a check button under the mouse", BMPBTN_HOVER | BMPBTN_CHECK, false, true, false, true, 2, 2},
    {"a check button disabled", BMPBTN_HOVER | BMPBTN_CHECK, false, false, false, false, 1, 3},
};

TEST_F(BitmapButtonControl, ShowsItsState) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  // Four pictures of one colour each.
  const COLORREF colors[] = {RGB(200, 0, 0), RGB(0, 160, 0), RGB(0, 0, 200), RGB(120, 120, 120)};
  const HIMAGELIST four = ImageList_Create(picture_size, picture_size, ILC_COLOR32, 4, 4);
  for (const COLORREF each : colors) {
    const Picture plain(picture_size, picture_size, each);
    const HBITMAP bitmap = CreateBitmap(picture_size, picture_size, 1, 32, nullptr);
    const HDC memory = CreateCompatibleDC(nullptr);
    const HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, picture_size, picture_size, plain.dc(), 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
    ImageList_Add(four, bitmap, nullptr);
    DeleteObject(bitmap);
  }
  button_->SetImageList(four);
  for (const StateOfButton& state : states_of_button) {
    button_->SetBitmapButtonExtendedStyle(state.style | BMPBTN_SHAREIMAGELISTS);
    button_->EnableWindow(state.enabled);
    button_->m_fPressed = state.pressed, button_->m_fMouseOver = state.over, button_->m_fFocus = state.focus;
    button_->SetImages(0, 1, 2, 3);
    drawer->styles.clear();
    EXPECT_EQ(color(true), colors[state.image]) << state.what;
    EXPECT_EQ(drawer->styles, std::vector<int>{state.theme}) << state.what;
    // Without a picture of its own, a state shows the normal one.
    for (const int k : {Button::_nImagePushed, Button::_nImageFocusOrHover, Button::_nImageDisabled})
      button_->m_nImage[k] = -1;
    EXPECT_EQ(color(true), colors[0]) << state.what;
  }
  button_->m_fPressed = button_->m_fMouseOver = button_->m_fFocus = 0;
  button_->SetImageList(images_);
  ImageList_Destroy(four);
}

// What DrawEdge makes of a picture.
Picture with_edge(Picture picture, const RECT& client, UINT edge) {
  RECT rect = client;
  DrawEdge(picture.dc(), &rect, edge, BF_RECT);
  return picture;
}

TEST_F(BitmapButtonControl, HasAnEdgeOnlyWhereItIsNotThemed) {
  make(kexBtnTypePlain);
  RECT client;
  button_->GetClientRect(&client);
  button_->SetBitmapButtonExtendedStyle(BMPBTN_HOVER);
  const auto bare = [&] { return paint(true); };  // a plain button's themer draws nothing, so this is the picture alone
  button_->set_themer(wbzThemer::create(nullptr, nullptr));
  struct {
    DWORD style;
    bool pressed, over;
    UINT edge;
  } const cases[] = {
      {BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE, false, false, 0},
      {BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE, false, true, BDR_RAISEDINNER},
      {BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE, true, true, BDR_SUNKENOUTER},
      {BMPBTN_HOVER | BMPBTN_AUTO3D_DOUBLE, false, true, EDGE_RAISED},
      {BMPBTN_HOVER | BMPBTN_AUTO3D_DOUBLE, true, false, EDGE_SUNKEN},
      {BMPBTN_AUTO3D_SINGLE, false, false, BDR_RAISEDINNER},
      {BMPBTN_AUTO3D_DOUBLE, false, false, EDGE_RAISED},
      {BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE | BMPBTN_CHECK, false, false, BDR_SUNKENOUTER},
      {BMPBTN_HOVER | BMPBTN_AUTO3D_DOUBLE | BMPBTN_CHECK, false, false, EDGE_SUNKEN},
      {BMPBTN_HOVER, true, true, 0},
  };
  for (const auto& each : cases) {
    button_->SetBitmapButtonExtendedStyle(each.style | BMPBTN_SHAREIMAGELISTS);
    button_->m_fPressed = each.pressed, button_->m_fMouseOver = each.over;
    EXPECT_TRUE(paint(false) == (each.edge ? with_edge(bare(), client, each.edge) : bare()))
        << each.style << " " << each.pressed << " " << each.over;
  }
  button_->m_fPressed = button_->m_fMouseOver = 0;

  button_->SetBitmapButtonExtendedStyle(BMPBTN_AUTO3D_SINGLE | BMPBTN_SHAREIMAGELISTS);
  button_->m_fFocus = 1;
  Picture expected = with_edge(bare(), client, BDR_RAISEDINNER);
  InflateRect(&client, -2 * GetSystemMetrics(SM_CXEDGE), -2 * GetSystemMetrics(SM_CYEDGE));
  DrawFocusRect(expected.dc(), &client);
  EXPECT_TRUE(paint(false) == expected) << "with the focus";
  button_->m_fFocus = 0;
}

TEST_F(BitmapButtonControl, PaintsTheFaceBelowThePictureAndNothingBesideIt) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  dialog_.paints = 0;
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(drawer->asked, 1);
  EXPECT_EQ(drawer->styles, std::vector<int>{wbzThemeNormal});
  const Picture shown(*button_);
  EXPECT_EQ(shown.at(1, 1), face);
  EXPECT_EQ(shown.at(middle().x, middle().y), orange);
  EXPECT_EQ(shown.at(0, 0), face) << "no edge";
}

TEST_F(BitmapButtonControl, DrawsNoFaceWhereTheThemerCannot) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  drawer->able = false;
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(drawer->asked, 1);
  EXPECT_TRUE(drawer->styles.empty());
  EXPECT_EQ(Picture(*button_).at(1, 1), behind);
  button_->set_themer(nullptr);
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(Picture(*button_).at(1, 1), behind);
}

TEST_F(BitmapButtonControl, NeverAsksAThemerWhereItIsPlain) {
  make(kexBtnTypePlain);
  const auto drawer = set_drawer();
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(drawer->asked, 0);
  EXPECT_TRUE(drawer->styles.empty());
  EXPECT_EQ(Picture(*button_).at(1, 1), behind);
}

TEST_F(BitmapButtonControl, HasItsParentPaintFirstAndIsNotPaintedMeanwhile) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  int nested = 0;
  LRESULT answer = -1;
  dialog_.on_paint = [&] {
    ++nested;
    BOOL handled = TRUE;
    answer = button_->OnPaint(WM_PAINT, 0, 0, handled);
    EXPECT_TRUE(drawer->styles.empty()) << "the parent comes first";
  };
  pump_waiting();
  dialog_.paints = 0;
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  dialog_.on_paint = nullptr;
  EXPECT_EQ(nested, 1);
  EXPECT_EQ(answer, 0);
  EXPECT_EQ(drawer->styles.size(), 1u);
  pump_waiting();
  EXPECT_EQ(dialog_.paints, 1) << "nor does it go on for ever";
}

// Its device context is not drawn into: that is meant.
TEST_F(BitmapButtonControl, AnswersPrintClientByPaintingItself) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  const Picture given(40, 40, behind), untouched(40, 40, behind);
  button_->Invalidate(FALSE);
  EXPECT_EQ(button_->SendMessage(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(given.dc()), PRF_CLIENT), 0);
  EXPECT_TRUE(given == untouched);
  EXPECT_EQ(drawer->styles.size(), 1u);
  EXPECT_EQ(Picture(*button_).at(1, 1), face);
}

TEST_F(BitmapButtonControl, PaintsAgainAfterAThemerHasThrown) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  drawer->fails = true;
  BOOL handled = TRUE;
  EXPECT_THROW(button_->OnPaint(WM_PAINT, 0, 0, handled), std::runtime_error);
  drawer->fails = false;
  EXPECT_EQ(button_->OnPaint(WM_PAINT, 0, 0, handled), 0);
  EXPECT_EQ(drawer->styles.size(), 2u);
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
  EXPECT_EQ(button_->m_nImage[Button::_nImagePushed], 0);  // meant
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

TEST_F(BitmapButtonControl, WithoutAPictureIsJustAFace) {
  button_ = std::make_unique<Button>(kexBtnTypeThemed);
  button_->SetInfo(window(), &images_, missing, nullptr, GetModuleHandle(nullptr));
  EXPECT_EQ(images_.GetImageCount(), 0);
  EXPECT_EQ(button_->m_nImage[Button::_nImageNormal], -1);
  set_drawer();
  EXPECT_EQ(color(true), face);
  EXPECT_EQ(color(false), behind);
  EXPECT_STREQ(button_->m_strToolTipText, "");
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
  EXPECT_STREQ(button.m_strToolTipText, "text");
}

TEST_F(BitmapButtonControl, StaysWithItsFirstButton) {
  make(kexBtnTypeThemed);
  button_->SetInfo(window(), &images_, IDB_FRAME, "again", GetModuleHandle(nullptr));
  button_->SetInfo(dialog_.GetDlgItem(IDC_LATER), &images_, IDB_FRAME, "later", GetModuleHandle(nullptr));
  EXPECT_EQ(button_->m_hWnd, window());
  EXPECT_EQ(button_->m_nImage[Button::_nImageNormal], 4);
  EXPECT_STREQ(button_->m_strToolTipText, "later");
  pump_waiting();
  EXPECT_EQ(color(), orange);
}

TEST_F(BitmapButtonControl, LeavesTheImageListToTheCaller) {
  make(kexBtnTypeThemed);
  dialog_.DestroyWindow();
  EXPECT_EQ(button_->m_hWnd, nullptr);
  button_.reset();
  EXPECT_EQ(images_.GetImageCount(), 2);
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
    copy = *button_;
    copy.m_hWnd = nullptr;
    copy.m_tip.m_hWnd = nullptr;
  }
  EXPECT_EQ(images_.GetImageCount(), 2);
}

TEST_F(BitmapButtonControl, MayStandInNoParentAtAll) {
  const HWND alone =
      CreateWindowA("BUTTON", "", WS_POPUP | WS_VISIBLE, 0, 0, 30, 30, nullptr, nullptr, nullptr, nullptr);
  pump_waiting();
  ValidateRect(dialog_, nullptr);
  button_ = std::make_unique<Button>(kexBtnTypeThemed);
  button_->SetInfo(alone, &images_, IDB_FRAME, nullptr, GetModuleHandle(nullptr));
  dialog_.paints = 0;
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(dialog_.paints, 0);
  DestroyWindow(alone);
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

// All states of all types, with the visual styles on and off.
TEST_F(BitmapButtonControl, HasAPictureOfEachStateForPeopleToLookAt) {
  constexpr int columns = 6, cell_width = 44, cell_height = 42;
  for (const bool styled : {true, false}) {
    Picture sheet(columns * cell_width, 3 * cell_height, GetSysColor(COLOR_BTNFACE));
    int row = 0;
    for (const kexWTLButtonType type : {kexBtnTypeThemed, kexBtnTypePlain, other_type}) {
      make(type);
      if (!styled) {
        ASSERT_EQ(SetWindowTheme(*button_, L" ", L" "), S_OK);
      }
      const auto add = [&](int column) {
        button_->Invalidate(FALSE);
        button_->UpdateWindow();
        const Picture shown(*button_);
        BitBlt(sheet.dc(), column * cell_width + 4, row * cell_height + 4, 40, 40, shown.dc(), 0, 0, SRCCOPY);
      };
      add(0);
      button_->m_fMouseOver = 1, add(1), button_->m_fMouseOver = 0;
      button_->m_fPressed = 1, add(2), button_->m_fPressed = 0;
      button_->EnableWindow(FALSE), add(3), button_->EnableWindow(TRUE);
      button_->SetBitmapButtonExtendedStyle(0, BMPBTN_HOVER);
      button_->m_fFocus = 1, add(4), button_->m_fFocus = 0;
      button_->SetBitmapButtonExtendedStyle(BMPBTN_HOVER | BMPBTN_CHECK, BMPBTN_HOVER | BMPBTN_CHECK), add(5);
      ++row;
      dialog_.DestroyWindow();
      ASSERT_TRUE(dialog_.Create(nullptr));
    }
    EXPECT_TRUE(sheet.save(styled ? "bitmap_button_styled" : "bitmap_button_plain", 3));
  }
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
