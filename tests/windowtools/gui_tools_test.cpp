// Rows of buttons, columns, frames with their controls, and check boxes.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/windowtools/gui_tools.h>

#include <afxwin.h>

#include <support/import_override.h>
#include <windowtools/gui_tools_fixture.h>

#include <cstring>
#include <type_traits>

namespace {

using ListView = WTL::CListViewCtrlT<ATL::CWindow>;

static_assert(!std::is_default_constructible_v<kexGUITools>);

// ---- rows of buttons -----------------------------------------------------------------------------------------------

class Buttons : public GuiTools {
 protected:
  RECT place(HWND window) {
    RECT rect;
    GetWindowRect(window, &rect);
    MapWindowPoints(nullptr, parent_, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
  }
  void expect_place(HWND window, int x, int y, int width, int height) {
    const RECT rect = place(window);
    EXPECT_EQ(rect.left, x);
    EXPECT_EQ(rect.top, y);
    EXPECT_EQ(rect.right - rect.left, width);
    EXPECT_EQ(rect.bottom - rect.top, height);
  }
};

TEST_F(Buttons, AreLaidOutWithoutGapsForHiddenOnes) {
  ATL::CWindow first = add("BUTTON", 200, 50, 30, 20);
  ATL::CWindow hidden = add("BUTTON", 210, 60, 99, 21);
  ATL::CWindow second = add("BUTTON", 150, 70, 40, 22);
  ATL::CWindow third = add("BUTTON", 100, 80, 50, 23);
  hidden.ShowWindow(SW_HIDE);
  kexGUITools::rearrange_buttons_on_toolbar({&first, &hidden, &second, &third}, 7, 3, 5);
  expect_place(first, 7, 3, 30, 20);
  expect_place(hidden, 210, 60, 99, 21);
  expect_place(second, 42, 3, 40, 22);
  expect_place(third, 87, 3, 50, 23);
  kexGUITools::rearrange_buttons_on_toolbar({&third, &first}, -10, 0, -1);
  expect_place(third, -10, 0, 50, 23);
  expect_place(first, 39, 0, 30, 20);
}

TEST_F(Buttons, AreMovedAtOnceAndKeepTheirOrderOnTheScreen) {
  ATL::CWindow first = add("BUTTON", 200, 50, 30, 20);
  ATL::CWindow second = add("BUTTON", 150, 70, 40, 22);
  moves.clear();
  const ImportOverride move("kexlib.dll", "USER32.dll", "SetWindowPos", &record_move);
  ASSERT_TRUE(move.made());
  kexGUITools::rearrange_buttons_on_toolbar({&first, &second}, 7, 3, 5);
  ASSERT_EQ(moves.size(), 2u);
  for (const Move& each : moves) {
    EXPECT_EQ(each.flags, UINT{SWP_NOZORDER});
    EXPECT_EQ(each.after, nullptr);
  }
}

TEST_F(Buttons, BeginAtTheOriginWhereTheFirstIsHidden) {
  ATL::CWindow hidden = add("BUTTON", 210, 60, 99, 21);
  ATL::CWindow shown = add("BUTTON", 150, 70, 40, 22);
  hidden.ShowWindow(SW_HIDE);
  kexGUITools::rearrange_buttons_on_toolbar({&hidden, &shown}, 7, 3, 5);
  expect_place(shown, 7, 3, 40, 22);
}

// The top is that of the window in its own client coordinates: negative by the width of the border.
TEST_F(Buttons, AreRaisedByTheirBorders) {
  ATL::CWindow bordered = add("STATIC", 100, 100, 40, 22, WS_BORDER);
  kexGUITools::rearrange_buttons_on_toolbar({&bordered}, 7, 30, 5);
  expect_place(bordered, 7, 29, 40, 22);
}

TEST_F(Buttons, StayWhereTheyAreWithoutAVisibleOne) {
  kexGUITools::rearrange_buttons_on_toolbar({}, 1, 2, 3);
  ATL::CWindow button = add("BUTTON", 20, 30, 40, 22);
  ATL::CWindow none;
  ATL::CWindow gone = add("BUTTON", 0, 0, 10, 10);
  gone.m_hWnd = (DestroyWindow(gone), gone.m_hWnd);
  ShowWindow(parent_, SW_HIDE);
  kexGUITools::rearrange_buttons_on_toolbar({&none, nullptr, &gone, &button}, 1, 2, 3);
  expect_place(button, 20, 30, 40, 22);
  ShowWindow(parent_, SW_SHOWNA);
  kexGUITools::rearrange_buttons_on_toolbar({&none, nullptr, &gone, &button}, 1, 2, 3);
  expect_place(button, 1, 2, 40, 22);
}

// ---- columns -------------------------------------------------------------------------------------------------------

class Columns : public GuiTools {
 protected:
  Columns() {
    list_ = add(WC_LISTVIEWA, 0, 0, 200, 100, LVS_REPORT);
    list_.InsertColumn(0, "first", LVCFMT_LEFT, 50);
    list_.InsertColumn(1, "second", LVCFMT_RIGHT, 60);
  }
  int format(int column) const {
    LVCOLUMN description{};
    description.mask = LVCF_FMT;
    EXPECT_TRUE(list_.GetColumn(column, &description));
    return description.fmt;
  }

