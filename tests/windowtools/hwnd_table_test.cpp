// Windows by name, outside and inside an MDI client.
#include <gtest/gtest.h>

#include <kexlib/windowtools/hwnd_table.h>

#include <commctrl.h>

#include <support/import_override.h>
#include <support/memory_shortage.h>
#include <windowtools/hwnd_table_fixture.h>
#include <windowtools/mdi_frame.h>

#include <cctype>
#include <new>
#include <string>
#include <vector>

namespace {

// ---- the singleton -------------------------------------------------------------------------------------------------

TEST_F(HwndTable, IsOneForTheProcessUntilItIsDeleted) {
  EXPECT_EQ(&table(), &table());
  EXPECT_EQ(kexHWNDTable::access_singleton(bz_singleton_get), &table());
  HWND window = dialog();
  for (const int action : {1, 2, -1}) {
    table().reg_window(window, "name", 5);
    EXPECT_EQ(table().get_idd(window), 5);
    EXPECT_EQ(kexHWNDTable::access_singleton(static_cast<bzSingletonAccessAction>(action)), nullptr);
    EXPECT_EQ(table().get_idd(window), 0) << action;
  }
  kexHWNDTable::delete_singleton();
  kexHWNDTable::delete_singleton();
}

class Copy : public kexHWNDTable {
 public:
  Copy() = default;
  explicit Copy(const kexHWNDTable& other) : kexHWNDTable(other) {}
  Copy(bzCopy tag, const kexHWNDTable& other) : kexHWNDTable(tag, other) {}
};

TEST_F(HwndTable, IsCopiedByDerivedClassesWithItsEntries) {
  HWND first = dialog();
  HWND second = dialog();
  table().reg_window(first, "first", 1);
  table().reg_window(second, "second", 2);
  const Copy copy(table());
  const Copy tagged(bz_copy, table());
  const Copy empty;
  table().unreg_window(first);
  for (const kexHWNDTable* each :
       {static_cast<const kexHWNDTable*>(&copy), static_cast<const kexHWNDTable*>(&tagged)}) {
    EXPECT_EQ(each->get_handle("first"), first);
    EXPECT_EQ(each->get_handle("second"), second);
    EXPECT_STREQ(each->get_name(first), "first");
    EXPECT_EQ(each->get_idd(second), 2);
  }
  EXPECT_EQ(empty.get_handle("second"), nullptr);
}

// ---- names outside an MDI client -----------------------------------------------------------------------------------

TEST_F(HwndTable, FindsWindowsByTheirNamesAndNamesByTheirWindows) {
  HWND window = dialog();
  HWND control = make_view(window);
  std::string name = "outline";
  table().reg_window(window, name.c_str(), 0xFFFFFFFFu);
  name = "control";
  table().reg_window(control, name.c_str(), 7);
  name = "changed";
  EXPECT_EQ(table().get_handle("outline"), window);
  EXPECT_EQ(table().get_handle("control"), control);
  EXPECT_STREQ(table().get_name(window), "outline");
  EXPECT_STREQ(table().get_name(control), "control");
  EXPECT_EQ(table().get_idd(window), -1);
  EXPECT_EQ(table().get_idd(control), 7);
}

TEST_F(HwndTable, KnowsNothingOfWindowsAndNamesThatAreNotRegistered) {
  HWND window = dialog();
  EXPECT_EQ(table().get_name(window), nullptr);
  EXPECT_EQ(table().get_idd(window), 0);
  EXPECT_EQ(table().get_name(nullptr), nullptr);
  EXPECT_EQ(table().get_idd(nullptr), 0);
  EXPECT_EQ(table().get_handle("name"), nullptr);
  EXPECT_EQ(table().get_handle(nullptr), nullptr);
  EXPECT_EQ(table().check_name("name", window), 0);
  EXPECT_EQ(table().check_name("name", nullptr), 0);
  table().unreg_window(window);
  table().unreg_window(nullptr);
}

TEST_F(HwndTable, DistinguishesLettersByCase) {
  HWND window = dialog();
  HWND other = dialog();
  table().reg_window(window, "Name", 1);
  EXPECT_EQ(table().get_handle("name"), nullptr);
  EXPECT_EQ(table().check_name("name", other), 0);
  table().reg_window(other, "name", 1);
  EXPECT_EQ(table().get_handle("name"), other);
  EXPECT_EQ(table().get_handle("Name"), window);
}

TEST_F(HwndTable, TakesANullNameForTheEmptyOne) {
  HWND window = dialog();
  table().reg_window(window, nullptr, 3);
  EXPECT_STREQ(table().get_name(window), "");
  EXPECT_EQ(table().get_handle(nullptr), window);
  EXPECT_EQ(table().get_handle(""), window);
  EXPECT_EQ(table().check_name(nullptr, dialog()), 1);
}

TEST_F(HwndTable, GivesANameToOneDialogOnly) {
  HWND first = dialog();
  HWND second = dialog();
  table().reg_window(first, "name", 1);
  EXPECT_EQ(table().check_name("name", second), 1);
  EXPECT_EQ(table().check_name("name", first), 1);
  table().reg_window(second, "name", 2);
  EXPECT_EQ(table().get_name(second), nullptr);
  EXPECT_EQ(table().get_idd(second), 0);
  EXPECT_EQ(table().get_handle("name"), first);
  table().unreg_window(first);
  table().reg_window(second, "name", 2);
  EXPECT_EQ(table().get_handle("name"), second);
}

TEST_F(HwndTable, KeepsTheFirstNameOfAWindow) {
  HWND window = dialog();
  table().reg_window(window, "first", 1);
  table().reg_window(window, "second", 2);
  table().reg_window(window, "first", 3);
  EXPECT_STREQ(table().get_name(window), "first");
  EXPECT_EQ(table().get_idd(window), 1);
  EXPECT_EQ(table().get_handle("second"), nullptr);
  EXPECT_EQ(table().check_name("second", dialog()), 0);
}

TEST_F(HwndTable, NeverGivesAHiddenWindowAndKeepsItsNameTaken) {
  HWND window = dialog(0);
  HWND control = make_view(window);
  table().reg_window(window, "hidden", 1);
  table().reg_window(control, "inside a hidden one", 1);
  EXPECT_EQ(table().get_handle("hidden"), nullptr);
  EXPECT_EQ(table().get_handle("inside a hidden one"), nullptr);
  EXPECT_EQ(table().check_name("hidden", dialog()), 1);
  ShowWindow(window, SW_SHOWNA);
  EXPECT_EQ(table().get_handle("hidden"), window);
  EXPECT_EQ(table().get_handle("inside a hidden one"), control);
}

TEST_F(HwndTable, RegistersWhatIsNoWindowAndNeverFindsIt) {
  HWND gone = dialog();
  DestroyWindow(gone);
  table().reg_window(gone, "gone", 4);
  table().reg_window(nullptr, "null", 5);
  EXPECT_STREQ(table().get_name(gone), "gone");
  EXPECT_EQ(table().get_idd(nullptr), 5);
  EXPECT_EQ(table().get_handle("gone"), nullptr);
  EXPECT_EQ(table().get_handle("null"), nullptr);
  EXPECT_EQ(table().check_name("gone", nullptr), 1);
  table().unreg_window(gone);
  table().unreg_window(nullptr);
  EXPECT_EQ(table().get_name(gone), nullptr);
  EXPECT_EQ(table().get_name(nullptr), nullptr);
}

TEST_F(HwndTable, RegistersNothingWhereMemoryRunsOut) {
  HWND window = dialog();
  HWND other = dialog();
  table().reg_window(other, "other", 1);
  int refused = 0;
  for (bool thrown = true; thrown; ++refused) {
    thrown = false;
    {
      const MemoryShortage shortage(GetCurrentThreadId(), refused);
      ASSERT_TRUE(shortage.made());
      try {
        table().reg_window(window, "a name that is longer than any text that holds itself", 2);
      } catch (const std::bad_alloc&) {
        thrown = true;
      }
    }
    EXPECT_EQ(table().get_name(window) == nullptr, thrown) << refused;
  }
  EXPECT_GT(refused, 2);
  EXPECT_EQ(table().get_handle("a name that is longer than any text that holds itself"), window);
  EXPECT_STREQ(table().get_name(other), "other");
}

TEST_F(HwndTable, FindsAWindowOfAnotherProcess) {
  HWND desktop = GetDesktopWindow();
  DWORD process = 0;
  GetWindowThreadProcessId(desktop, &process);
  ASSERT_NE(process, GetCurrentProcessId());
  table().reg_window(desktop, "desktop", 1);
  EXPECT_EQ(table().get_handle("desktop"), desktop);
}

TEST_F(HwndTable, TakesAThousandWindows) {
  HWND parent = dialog();
  std::vector<HWND> views;
  for (int i = 0; i < 1000; ++i) {
    views.push_back(make_view(parent));
    table().reg_window(views.back(), ("view " + std::to_string(i)).c_str(), static_cast<unsigned long>(i));
  }
  for (int i = 0; i < 1000; ++i) {
    const std::string name = "view " + std::to_string(i);
    HWND view = views[static_cast<std::size_t>(i)];
    ASSERT_EQ(table().get_handle(name.c_str()), view);
    ASSERT_EQ(table().get_name(view), name);
    ASSERT_EQ(table().get_idd(view), i);
  }
  DestroyWindow(parent);
  for (HWND view : views) ASSERT_EQ(table().get_name(view), nullptr);
}

// ---- names in an MDI client ----------------------------------------------------------------------------------------

class HwndTableInMdi : public HwndTable {
 protected:
  MdiFrame mdi_;
  HWND first_ = mdi_.add_child();
  HWND second_ = mdi_.add_child();
  HWND in_first_ = make_view(first_);
  HWND in_second_ = make_view(second_);
};

TEST_F(HwndTableInMdi, GivesTheWindowInTheActiveChild) {
  table().reg_window(in_first_, "view", 1);
  EXPECT_EQ(table().check_name("view", in_second_), 0);
  table().reg_window(in_second_, "view", 2);
  EXPECT_EQ(table().get_idd(in_second_), 2);
  EXPECT_EQ(table().get_handle("view"), in_second_);
  mdi_.activate(first_);
  EXPECT_EQ(table().get_handle("view"), in_first_);
  mdi_.activate(second_);
  EXPECT_EQ(table().get_handle("view"), in_second_);
  mdi_.close(second_);
  EXPECT_EQ(table().get_name(in_second_), nullptr);
  EXPECT_EQ(table().get_handle("view"), in_first_);
}

TEST_F(HwndTableInMdi, ForgetsEachOfSeveralWindowsOfOneName) {
  HWND third = mdi_.add_child();
  HWND in_third = make_view(third);
  for (HWND view : {in_first_, in_second_, in_third}) table().reg_window(view, "view", 1);
  const auto expect_forgotten = [&](HWND child, HWND view) {
    mdi_.activate(child);
    EXPECT_EQ(table().get_handle("view"), nullptr);
    EXPECT_EQ(table().check_name("view", view), 0);
  };
  table().unreg_window(in_second_);
  expect_forgotten(second_, in_second_);
  table().unreg_window(in_first_);
  expect_forgotten(first_, in_first_);
  mdi_.activate(third);
  EXPECT_EQ(table().get_handle("view"), in_third);
  table().unreg_window(in_third);
  expect_forgotten(third, in_third);
  EXPECT_EQ(table().check_name("view", dialog()), 0);
}

TEST_F(HwndTableInMdi, GivesNoneWhereOnlyAnotherChildHasTheName) {
  table().reg_window(in_first_, "view", 1);
  EXPECT_EQ(table().get_handle("view"), nullptr);
  mdi_.close(second_);
  EXPECT_EQ(table().get_handle("view"), in_first_);
  mdi_.close(first_);
  EXPECT_EQ(table().get_handle("view"), nullptr);
}

TEST_F(HwndTableInMdi, NeverGivesAHiddenView) {
  table().reg_window(in_first_, "view", 1);
  table().reg_window(in_second_, "view", 2);
  ShowWindow(in_second_, SW_HIDE);
  EXPECT_EQ(table().get_handle("view"), nullptr);
  mdi_.activate(first_);
  EXPECT_EQ(table().get_handle("view"), in_first_);
  ShowWindow(mdi_.frame, SW_HIDE);
  EXPECT_EQ(table().get_handle("view"), nullptr);
}

TEST_F(HwndTableInMdi, GivesANameToOneWindowOfAChildFrameHoweverDeepItLies) {
  HWND deep = make_view(make_view(in_first_));
  table().reg_window(deep, "view", 1);
  EXPECT_EQ(table().check_name("view", in_first_), 1);
  EXPECT_EQ(table().check_name("view", deep), 1);
  EXPECT_EQ(table().check_name("view", in_second_), 0);
  table().reg_window(in_first_, "view", 2);
  EXPECT_EQ(table().get_name(in_first_), nullptr);
  mdi_.activate(first_);
  EXPECT_EQ(table().get_handle("view"), deep);
}

TEST_F(HwndTableInMdi, ANameThatIsTakenInsideIsTakenOutsideButNotTheOtherWayRound) {
  HWND outside = dialog();
  HWND bar = make_view(mdi_.frame);
  table().reg_window(in_first_, "inside", 1);
  EXPECT_EQ(table().check_name("inside", outside), 1);
  EXPECT_EQ(table().check_name("inside", bar), 1);
  table().reg_window(outside, "outside", 1);
  EXPECT_EQ(table().check_name("outside", in_first_), 0);
}

TEST_F(HwndTableInMdi, GivesTheOneThatWasRegisteredFirstOfSeveral) {
  HWND outside = dialog();
  table().reg_window(outside, "view", 1);
  table().reg_window(in_second_, "view", 2);
  EXPECT_EQ(table().get_handle("view"), outside);
  ShowWindow(outside, SW_HIDE);
  EXPECT_EQ(table().get_handle("view"), in_second_);
}

TEST_F(HwndTableInMdi, FindsWhatLiesBesideTheClientWhicheverChildIsActive) {
  HWND bar = make_view(mdi_.frame);
  table().reg_window(bar, "bar", 1);
  EXPECT_EQ(table().get_handle("bar"), bar);
  mdi_.activate(first_);
  EXPECT_EQ(table().get_handle("bar"), bar);
}

TEST_F(HwndTableInMdi, TakesAnOwnedDialogForOutside) {
  HWND owned = dialog(WS_VISIBLE, first_);
  table().reg_window(owned, "dialog", 1);
  EXPECT_EQ(table().get_handle("dialog"), owned);
  EXPECT_EQ(table().check_name("dialog", dialog()), 1);
}

// A frame is not its own descendant.
TEST_F(HwndTableInMdi, NeverGivesAChildFrameNorTheClient) {
  table().reg_window(second_, "frame", 1);
  table().reg_window(mdi_.client, "client", 1);
  EXPECT_STREQ(table().get_name(second_), "frame");
  EXPECT_EQ(table().get_handle("frame"), nullptr);
  EXPECT_EQ(table().get_handle("client"), nullptr);
}

TEST_F(HwndTableInMdi, LetsAWindowHaveTheNameOfTheFrameAroundIt) {
  table().reg_window(second_, "name", 1);
  EXPECT_EQ(table().check_name("name", in_second_), 0);
  EXPECT_EQ(table().check_name("name", second_), 0);
  table().reg_window(in_second_, "name", 2);
  EXPECT_EQ(table().check_name("name", second_), 1);
  EXPECT_EQ(table().get_handle("name"), in_second_);
}

TEST_F(HwndTableInMdi, TakesTheClientItselfForOutsideWhenItIsRegistered) {
  table().reg_window(in_first_, "name", 1);
  EXPECT_EQ(table().check_name("name", mdi_.client), 1);
}

TEST_F(HwndTableInMdi, KnowsTheClientByTheExactNameOfItsClass) {
  WNDCLASSA description{};
  ASSERT_TRUE(GetClassInfoA(nullptr, "MDICLIENT", &description));
  description.hInstance = GetModuleHandleA(nullptr);
  description.lpszClassName = "MDIClient2";
  ASSERT_TRUE(RegisterClassA(&description));
  HWND other = CreateWindowA("STATIC", "", WS_CHILD | WS_VISIBLE, 0, 0, 9, 9, mdi_.frame, nullptr, nullptr, nullptr);
  CLIENTCREATESTRUCT structure{nullptr, 2000};
  HWND client = CreateWindowA("MDIClient2", "", WS_CHILD | WS_VISIBLE, 0, 0, 9, 9, other, nullptr, nullptr, &structure);
  HWND view = make_view(client);
  table().reg_window(view, "view", 1);
  EXPECT_EQ(table().get_handle("view"), view);  // although no child is active there
  EXPECT_EQ(table().check_name("view", make_view(client)), 1);
}

// The system returns a class name in the case of its first registration, so it cannot provide another case.
int WINAPI class_in_lower_case(HWND window, char* name, int room) {
  const int length = GetClassNameA(window, name, room);
  for (char* each = name; *each; ++each) *each = static_cast<char>(std::tolower(static_cast<unsigned char>(*each)));
  return length;
}

TEST_F(HwndTableInMdi, KnowsTheClientByTheCaseOfItsClass) {
  table().reg_window(in_first_, "view", 1);
  EXPECT_EQ(table().check_name("view", in_second_), 0);
  const ImportOverride lower("kexlib.dll", "USER32.dll", "GetClassNameA", &class_in_lower_case);
  ASSERT_TRUE(lower.made());
  EXPECT_EQ(table().check_name("view", in_second_), 1) << "no client, so the name is one for all";
  EXPECT_EQ(table().get_handle("view"), in_first_) << "although it is not in the active child";
}

LRESULT CALLBACK forget_when_asked(HWND window, UINT message, WPARAM w, LPARAM l, UINT_PTR, DWORD_PTR views) {
  if (message == WM_MDIGETACTIVE)
    for (HWND view : *reinterpret_cast<const std::vector<HWND>*>(views)) table().unreg_window(view);
  return DefSubclassProc(window, message, w, l);
}

TEST_F(HwndTableInMdi, BearsThatWindowsAreUnregisteredWhileItAsks) {
  const std::vector<HWND> views{in_first_, in_second_};
  for (HWND view : views) table().reg_window(view, "view", 1);
  SetWindowSubclass(mdi_.client, &forget_when_asked, 1, reinterpret_cast<DWORD_PTR>(&views));
  EXPECT_EQ(table().get_handle("view"), in_second_);
  EXPECT_EQ(table().get_handle("view"), nullptr);
  RemoveWindowSubclass(mdi_.client, &forget_when_asked, 1);
}

// ---- window calls --------------------------------------------------------------------------------------------------

int window_calls;

BOOL WINAPI count_is_window(HWND window) { return ++window_calls, IsWindow(window); }
BOOL WINAPI count_is_visible(HWND window) { return ++window_calls, IsWindowVisible(window); }
BOOL WINAPI count_is_child(HWND parent, HWND window) { return ++window_calls, IsChild(parent, window); }
HWND WINAPI count_parent(HWND window) { return ++window_calls, GetParent(window); }
int WINAPI count_class(HWND window, char* name, int room) { return ++window_calls, GetClassNameA(window, name, room); }

TEST_F(HwndTable, AsksTheSystemAboutWindowsOfTheNameOnly) {
  HWND parent = dialog();
  for (int i = 0; i < 100; ++i) table().reg_window(make_view(parent), std::to_string(i).c_str(), 1);
  HWND last = make_view(parent);
  table().reg_window(last, "last", 1);
  const ImportOverride one("kexlib.dll", "USER32.dll", "IsWindow", &count_is_window);
  const ImportOverride two("kexlib.dll", "USER32.dll", "IsWindowVisible", &count_is_visible);
  const ImportOverride three("kexlib.dll", "USER32.dll", "IsChild", &count_is_child);
  const ImportOverride four("kexlib.dll", "USER32.dll", "GetParent", &count_parent);
  const ImportOverride five("kexlib.dll", "USER32.dll", "GetClassNameA", &count_class);
  ASSERT_TRUE(one.made() && two.made() && three.made() && four.made() && five.made());
  window_calls = 0;
  EXPECT_EQ(table().get_handle("unknown"), nullptr);
  EXPECT_EQ(table().check_name("unknown", last), 0);
  EXPECT_EQ(table().get_name(parent), nullptr);
  EXPECT_STREQ(table().get_name(last), "last");
  EXPECT_EQ(window_calls, 0);
  EXPECT_EQ(table().get_handle("last"), last);
  EXPECT_EQ(window_calls, 6);  // IsWindow, IsWindowVisible, class and parent, and class and parent of the parent
}

}  // namespace
