#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <kexlib/windowtools/gui_tools.h>

#include <gtest/gtest.h>

#include <afxwin.h>

#include <support/expect_flat.h>
#include <support/import_override.h>
#include <text/resources.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using ComboBox = WTL::CComboBoxT<ATL::CWindow>;
using ListView = WTL::CListViewCtrlT<ATL::CWindow>;
using Texts = std::vector<std::string>;

static_assert(!std::is_default_constructible_v<kexGUITools>);

class GuiTools : public testing::Test {
 protected:
  GuiTools() {
    parent_ = CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
  }
  ~GuiTools() override { DestroyWindow(parent_); }

  HWND add(const char* window_class, int x, int y, int width, int height, DWORD style = 0, HWND parent = nullptr) {
    return CreateWindowA(window_class, "", WS_CHILD | WS_VISIBLE | style, x, y, width, height,
                         parent ? parent : parent_, nullptr, nullptr, nullptr);
  }

  HWND parent_;
};

// ---- drop-down lists -----------------------------------------------------------------------------------------------

// The messages that a combo box got: what was asked for is their first parameter.
std::vector<WPARAM> widths_set;
std::vector<WPARAM> items_asked;
int buffers_given;

LRESULT CALLBACK record_messages(HWND window, UINT message, WPARAM w, LPARAM l, UINT_PTR, DWORD_PTR) {
  if (message == CB_SETDROPPEDWIDTH) widths_set.push_back(w);
  if (message == CB_GETLBTEXT) items_asked.push_back(w), buffers_given += l != 0;
  return DefSubclassProc(window, message, w, l);
}

struct Move {
  HWND after;
  int width, height;
  UINT flags;
};
std::vector<Move> moves;

BOOL WINAPI record_move(HWND window, HWND after, int x, int y, int width, int height, UINT flags) {
  moves.push_back({after, width, height, flags});
  return SetWindowPos(window, after, x, y, width, height, flags);
}

class DropDown : public GuiTools {
 protected:
  DropDown() { make(CBS_DROPDOWN); }

  void make(long style) {
    combo_ = add(WC_COMBOBOXA, 10, 10, 100, 80, static_cast<DWORD>(style | CBS_NOINTEGRALHEIGHT));
    SetWindowSubclass(combo_, &record_messages, 1, 0);
    forget();
  }
  void fill(int items) {
    combo_.ResetContent();
    for (int i = 0; i < items; ++i) combo_.AddString("an item that is wider than the box is");
    forget();
  }
  static void forget() {
    widths_set.clear();
    items_asked.clear();
    moves.clear();
    buffers_given = 0;
  }
  int height() const {
    RECT rect;
    combo_.GetWindowRect(&rect);
    return rect.bottom - rect.top;
  }
  int height_for(int items) const {
    return combo_.GetItemHeight(-1) + items * combo_.GetItemHeight(0) + 4 * GetSystemMetrics(SM_CYEDGE);
  }
  Texts items() const {
    Texts texts;
    for (int i = 0; i < combo_.GetCount(); ++i) {
      std::string text(static_cast<std::size_t>(combo_.GetLBTextLen(i)), ' ');
      combo_.GetLBText(i, text.data());
      texts.push_back(text);
    }
    return texts;
  }

  const int borders = 2 * GetSystemMetrics(SM_CXEDGE) + 2;
  const int scroll_bar = GetSystemMetrics(SM_CXVSCROLL);
  ComboBox combo_;
  ImportOverride recorded_{"kexlib.dll", "USER32.dll", "SetWindowPos", &record_move};
};

TEST_F(DropDown, IsAsWideAsItsBordersAndAboveTenItemsItsScrollBar) {
  for (const int items : {0, 3, 10}) {
    fill(items);
    EXPECT_EQ(kexGUITools::get_dropdown_width(combo_), borders) << items;
  }
  for (const int items : {11, 25}) {
    fill(items);
    EXPECT_EQ(kexGUITools::get_dropdown_width(combo_), borders + scroll_bar) << items;
  }
}

TEST_F(DropDown, IsNotWiderForAnotherFontButLonger) {
  HFONT font = CreateFontA(-40, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, "Tahoma");
  fill(3);
  const int before = height_for(3);
  combo_.SetFont(font);
  EXPECT_EQ(kexGUITools::get_dropdown_width(combo_), borders);
  const int height = height_for(3);
  EXPECT_GT(height, before + 3 * 10);
  moves.clear();
  kexGUITools::resize_dropdown_length(combo_);
  ASSERT_EQ(moves.size(), 1u);
  EXPECT_EQ(moves[0].height, height);
  DestroyWindow(combo_);
  EXPECT_TRUE(DeleteObject(font));
}

