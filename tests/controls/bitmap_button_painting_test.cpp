// The painting of a bitmap button in each state and type, with the visual styles on and off, and with faulty themers.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/controls/bitmap_button.h>

#include <afx.h>
#include <uxtheme.h>

#include <controls/bitmap_button_fixture.h>
#include <support/debugger_output.h>
#include <support/import_override.h>

#include <memory>
#include <string>
#include <vector>

namespace {

TEST_F(BitmapButtonControl, ShowsItsPictureInTheMiddle) {
  make(kexBtnTypePlain);
  EXPECT_EQ(color(), orange);
  EXPECT_FALSE(is_shifted(false));
  const WTL::CPoint at = middle();
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
    // A state without a picture shows the normal picture.
    for (const int k : {Button::_nImagePushed, Button::_nImageFocusOrHover, Button::_nImageDisabled})
      button_->m_nImage[k] = -1;
    EXPECT_EQ(color(true), colors[0]) << state.what;
  }
  button_->m_fPressed = button_->m_fMouseOver = button_->m_fFocus = 0;
  button_->SetImageList(images_);
  ImageList_Destroy(four);
}

// A picture with an edge of DrawEdge.
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
  const auto bare = [&] { return paint(true); };  // the picture only: the themer of a plain button draws nothing
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

// Kept for compatibility: callers see the button painted on the screen, not in the device context of the message.
TEST_F(BitmapButtonControl, MayBeDestroyedWhileItsParentPaints) {
  Button& button = make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  dialog_.on_paint = [&] { DestroyWindow(button); };
  BOOL handled = TRUE;
  EXPECT_EQ(button.OnPaint(WM_PAINT, 0, 0, handled), 0);
  EXPECT_EQ(button.m_hWnd, nullptr);
  EXPECT_EQ(drawer->styles, std::vector<int>());
}

TEST_F(BitmapButtonControl, DrawsNothingWithoutAWindow) {
  Button alone;
  alone.set_themer(wbzThemer::create(std::make_shared<Drawer>(), nullptr));
  Picture picture(picture_size, picture_size, behind);
  alone.DoPaint(CDCHandle(picture.dc()), true);
  EXPECT_EQ(picture.at(picture_size / 2, picture_size / 2), behind);
}

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

// ---- another themer in the middle of a painting ---------------------------------------------------------------------

TEST_F(BitmapButtonControl, PaintsToTheEndWithAThemerThatTheParentTakesAway) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  dialog_.on_paint = [&] { button_->set_themer(nullptr); };
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  dialog_.on_paint = nullptr;
  EXPECT_EQ(drawer->styles.size(), 1u);
  EXPECT_EQ(Picture(*button_).at(1, 1), face);
  EXPECT_EQ(drawer.use_count(), 1) << "the themer is released after the painting";
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(drawer->styles.size(), 1u) << "the next painting has no themer";
  EXPECT_EQ(Picture(*button_).at(1, 1), behind);
}

TEST_F(BitmapButtonControl, PaintsToTheEndWithAThemerThatIsReplacedWhileItDraws) {
  make(kexBtnTypeThemed);
  const std::weak_ptr<Drawer> first = set_drawer();
  ASSERT_FALSE(first.expired()) << "the themer alone holds it";
  std::shared_ptr<Drawer> second;
  bool alive_while_drawing = false;
  const auto replace = [&] {
    second = set_drawer();
    alive_while_drawing = !first.expired();
  };

  first.lock()->on_draw = replace;
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_TRUE(alive_while_drawing);
  EXPECT_TRUE(first.expired());
  EXPECT_TRUE(second->styles.empty());
  EXPECT_EQ(Picture(*button_).at(1, 1), face);
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(second->styles.size(), 1u) << "the next painting is the second one's";
}

TEST_F(BitmapButtonControl, PaintsToTheEndWithAThemerThatGoesWhenItIsAsked) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  drawer->on_can_draw = [&] { button_->set_themer(nullptr); };
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(drawer->styles.size(), 1u);
}

TEST_F(BitmapButtonControl, DrawsToTheEndWithAThemerThatIsReplacedWhileItDraws) {
  make(kexBtnTypeThemed);
  const std::weak_ptr<Drawer> first = set_drawer();
  bool alive_while_drawing = false;
  first.lock()->on_draw = [&] {
    button_->set_themer(nullptr);
    alive_while_drawing = !first.expired();
  };
  EXPECT_EQ(paint(true).at(1, 1), face);
  EXPECT_TRUE(alive_while_drawing);
  EXPECT_EQ(paint(true).at(1, 1), behind) << "themed, but without a themer: no face and no edge";
}

// ---- a themer that throws -------------------------------------------------------------------------------------------

// Derived classes call OnPaint and catch exceptions themselves.
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

int paintings_begun = 0, paintings_ended = 0;
HDC WINAPI count_begin(HWND window, LPPAINTSTRUCT paint) { return ++paintings_begun, BeginPaint(window, paint); }
BOOL WINAPI count_end(HWND window, const PAINTSTRUCT* paint) { return ++paintings_ended, EndPaint(window, paint); }