  ListView list_;
};

TEST_F(Columns, GetBitsAddedToTheirFormatAndNoneTakenAway) {
  const int before = format(1);
  kexGUITools::set_column_fmt(list_, 1, 0);
  EXPECT_EQ(format(1), before);
  kexGUITools::set_column_fmt(list_, 1, LVCFMT_BITMAP_ON_RIGHT);
  EXPECT_EQ(format(1), before | LVCFMT_BITMAP_ON_RIGHT);
  kexGUITools::set_column_fmt(list_, 1, LVCFMT_LEFT);
  EXPECT_EQ(format(1), before | LVCFMT_BITMAP_ON_RIGHT);
  EXPECT_EQ(format(1) & LVCFMT_JUSTIFYMASK, LVCFMT_RIGHT);
  EXPECT_EQ(format(0) & LVCFMT_JUSTIFYMASK, LVCFMT_LEFT);
  EXPECT_EQ(SendMessageA(list_, LVM_GETCOLUMNWIDTH, 1, 0), 60);
}

TEST_F(Columns, ThatThereAreNotAreLeftAlone) {
  const int first = format(0), second = format(1);
  for (const int column : {-1, 2, 1000}) kexGUITools::set_column_fmt(list_, column, LVCFMT_CENTER);
  EXPECT_EQ(format(0), first);
  EXPECT_EQ(format(1), second);
  ListView none;
  kexGUITools::set_column_fmt(none, 0, LVCFMT_CENTER);
}

// ---- frames --------------------------------------------------------------------------------------------------------

bool is_shown(HWND window) { return (GetWindowLongA(window, GWL_STYLE) & WS_VISIBLE) != 0; }

class Frames : public GuiTools {
 protected:
  HWND frame_ = add("BUTTON", 50, 50, 100, 80, BS_GROUPBOX);
};

TEST_F(Frames, AreHiddenAndShownWithTheControlsInside) {
  HWND inside = add("BUTTON", 60, 60, 20, 20);
  HWND same = add("STATIC", 50, 50, 100, 80);
  HWND outside = add("STATIC", 200, 50, 10, 10);
  HWND panel = add("STATIC", 0, 0, 300, 300);
  HWND deep = add("STATIC", 70, 70, 10, 10, 0, panel);
  kexGUITools::show_contained_controls(parent_, frame_, SW_HIDE);
  for (HWND window : {frame_, inside, same, deep}) EXPECT_FALSE(is_shown(window));
  EXPECT_TRUE(is_shown(outside));
  EXPECT_TRUE(is_shown(panel));
  kexGUITools::show_contained_controls(parent_, frame_, SW_SHOWNA);
  for (HWND window : {frame_, inside, same, deep}) EXPECT_TRUE(is_shown(window));
}

TEST_F(Frames, LeaveControlsAloneThatStickOutByOnePixel) {
  HWND out[] = {add("STATIC", 49, 60, 20, 20), add("STATIC", 60, 49, 20, 20), add("STATIC", 131, 60, 20, 20),
                add("STATIC", 60, 111, 20, 20)};
  HWND in[] = {add("STATIC", 50, 60, 20, 20), add("STATIC", 60, 50, 20, 20), add("STATIC", 130, 60, 20, 20),
               add("STATIC", 60, 110, 20, 20)};
  kexGUITools::show_contained_controls(parent_, frame_, SW_HIDE);
  for (HWND window : out) EXPECT_TRUE(is_shown(window));
  for (HWND window : in) EXPECT_FALSE(is_shown(window));
}

TEST_F(Frames, ThatAreNoWindowsHideNothing) {
  HWND empty = add("STATIC", 0, 0, 0, 0);
  HWND everywhere = CreateWindowA("STATIC", "", WS_POPUP, -9, -9, 2000, 2000, nullptr, nullptr, nullptr, nullptr);
  HWND gone = add("STATIC", 0, 0, 300, 300);
  DestroyWindow(gone);
  kexGUITools::show_contained_controls(parent_, nullptr, SW_HIDE);
  kexGUITools::show_contained_controls(parent_, gone, SW_HIDE);
  kexGUITools::show_contained_controls(nullptr, everywhere, SW_HIDE);
  kexGUITools::show_contained_controls(gone, everywhere, SW_HIDE);
  EXPECT_TRUE(is_shown(frame_));
  EXPECT_TRUE(is_shown(empty));
  EXPECT_TRUE(is_shown(parent_));
  DestroyWindow(everywhere);
}

// ---- check boxes ---------------------------------------------------------------------------------------------------

class CheckBox : public GuiTools {
 protected:
  CheckBox() {
    dialog_.Attach(parent_);
    box_ = CreateWindowA("BUTTON", "", WS_CHILD | BS_AUTO3STATE, 0, 0, 9, 9, parent_, reinterpret_cast<HMENU>(5),
                         nullptr, nullptr);
  }
  ~CheckBox() override { dialog_.Detach(); }
  LRESULT state() const { return SendMessageA(box_, BM_GETCHECK, 0, 0); }

