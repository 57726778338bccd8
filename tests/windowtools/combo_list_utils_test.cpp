#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/windowtools/combo_list_utils.h>

#include <afx.h>
#include <commctrl.h>

#include <support/c_library.h>
#include <support/expect_flat.h>
#include <support/import_override.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace {

using ComboBox = WTL::CComboBoxT<ATL::CWindow>;
using ListView = WTL::CListViewCtrlT<ATL::CWindow>;
using Texts = std::vector<CStringA>;

class Controls : public testing::Test {
 protected:
  Controls() {
    parent_ = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 300, 300, nullptr, nullptr, nullptr, nullptr);
    list_ = CreateWindowA(WC_LISTVIEWA, "", WS_CHILD | LVS_REPORT, 0, 0, 200, 200, parent_, nullptr, nullptr, nullptr);
    list_.InsertColumn(0, "first");
    list_.InsertColumn(1, "second");
  }
  ~Controls() override { DestroyWindow(parent_); }

  ComboBox combo(DWORD style) {
    return CreateWindowA(WC_COMBOBOXA, "", WS_CHILD | style, 0, 0, 100, 100, parent_, nullptr, nullptr, nullptr);
  }

  HWND parent_;
  ListView list_;
};

// ---- combo boxes ---------------------------------------------------------------------------------------------------

Texts items_of(const ComboBox& combo) {
  Texts items;
  for (int i = 0; i < combo.GetCount(); ++i) {
    CStringA text;
    combo.GetLBText(i, text.GetBuffer(combo.GetLBTextLen(i)));
    text.ReleaseBuffer();
    items.push_back(text);
  }
  return items;
}

using ComboBoxUtils = Controls;

TEST_F(ComboBoxUtils, FillComboBoxesOfAllStylesInTheOrderOfTheList) {
  for (const unsigned style : {1u, 2u, 3u}) {  // CBS_SIMPLE, CBS_DROPDOWN, CBS_DROPDOWNLIST
    ComboBox box = combo(style);
    box.AddString("old");
    kexWTLComboBoxUtils utils = box;
    const Texts items{"pear", "", "apple", "pear", "\xE4pfel"};
    utils.populate(items);
    EXPECT_EQ(items_of(box), items) << style;
    utils.populate({"one"});
    EXPECT_EQ(items_of(box), Texts{"one"}) << style;
  }
}

TEST_F(ComboBoxUtils, LeaveTheOrderToAComboBoxThatSorts) {
  ComboBox box = combo(CBS_DROPDOWNLIST | CBS_SORT);
  kexWTLComboBoxUtils(box).populate({"pear", "apple", "fig"});
  EXPECT_EQ(items_of(box), (Texts{"apple", "fig", "pear"}));
}

TEST_F(ComboBoxUtils, EmptyAComboBoxWithAnEmptyList) {
  ComboBox box = combo(CBS_DROPDOWN);
  box.AddString("old");
  kexWTLComboBoxUtils(box).populate({});
  EXPECT_EQ(box.GetCount(), 0);
}

TEST_F(ComboBoxUtils, FollowTheWrapperToAnotherWindow) {
  ComboBox box;
  kexWTLComboBoxUtils utils(box);
  utils.populate({"nowhere"});
  box = combo(CBS_DROPDOWN);
  utils.populate({"here"});
  EXPECT_EQ(items_of(box), Texts{"here"});
  DestroyWindow(box);
  utils.populate({"gone"});
}

// ---- the text of cells ---------------------------------------------------------------------------------------------

// The sizes of the buffers that the list view received.
std::vector<int> asked;

LRESULT CALLBACK record_buffers(HWND window, UINT message, WPARAM w, LPARAM l, UINT_PTR, DWORD_PTR) {
  if (message == LVM_GETITEMTEXTA) asked.push_back(reinterpret_cast<const LVITEMA*>(l)->cchTextMax);
  return DefSubclassProc(window, message, w, l);
}

class ListViewCell : public Controls {
 protected:
  ListViewCell() {
    list_.InsertItem(0, "row");
    SetWindowSubclass(list_, &record_buffers, 1, 0);
  }

  // Stores the buffer sizes of the requests in `asked`.
  std::string text_of(int row, int column) {
    asked.clear();
    const CStringA text = kexWTLListViewCtrlUtils(list_).get_item_text(row, column);
    EXPECT_EQ(text.GetLength(), lstrlenA(text));
    return static_cast<const char*>(text);
  }

