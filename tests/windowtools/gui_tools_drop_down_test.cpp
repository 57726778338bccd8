// Drop-down lists of combo boxes: their width, their length and their items.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/windowtools/gui_tools.h>

#include <support/expect_flat.h>
#include <support/import_override.h>
#include <support/string_table.h>
#include <windowtools/gui_tools_fixture.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

using ComboBox = WTL::CComboBoxT<ATL::CWindow>;
using Texts = std::vector<std::string>;

// The messages that a combo box received; their first parameter is the requested value.
std::vector<WPARAM> widths_set;
std::vector<WPARAM> items_asked;
int buffers_given;

LRESULT CALLBACK record_messages(HWND window, UINT message, WPARAM w, LPARAM l, UINT_PTR, DWORD_PTR) {
  if (message == CB_SETDROPPEDWIDTH) widths_set.push_back(w);
  if (message == CB_GETLBTEXT) items_asked.push_back(w), buffers_given += l != 0;
  return DefSubclassProc(window, message, w, l);
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

// Kept for compatibility: callers see a width that ignores the texts, and code that hooks these calls sees all of them.
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
  EXPECT_NE(GetObjectA(font, sizeof description, &description), 0);  // the combo box's font is not deleted
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
  HMODULE strings = LoadLibraryA("string_table.dll");
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

}  // namespace