std::string calls;
HDC combo_dc;
HGDIOBJ first_font;

HDC WINAPI record_get_dc(HWND window) {
  calls += "GetDC ";
  return combo_dc = GetDC(window);
}
HGDIOBJ WINAPI record_select(HDC dc, HGDIOBJ object) {
  const HGDIOBJ previous = SelectObject(dc, object);
  if (!first_font) first_font = previous;
  calls += dc != combo_dc ? "Select(?) " : object == first_font ? "Select(previous) " : "Select(font) ";
  return previous;
}
BOOL WINAPI record_measure(HDC dc, LPCSTR text, int length, LPSIZE size) {
  calls += "Measure(" + std::to_string(length) + ") ";
  return GetTextExtentPoint32A(dc, text, length, size);
}
int WINAPI record_release(HWND window, HDC dc) {
  calls += dc == combo_dc ? "ReleaseDC " : "ReleaseDC(?) ";
  return ReleaseDC(window, dc);
}
BOOL WINAPI record_delete(HGDIOBJ object) {
  calls += object == first_font ? "DeleteObject(previous) " : "DeleteObject(?) ";
  return DeleteObject(object);
}
BOOL WINAPI record_delete_dc(HDC dc) {
  calls += dc == combo_dc ? "DeleteDC" : "DeleteDC(?)";
  return DeleteDC(dc);
}

// The texts are not measured, and what was not made here is deleted at the end: both are meant.
TEST_F(DropDown, IsMeasuredByTheseCallsInThisOrder) {
  HFONT font = CreateFontA(-20, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, "Tahoma");
  combo_.SetFont(font);
  fill(2);
  calls.clear();
  first_font = nullptr;
  {
    const ImportOverride one("kexlib.dll", "USER32.dll", "GetDC", &record_get_dc);
    const ImportOverride two("kexlib.dll", "GDI32.dll", "SelectObject", &record_select);
    const ImportOverride three("kexlib.dll", "GDI32.dll", "GetTextExtentPoint32A", &record_measure);
    const ImportOverride four("kexlib.dll", "USER32.dll", "ReleaseDC", &record_release);
    const ImportOverride five("kexlib.dll", "GDI32.dll", "DeleteObject", &record_delete);
    const ImportOverride six("kexlib.dll", "GDI32.dll", "DeleteDC", &record_delete_dc);
    ASSERT_TRUE(one.made() && two.made() && three.made() && four.made() && five.made() && six.made());
    kexGUITools::get_dropdown_width(combo_);
  }
  EXPECT_EQ(calls,
            "GetDC Select(font) Measure(0) Measure(0) Select(previous) ReleaseDC DeleteObject(previous) DeleteDC");
  EXPECT_EQ(items_asked, (std::vector<WPARAM>{0, 1}));
  EXPECT_EQ(buffers_given, 0);
  LOGFONTA description;
  EXPECT_NE(GetObjectA(font, sizeof description, &description), 0);  // the combo box's font is still there
  DestroyWindow(combo_);
  DeleteObject(font);
}

TEST_F(DropDown, IsSetToAWidthThatIsNotLessThanTheBox) {
  kexGUITools::set_dropdown_width(combo_, 300);
  kexGUITools::set_dropdown_width(combo_, 50);
  kexGUITools::set_dropdown_width(combo_, -5);
  EXPECT_EQ(widths_set, (std::vector<WPARAM>{300, 100, 100}));
  kexGUITools::set_dropdown_width(combo_, 300);
  EXPECT_EQ(combo_.GetDroppedWidth(), 300);
}

TEST_F(DropDown, GetsTheWidthOfItsContentAndNoneWithoutItems) {
  kexGUITools::resize_dropdown_width(combo_);
  EXPECT_EQ(widths_set, std::vector<WPARAM>{0});
  fill(3);
  kexGUITools::resize_dropdown_width(combo_);
  EXPECT_EQ(widths_set, std::vector<WPARAM>{100});
  SetWindowPos(combo_, nullptr, 0, 0, 12, 80, SWP_NOMOVE | SWP_NOZORDER);
  fill(11);
  RECT rect;
  combo_.GetWindowRect(&rect);
  kexGUITools::resize_dropdown_width(combo_);
  EXPECT_EQ(widths_set,
            std::vector<WPARAM>{static_cast<WPARAM>(std::max<LONG>(borders + scroll_bar, rect.right - rect.left))});
}