  std::string round_trip(const std::string& text) {
    list_.SetItemText(0, 1, text.c_str());
    return text_of(0, 1);
  }
};

std::string letters(std::size_t length) {
  std::string text(length, ' ');
  for (std::size_t i = 0; i < length; ++i) text[i] = static_cast<char>('a' + i % 26);
  return text;
}

TEST_F(ListViewCell, GivesItsTextWhateverItsLength) {
  const std::pair<std::size_t, std::vector<int>> lengths[] = {
      {1, {256}},
      {254, {256}},
      {255, {256, 512}},
      {256, {256, 512}},
      {510, {256, 512}},
      {511, {256, 512, 1024}},
      {100000, {256, 512, 1024, 2048, 4096, 8192, 16384, 32768, 65536, 131072}}};
  for (const auto& [length, buffers] : lengths) {
    const std::string text = letters(length);
    EXPECT_TRUE(round_trip(text) == text) << length;
    EXPECT_EQ(asked, buffers) << length;
  }
}

TEST_F(ListViewCell, GivesTheTextOfItsRowAndColumn) {
  list_.InsertItem(1, "second row");
  list_.SetItemText(1, 1, "its second cell");
  EXPECT_EQ(text_of(0, 0), "row");
  EXPECT_EQ(text_of(0, 1), "");
  EXPECT_EQ(text_of(1, 0), "second row");
  EXPECT_EQ(text_of(1, 1), "its second cell");
}

TEST_F(ListViewCell, GivesTextOfTheCodePage) {
  EXPECT_EQ(round_trip("\xE4\xF6\xFC \x80"), "\xE4\xF6\xFC \x80");
  const std::string umlauts(300, '\xE4');
  EXPECT_EQ(round_trip(umlauts), umlauts);
}

TEST_F(ListViewCell, GivesNoTextOfCellsThatThereAreNot) {
  EXPECT_EQ(text_of(1, 0), "");
  EXPECT_EQ(text_of(-1, 0), "");
  EXPECT_EQ(text_of(0, 2), "");
  EXPECT_EQ(text_of(0, -1), "");
}

TEST_F(ListViewCell, GivesNoTextWithoutAWindow) {
  DestroyWindow(list_);
  EXPECT_EQ(text_of(0, 0), "");
  ListView nothing;
  EXPECT_EQ(kexWTLListViewCtrlUtils(nothing).get_item_text(0, 0).GetLength(), 0);
}

// A control that fills each buffer to its end and reports a longer text, for some rounds.
LRESULT CALLBACK fill_endlessly(HWND window, UINT message, WPARAM w, LPARAM l, UINT_PTR, DWORD_PTR rounds) {
  if (message != LVM_GETITEMTEXTA) return DefSubclassProc(window, message, w, l);
  const auto& item = *reinterpret_cast<const LVITEMA*>(l);
  asked.push_back(item.cchTextMax);
  const bool more = asked.size() < rounds;
  std::fill_n(item.pszText, more ? item.cchTextMax : 3, 'x');
  if (!more) item.pszText[3] = 0;
  return more ? 0x7FFFFFFF : 3;
}

TEST_F(ListViewCell, IsNotReadBeyondABufferThatIsNotTerminated) {
  SetWindowSubclass(list_, &fill_endlessly, 2, 5);
  EXPECT_EQ(text_of(0, 0), "xxx");
  EXPECT_EQ(asked, (std::vector<int>{256, 512, 1024, 2048, 4096}));
}

void* little_memory(std::size_t bytes) { return bytes > 3000 ? nullptr : std::malloc(bytes); }

TEST_F(ListViewCell, GivesAsMuchAsThereIsMemoryFor) {
  SetWindowSubclass(list_, &fill_endlessly, 2, 1000);
  const ImportOverride little("kexframework.dll", c_library::dll, "malloc", &little_memory);
  ASSERT_TRUE(little.made());
  EXPECT_EQ(text_of(0, 0), std::string(2048, 'x'));
  EXPECT_EQ(asked, (std::vector<int>{256, 512, 1024, 2048}));
}

// Replaces MFC's memory exception, which is not counted.
class CountedException : public CException {
 public:
  CountedException() { ++alive; }
  ~CountedException() override { --alive; }
  static inline int alive = 0, made = 0;
};
void throw_counted(HRESULT) {
  ++CountedException::made;
  throw static_cast<CException*>(new CountedException);
}

