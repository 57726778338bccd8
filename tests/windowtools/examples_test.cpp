// The examples of the guide's page.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/framework.h>

#include <atlapp.h>
#include <atlctrls.h>
#include <commctrl.h>

#include <support/string_table.h>
#include <windowtools/hwnd_table_fixture.h>

#include <string>
#include <vector>

bool name_outline(HWND window);
bool repaint_outline();
void fill_units(HWND control, HINSTANCE module, std::vector<unsigned int> texts);
void show_advanced(HWND dialog, HWND frame, bool show);
void lay_out(ATL::CWindow& add, ATL::CWindow& remove);
void align_lengths(HWND list_view);
int count_children(HWND tree, HTREEITEM folder);
bool is_in(HWND tree, HTREEITEM item, HTREEITEM folder);
void offer_units(HWND control);
CStringA selected_names(HWND control);

namespace {

class WindowtoolsExamples : public testing::Test {
 protected:
  WindowtoolsExamples() {
    InitCommonControls();
    kexHWNDTable::delete_singleton();
  }
  ~WindowtoolsExamples() override {
    kexHWNDTable::delete_singleton();
    DestroyWindow(dialog_);
  }

  HWND add(const char* type, DWORD style, int x = 0, int y = 0, int width = 50, int height = 20) {
    return CreateWindowA(type, "", WS_CHILD | WS_VISIBLE | style, x, y, width, height, dialog_, nullptr, nullptr,
                         nullptr);
  }
  static int left_of(HWND window) {
    RECT place;
    GetWindowRect(window, &place);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
    return place.left;
  }

  HWND dialog_ = make_dialog();
};

TEST_F(WindowtoolsExamples, FindTheOutline) {
  EXPECT_FALSE(repaint_outline());
  EXPECT_TRUE(name_outline(dialog_));
  EXPECT_FALSE(name_outline(add("STATIC", 0)));
  ValidateRect(dialog_, nullptr);
  EXPECT_TRUE(repaint_outline());
  EXPECT_TRUE(GetUpdateRect(dialog_, nullptr, FALSE));
}

TEST_F(WindowtoolsExamples, FillAComboBoxFromResources) {
  const HMODULE texts = LoadLibraryA("string_table.dll");
  ASSERT_NE(texts, nullptr);
  const HWND combo = add("COMBOBOX", CBS_DROPDOWNLIST);
  fill_units(combo, texts, {IDS_FIFTH, IDS_FIRST});
  ASSERT_EQ(SendMessageA(combo, CB_GETCOUNT, 0, 0), 2);
  char text[20];
  SendMessageA(combo, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(text));
  EXPECT_STREQ(text, "the fifth");
  FreeLibrary(texts);
}

TEST_F(WindowtoolsExamples, HideWhatIsInAFrame) {
  const HWND frame = add("BUTTON", BS_GROUPBOX, 0, 0, 40, 40), inside = add("EDIT", 0, 5, 5, 20, 20),
             outside = add("EDIT", 0, 45, 5, 20, 20);
  show_advanced(dialog_, frame, false);
  EXPECT_FALSE(IsWindowVisible(frame));
  EXPECT_FALSE(IsWindowVisible(inside));
  EXPECT_TRUE(IsWindowVisible(outside));
  show_advanced(dialog_, frame, true);
  EXPECT_TRUE(IsWindowVisible(inside));
}

TEST_F(WindowtoolsExamples, LayButtonsOut) {
  ATL::CWindow first(add("BUTTON", 0, 9, 0, 30)), second(add("BUTTON", 0, 9, 0, 30));
  lay_out(first, second);
  EXPECT_EQ(left_of(first.m_hWnd), 4);
  EXPECT_EQ(left_of(second.m_hWnd), 36);
  ShowWindow(first.m_hWnd, SW_HIDE);
  lay_out(first, second);
  EXPECT_EQ(left_of(second.m_hWnd), 4);
}

class ListExamples : public WindowtoolsExamples {
 protected:
  ListExamples() : list_(add(WC_LISTVIEWA, LVS_REPORT)) {
    list_.InsertColumn(0, "name", LVCFMT_LEFT, 50);
    list_.InsertColumn(1, "length", LVCFMT_LEFT, 50);
    int row = 0;
    for (const char* name : {"bolt", "ring", "nut"}) list_.InsertItem(row++, name);
  }
  WTL::CListViewCtrlT<ATL::CWindow> list_;
};

TEST_F(ListExamples, AlignAColumn) {
  align_lengths(list_);
  LVCOLUMNA column{};
  column.mask = LVCF_FMT;
  ASSERT_TRUE(SendMessageA(list_, LVM_GETCOLUMNA, 1, reinterpret_cast<LPARAM>(&column)));
  EXPECT_EQ(column.fmt & LVCFMT_JUSTIFYMASK, LVCFMT_RIGHT);
}

TEST_F(ListExamples, NameWhatIsSelected) {
  EXPECT_EQ(selected_names(list_), "");
  for (const int row : {2, 0}) list_.SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
  EXPECT_EQ(selected_names(list_), "bolt, nut");
}

TEST_F(WindowtoolsExamples, OfferUnits) {
  const HWND combo = add("COMBOBOX", CBS_DROPDOWNLIST);
  offer_units(combo);
  ASSERT_EQ(SendMessageA(combo, CB_GETCOUNT, 0, 0), 2);
  char text[20];
  SendMessageA(combo, CB_GETLBTEXT, static_cast<WPARAM>(SendMessageA(combo, CB_GETCURSEL, 0, 0)),
               reinterpret_cast<LPARAM>(text));
  EXPECT_STREQ(text, "millimetre");
}

TEST_F(WindowtoolsExamples, WalkATree) {
  WTL::CTreeViewCtrlT<ATL::CWindow> tree(add(WC_TREEVIEWA, 0));
  const HTREEITEM folder = tree.InsertItem("parts", TVI_ROOT, TVI_LAST);
  const HTREEITEM bolts = tree.InsertItem("bolts", folder, TVI_LAST);
  const HTREEITEM nuts = tree.InsertItem("nuts", folder, TVI_LAST);
  const HTREEITEM bolt = tree.InsertItem("M4", bolts, TVI_LAST);
  EXPECT_EQ(count_children(tree, folder), 2);
  EXPECT_EQ(count_children(tree, bolt), 0);
  EXPECT_TRUE(is_in(tree, bolt, folder));
  EXPECT_TRUE(is_in(tree, bolt, bolts));
  EXPECT_FALSE(is_in(tree, bolt, nuts));
}

}  // namespace
