// Calls that fail while windows are named, filled and read, for each function of the family that can fail.
#include <gtest/gtest.h>

#include <kexlib/windowtools/combo_list_utils.h>
#include <kexlib/windowtools/gui_tools.h>

#include <support/fault_sweep.h>
#include <support/string_table.h>
#include <windowtools/hwnd_table_fixture.h>

#include <string>

namespace {

const Call calls[] = {
    memory_call(),
    Call("USER32.dll", "SetWindowsHookExA", &SetWindowsHookExA, nullptr),
    Call("USER32.dll", "UnhookWindowsHookEx", &UnhookWindowsHookEx, FALSE),
    Call("USER32.dll", "LoadStringW", &LoadStringW, 0),
    Call("USER32.dll", "GetDC", &GetDC, nullptr),
    Call("USER32.dll", "GetWindowRect", &GetWindowRect, FALSE),
    Call("USER32.dll", "SetWindowPos", &SetWindowPos, FALSE),
    Call("GDI32.dll", "GetTextExtentPoint32A", &GetTextExtentPoint32A, FALSE),
};

HWND make_control(const char* name, DWORD style) {
  return CreateWindowA(name, "", WS_POPUP | style, 0, 0, 100, 100, nullptr, nullptr, GetModuleHandleA(nullptr),
                       nullptr);
}

struct Combo : WTL::CComboBoxT<ATL::CWindow> {
  Combo() : CComboBoxT(make_control("COMBOBOX", CBS_DROPDOWNLIST)) {}
  ~Combo() { DestroyWindow(); }
};

// Two rows; the first is selected, and its text has a thousand characters.
struct List : WTL::CListViewCtrlT<ATL::CWindow> {
  List() : CListViewCtrlT(make_control(WC_LISTVIEWA, LVS_REPORT)) {
    InsertColumn(0, "column", LVCFMT_LEFT, 50);
    InsertItem(0, std::string(1000, 'x').c_str());
    InsertItem(1, "second");
    SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
  }
  ~List() { DestroyWindow(); }
};

// The one window with a place on the screen: making many takes long.
HWND host() {
  static const HWND window = make_dialog();
  return window;
}

const Operation operations[] = {
    {"populate",
     [](Attempt& attempt) {
       Combo combo;
       const std::vector<CStringA> items{"first", "second"};
       EXPECT_EQ(attempt([&] { kexWTLComboBoxUtils(combo).populate(items); }), "");
       EXPECT_EQ(combo.GetCount(), 2);
     }},
    {"get_item_text",
     [](Attempt& attempt) {
       List list;
       const CStringA all('x', 1000);
       CStringA text;
       const std::string thrown = attempt([&] { text = kexWTLListViewCtrlUtils(list).get_item_text(0, 0); });
       EXPECT_EQ(thrown, "");
       EXPECT_EQ(text, all.Left(text.GetLength()));
       EXPECT_EQ(text == all, !attempt.failed());
       EXPECT_EQ(kexWTLListViewCtrlUtils(list).get_item_text(0, 0), all);
     }},
    {"get_selection",
     [](Attempt& attempt) {
       List list;
       std::vector<int> rows;
       const std::string thrown = attempt([&] { rows = kexWTLListViewCtrlUtils(list).get_selection(); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       EXPECT_EQ(kexWTLListViewCtrlUtils(list).get_selection(), std::vector<int>{0});
     }},
    {"fill_combo_box_from_resource_ids",
     [](Attempt& attempt) {
       const HMODULE strings = LoadLibraryA("string_table.dll");
       Combo combo;
       unsigned ids[] = {IDS_FIRST, IDS_FIFTH};
       const auto fill = [&] { kexGUITools::fill_combo_box_from_resource_ids(strings, combo, ids, 2); };
       const std::string thrown = attempt(fill);
       EXPECT_EQ(thrown, attempt.failed("malloc") ? "CMemoryException" : "");
       if (thrown.empty()) {
         EXPECT_EQ(combo.GetCount(), 2);
       }
       fill();
       char text[20] = "";
       combo.GetLBText(1, text);
       EXPECT_STREQ(text, "the fifth");
       FreeLibrary(strings);
     }},
    {"reg_window",
     [](Attempt& attempt) {
       const HWND window = make_view(host());
       const auto reg = [&] { table().reg_window(window, "a name that is too long to be stored in place", 7); };
       table();
       const std::string thrown = attempt(reg);
       EXPECT_EQ(thrown, attempt.failed("malloc") ? "std::bad_alloc" : "");
       EXPECT_EQ(table().get_idd(window), thrown.empty() ? 7 : 0);
       EXPECT_EQ(table().check_name("a name that is too long to be stored in place", nullptr), thrown.empty());
       reg();
       EXPECT_EQ(table().get_handle("a name that is too long to be stored in place"), window);
       DestroyWindow(window);
       table().unreg_window(window);  // where the hook was refused
       EXPECT_EQ(table().get_idd(window), 0);
       kexHWNDTable::delete_singleton();
     }},
    {"singleton",
     [](Attempt& attempt) {
       const std::string thrown = attempt([] { kexHWNDTable::singleton(); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       kexHWNDTable::delete_singleton();
     }},
    {"get_handle, of one name for two windows",
     [](Attempt& attempt) {
       const HWND first = make_view(host(), 0), second = make_view(host());
       table().reg_window(first, "name", 1);
       HWND found = nullptr;
       const std::string thrown = attempt([&] { found = table().get_handle("name"); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       EXPECT_EQ(found, nullptr);
       DestroyWindow(first);
       DestroyWindow(second);
       kexHWNDTable::delete_singleton();
     }},
    {"delete_singleton",
     [](Attempt& attempt) {
       const HWND window = make_view(host());
       table().reg_window(window, "name", 1);
       EXPECT_EQ(attempt([] { kexHWNDTable::delete_singleton(); }), "");
       EXPECT_EQ(table().get_idd(window), 0);
       DestroyWindow(window);
       kexHWNDTable::delete_singleton();
     }},
};

TEST(WindowToolsFaults, NoCallThatFailsDoesHarm) { sweep_faults(calls, operations); }

TEST(WindowToolsFaults, RoundsWithoutOneLeaveNothingBehind) { repeat_rounds(operations); }

}  // namespace