#ifdef _MSC_VER
constexpr char mangled_throw[] = "?AtlThrowImpl@ATL@@YAXJ@Z";
#else
constexpr char mangled_throw[] = "_ZN3ATL12AtlThrowImplEl";
#endif

TEST_F(ListViewCell, DeletesTheExceptionForMemoryThatIsNotThere) {
  SetWindowSubclass(list_, &fill_endlessly, 2, 1000);
  const ImportOverride little("kexframework.dll", c_library::dll, "malloc", &little_memory);
  const ImportOverride counted("kexlib.dll", "kexframework.dll", mangled_throw, &throw_counted);
  ASSERT_TRUE(little.made() && counted.made());
  CountedException::made = 0;
  EXPECT_EQ(text_of(0, 0), std::string(2048, 'x'));
  EXPECT_EQ(CountedException::made, 1);
  EXPECT_EQ(CountedException::alive, 0);
}

// A control that fills the buffer and the character after it, and reports a longer text until the buffer has this size.
LRESULT CALLBACK fill_without_end(HWND window, UINT message, WPARAM w, LPARAM l, UINT_PTR, DWORD_PTR whole_at) {
  if (message != LVM_GETITEMTEXTA) return DefSubclassProc(window, message, w, l);
  const auto& item = *reinterpret_cast<const LVITEMA*>(l);
  std::fill_n(item.pszText, item.cchTextMax + 1, 'x');
  return static_cast<DWORD_PTR>(item.cchTextMax) < whole_at ? item.cchTextMax : item.cchTextMax - 2;
}

// The terminator is one character past the buffer size that the control receives.
TEST_F(ListViewCell, EndsATextThatFillsItsRoom) {
  for (const std::size_t room : {256u, 512u, 1024u}) {
    SetWindowSubclass(list_, &fill_without_end, 2, room);
    EXPECT_EQ(text_of(0, 0), std::string(room, 'x'));
  }
}

TEST_F(ListViewCell, LeavesNothingBehind) {
  list_.SetItemText(0, 1, letters(2000).c_str());
  expect_flat(100, [this] { kexWTLListViewCtrlUtils(list_).get_item_text(0, 1); });
}

// ---- selections ----------------------------------------------------------------------------------------------------

class ListViewSelection : public Controls {
 protected:
  void add_rows(int count) {
    for (int i = 0; i < count; ++i) list_.InsertItem(i, "row");
  }
  void select(int row) { list_.SetItemState(row, LVIS_SELECTED, LVIS_SELECTED); }
  std::vector<int> selection() { return kexWTLListViewCtrlUtils(list_).get_selection(); }
};

TEST_F(ListViewSelection, IsEmptyWhereNothingIsSelected) {
  EXPECT_EQ(selection(), std::vector<int>{});
  add_rows(3);
  list_.SetItemState(1, LVIS_FOCUSED, LVIS_FOCUSED);
  EXPECT_EQ(selection(), std::vector<int>{});
}

TEST_F(ListViewSelection, GivesTheRowsFromTheTop) {
  add_rows(8);
  select(5);
  EXPECT_EQ(selection(), std::vector<int>{5});
  select(2);
  EXPECT_EQ(selection(), (std::vector<int>{2, 5}));
  select(0);
  select(7);
  EXPECT_EQ(selection(), (std::vector<int>{0, 2, 5, 7}));
}

TEST_F(ListViewSelection, GivesAllOfTenThousandRows) {
  add_rows(10000);
  select(-1);
  std::vector<int> all(10000);
  std::iota(all.begin(), all.end(), 0);
  EXPECT_TRUE(selection() == all);
}

TEST_F(ListViewSelection, IsEmptyWithoutAWindow) {
  add_rows(2);
  select(0);
  DestroyWindow(list_);
  EXPECT_EQ(selection(), std::vector<int>{});
}

LRESULT CALLBACK destroy_at_row_4(HWND window, UINT message, WPARAM w, LPARAM l, UINT_PTR, DWORD_PTR) {
  const LRESULT result = DefSubclassProc(window, message, w, l);
  if (message == LVM_GETNEXTITEM && result == 4) DestroyWindow(window);
  return result;
}

TEST_F(ListViewSelection, EndsWithItsWindow) {
  add_rows(8);
  select(-1);
  SetWindowSubclass(list_, &destroy_at_row_4, 1, 0);
  EXPECT_EQ(selection(), (std::vector<int>{0, 1, 2, 3, 4}));
}

}  // namespace