  CWnd dialog_;
  HWND box_;
};

TEST_F(CheckBox, ShowsABool) {
  CDataExchange show(&dialog_, FALSE);
  for (const bool shown : {true, false, true}) {
    bool value = shown;
    kexGUITools::ddx_check(&show, 5, value);
    EXPECT_EQ(state(), shown ? BST_CHECKED : BST_UNCHECKED);
    EXPECT_EQ(value, shown);
  }
}

TEST_F(CheckBox, ShowsATrueThatIsStoredAsAnotherByteAndMakesItOne) {
  CDataExchange show(&dialog_, FALSE);
  for (const char stored : {'\2', '\3', '\xFF'}) {
    SendMessageA(box_, BM_SETCHECK, BST_UNCHECKED, 0);
    bool value;
    std::memcpy(&value, &stored, 1);
    kexGUITools::ddx_check(&show, 5, value);
    EXPECT_EQ(state(), BST_CHECKED);
    char now;
    std::memcpy(&now, &value, 1);
    EXPECT_EQ(now, 1);
  }
}

TEST_F(CheckBox, IsSavedInABoolWithUndeterminedAsTrue) {
  CDataExchange save(&dialog_, TRUE);
  bool value = true;
  for (const WPARAM set : {0u, 1u, 0u, 2u}) {
    SendMessageA(box_, BM_SETCHECK, set, 0);
    kexGUITools::ddx_check(&save, 5, value);
    EXPECT_EQ(value, set != BST_UNCHECKED);
    EXPECT_EQ(state(), static_cast<LRESULT>(set));
  }
}

}  // namespace