// The ways in which the system makes a button paint.
struct WayToPaint {
  const char* name;
  void (*go)(Button& button);
  int paintings = 1;
};

const WayToPaint ways_to_paint[] = {
    {"UpdateWindow",
     [](Button& button) {
       button.Invalidate(FALSE);
       button.UpdateWindow();
     }},
    {"RedrawWindow", [](Button& button) { RedrawWindow(button, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW); }},
    {"Queue",
     [](Button& button) {
       button.Invalidate(FALSE);
       pump_waiting();
     }},
    {"Hover", [](Button& button) { button.SendMessage(WM_MOUSEMOVE, 0, MAKELPARAM(5, 5)); }},
    {"Press", [](Button& button) { button.SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5)); }},
    {"SetState", [](Button& button) { button.SendMessage(BM_SETSTATE, TRUE); }},
    {"EnableWindow", [](Button& button) { button.EnableWindow(FALSE); }, 3},
    {"Focus", [](Button& button) { button.SendMessage(WM_SETFOCUS); }},
    {"PrintClient",
     [](Button& button) {
       button.Invalidate(FALSE);
       button.SendMessage(WM_PRINTCLIENT, 0, PRF_CLIENT);
     }},
};

class BitmapButtonWhoseThemerThrows : public BitmapButtonControl, public testing::WithParamInterface<WayToPaint> {
 protected:
  void SetUp() override {
    BitmapButtonControl::SetUp();
    ASSERT_TRUE(begin_.made());
    ASSERT_TRUE(end_.made());
    make(kexBtnTypeThemed);
    drawer_ = set_drawer();
    pump_waiting();
    drawer_->styles.clear();
    paintings_begun = paintings_ended = 0;
  }
  bool is_invalid() const { return GetUpdateRect(*button_, nullptr, FALSE) != 0; }
  void expect_to_paint_again() const {
    paintings_ended = 0;
    drawer_->styles.clear();
    button_->Invalidate(FALSE);
    button_->UpdateWindow();
    EXPECT_EQ(drawer_->styles.size(), 1u);
    EXPECT_EQ(paintings_ended, 1);
    EXPECT_EQ(Picture(*button_).at(1, 1), face);
  }

  std::shared_ptr<Drawer> drawer_;
  DebuggerOutput output_;
  ImportOverride begin_{"kexlib.dll", "user32.dll", "BeginPaint", count_begin};
  ImportOverride end_{"kexlib.dll", "user32.dll", "EndPaint", count_end};
};

const char* const said = "kexWTLBitmapButton: an exception has ended painting\n";

TEST_P(BitmapButtonWhoseThemerThrows, EndsThePaintingAndKeepsTheException) {
  drawer_->fails = true;
  EXPECT_NO_THROW(GetParam().go(*button_));
  const int paintings = static_cast<int>(drawer_->styles.size());
  EXPECT_EQ(paintings, GetParam().paintings);
  EXPECT_EQ(paintings_begun, GetParam().paintings);
  EXPECT_EQ(paintings_ended, GetParam().paintings);
  EXPECT_FALSE(is_invalid());
  EXPECT_EQ(output_.texts(), std::vector<std::string>(drawer_->styles.size(), said));
  drawer_->fails = false;
  expect_to_paint_again();
}

// BeginPaint is not called: without validation the region would stay invalid, and the system would send WM_PAINT again.
TEST_P(BitmapButtonWhoseThemerThrows, IsNotAskedAgainWhereItThrewWhenItWasAsked) {
  drawer_->on_can_draw = [] { throw 1; };
  EXPECT_NO_THROW(GetParam().go(*button_));
  EXPECT_EQ(paintings_begun, 0);
  EXPECT_EQ(drawer_->asked, GetParam().paintings);
  EXPECT_FALSE(is_invalid());
  EXPECT_EQ(output_.texts(), std::vector<std::string>(static_cast<size_t>(drawer_->asked), said));
  drawer_->on_can_draw = nullptr;
  expect_to_paint_again();
}

INSTANTIATE_TEST_SUITE_P(Ways, BitmapButtonWhoseThemerThrows, testing::ValuesIn(ways_to_paint),
                         [](const auto& each) { return std::string(each.param.name); });

// MFC's exceptions are thrown by pointer; the handler deletes them.
class CountedException : public CException {
 public:
  CountedException() { ++alive; }
  ~CountedException() override { --alive; }
  static inline int alive = 0;
};

TEST_F(BitmapButtonControl, DeletesMfcExceptionsOfItsThemer) {
  make(kexBtnTypeThemed);
  const auto drawer = set_drawer();
  drawer->on_draw = [] { throw static_cast<CException*>(new CountedException); };
  button_->Invalidate(FALSE);
  button_->UpdateWindow();
  EXPECT_EQ(drawer->styles.size(), 1u);
  EXPECT_EQ(CountedException::alive, 0);
}

// ---- other surroundings ---------------------------------------------------------------------------------------------

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

}  // namespace