TEST_F(DropDown, IsAsLongAsItsItemsButNotLongerThanTen) {
  const std::pair<int, int> lengths[] = {{3, 3}, {10, 10}, {11, 10}, {25, 10}};
  for (const auto& [items, shown] : lengths) {
    fill(items);
    kexGUITools::resize_dropdown_length(combo_);
    ASSERT_EQ(moves.size(), 1u) << items;
    EXPECT_EQ(moves[0].after, nullptr);
    EXPECT_EQ(moves[0].width, 100);
    EXPECT_EQ(moves[0].height, height_for(shown)) << items;
    EXPECT_EQ(moves[0].flags, UINT{SWP_NOMOVE | SWP_NOZORDER});
  }
  fill(0);
  kexGUITools::resize_dropdown_length(combo_);
  EXPECT_EQ(moves.size(), 0u);
}

TEST_F(DropDown, OfASimpleComboBoxIsItsHeightAndIsSetOnce) {
  make(CBS_SIMPLE);
  fill(25);
  kexGUITools::resize_dropdown_length(combo_);
  EXPECT_EQ(height(), height_for(10));
  kexGUITools::resize_dropdown_length(combo_);
  EXPECT_EQ(moves.size(), 1u);
}

TEST_F(DropDown, IsFittedToItsContentInBothDirections) {
  kexGUITools::resize_dropdown_to_content(combo_);
  EXPECT_EQ(widths_set, std::vector<WPARAM>{0});
  EXPECT_EQ(moves.size(), 0u);
  fill(4);
  kexGUITools::resize_dropdown_to_content(combo_);
  EXPECT_EQ(widths_set, std::vector<WPARAM>{100});
  ASSERT_EQ(moves.size(), 1u);
  EXPECT_EQ(moves[0].height, height_for(4));
}

TEST_F(DropDown, OfNoWindowIsLeftAlone) {
  ComboBox gone;
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(kexGUITools::get_dropdown_width(gone), borders);
    kexGUITools::set_dropdown_width(gone, 10);
    kexGUITools::resize_dropdown_to_content(gone);
    EXPECT_EQ(moves.size(), 0u);
    gone = combo_;
    DestroyWindow(combo_);
  }
}

TEST_F(DropDown, LeavesNothingBehindWhenItIsMeasured) {
  fill(12);
  expect_flat(200, [this] { kexGUITools::get_dropdown_width(combo_); });
}

TEST_F(DropDown, IsFilledFromTheStringsOfAModule) {
  HMODULE strings = LoadLibraryA("text_strings.dll");
  ASSERT_TRUE(strings);
  unsigned int ids[] = {IDS_FIRST, 64000, IDS_FIFTH};
  for (const long style : {CBS_DROPDOWN, CBS_DROPDOWNLIST, CBS_DROPDOWNLIST | CBS_SORT}) {
    make(style);
    fill(20);
    kexGUITools::fill_combo_box_from_resource_ids(strings, combo_, ids, 3);
    EXPECT_EQ(items(),
              style & CBS_SORT ? (Texts{"", "the fifth", "the first"}) : (Texts{"the first", "", "the fifth"}));
    EXPECT_EQ(widths_set, std::vector<WPARAM>{100});
    ASSERT_EQ(moves.size(), 1u);
    EXPECT_EQ(moves[0].height, height_for(3));
  }
  FreeLibrary(strings);
}

TEST_F(DropDown, IsEmptiedWhereThereIsNothingToFillItWith) {
  unsigned int ids[] = {1};
  const std::pair<unsigned int*, int> nothing[] = {{ids, 0}, {ids, -1}, {nullptr, 3}, {nullptr, 0}};
  for (const auto& [list, count] : nothing) {
    fill(3);
    kexGUITools::fill_combo_box_from_resource_ids(GetModuleHandleA(nullptr), combo_, list, count);
    EXPECT_EQ(combo_.GetCount(), 0);
    EXPECT_EQ(widths_set, std::vector<WPARAM>{0});
    EXPECT_EQ(moves.size(), 0u);
  }
}

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

TEST_F(Buttons, BeginAtTheOriginWhereTheFirstIsHidden) {
  ATL::CWindow hidden = add("BUTTON", 210, 60, 99, 21);
  ATL::CWindow shown = add("BUTTON", 150, 70, 40, 22);
  hidden.ShowWindow(SW_HIDE);
  kexGUITools::rearrange_buttons_on_toolbar({&hidden, &shown}, 7, 3, 5);
  expect_place(shown, 7, 3, 40, 22);
}

// The top is that of the window in its own client area: above it by the border.
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
