// Subclassing, superclasses and the window classes of a module.
#include <gtest/gtest.h>

#include <framework/recorder.h>
#include <support/expect_flat.h>
#include <support/window_text.h>

namespace {

// An existing edit control that is subclassed.
class TakenEdit : public CWindowImpl<TakenEdit> {
 public:
  BEGIN_MSG_MAP(TakenEdit)
    seen.push_back(uMsg);
    MESSAGE_HANDLER(WM_CHAR, OnChar)
  END_MSG_MAP()
  LRESULT OnChar(UINT, WPARAM wParam, LPARAM, BOOL& handled) {
    if (wParam == '#') return 0;
    handled = FALSE;
    return 0;
  }
  void OnFinalMessage(HWND window) override { final_message = window; }
  Messages seen;
  HWND final_message = nullptr;
};

HWND make_edit() { return CreateWindow("EDIT", "", WS_POPUP, 0, 0, 100, 20, nullptr, nullptr, nullptr, nullptr); }

TEST(Subclassing, SeesTheMessagesFirstAndPassesTheRestOn) {
  HWND window = make_edit();
  TakenEdit edit;
  ASSERT_TRUE(edit.SubclassWindow(window));
  EXPECT_EQ(edit.m_hWnd, window);
  for (char c : {'a', '#', 'b'}) SendMessage(window, WM_CHAR, static_cast<WPARAM>(c), 0);
  EXPECT_EQ(window_text(window), "ab");

  EXPECT_EQ(edit.UnsubclassWindow(), window);
  EXPECT_FALSE(edit.m_hWnd);
  edit.seen.clear();
  SendMessage(window, WM_CHAR, '#', 0);
  EXPECT_EQ(window_text(window), "ab#");
  EXPECT_TRUE(edit.seen.empty());
  DestroyWindow(window);
  EXPECT_FALSE(edit.final_message);
}

TEST(Subclassing, EndsWithTheWindow) {
  HWND window = make_edit();
  TakenEdit edit;
  edit.SubclassWindow(window);
  DestroyWindow(window);
  EXPECT_EQ(edit.final_message, window);
  EXPECT_FALSE(edit.m_hWnd);
  EXPECT_EQ(edit.seen.back(), UINT{WM_NCDESTROY});
  // The object can be used for another window.
  HWND next = make_edit();
  EXPECT_TRUE(edit.SubclassWindow(next));
  DestroyWindow(next);
  EXPECT_EQ(edit.final_message, next);
}

TEST(Subclassing, LeavesNothingOfTheControlToTheObjectsNextWindow) {
  for (bool with_window : {true, false}) {
    HWND window = make_edit();
    TakenEdit edit;
    edit.SubclassWindow(window);
    if (!with_window) edit.UnsubclassWindow();
    DestroyWindow(window);
    EXPECT_EQ(edit.m_pfnSuperWindowProc, &::DefWindowProc);
  }
}

TEST(Subclassing, IsRefusedByTheSystem) {
  TakenEdit edit;
  EXPECT_FALSE(edit.SubclassWindow(GetDesktopWindow())) << "another process's";
  EXPECT_FALSE(edit.m_hWnd);
}

TEST(Subclassing, IsNotUndoneUnderSomebodyWhoCameLater) {
  HWND window = make_edit();
  TakenEdit first, second;
  first.SubclassWindow(window);
  second.SubclassWindow(window);
  EXPECT_FALSE(first.UnsubclassWindow());
  EXPECT_EQ(first.m_hWnd, window);
  EXPECT_EQ(second.UnsubclassWindow(), window);
  EXPECT_EQ(first.UnsubclassWindow(), window);
  DestroyWindow(window);
}

TEST(Subclassing, IsUndoneUnderSomebodyElseByForce) {
  HWND window = make_edit();
  TakenEdit first, second;
  first.SubclassWindow(window);
  second.SubclassWindow(window);
  EXPECT_EQ(first.UnsubclassWindow(TRUE), window);
  second.seen.clear();
  SendMessage(window, WM_CHAR, 'x', 0);
  EXPECT_TRUE(second.seen.empty());
  EXPECT_EQ(window_text(window), "x");
  second.Detach();
  DestroyWindow(window);
}

// A superclass of the system's edit control.
class BigEdit : public CWindowImpl<BigEdit, CWindow, CWinTraits<WS_POPUP>> {
 public:
  DECLARE_WND_SUPERCLASS("TestBigEdit", "EDIT")
  BEGIN_MSG_MAP(BigEdit)
    MESSAGE_HANDLER(EM_GETLIMITTEXT, OnLimit)
    MESSAGE_HANDLER(WM_USER, OnUser)
  END_MSG_MAP()
  LRESULT OnLimit(UINT, WPARAM, LPARAM, BOOL&) { return DefWindowProc() + 1; }
  LRESULT OnUser(UINT, WPARAM, LPARAM, BOOL&) { return DefWindowProc(EM_GETLIMITTEXT, 0, 0) + 2; }
};

TEST(Superclass, IsTheOriginalWithAMapBeforeIt) {
  BigEdit edit;
  RECT place = {0, 0, 100, 20};
  ASSERT_TRUE(edit.Create(nullptr, place));
  char name[30];
  GetClassName(edit, name, sizeof name);
  EXPECT_STREQ(name, "TestBigEdit");
  SendMessage(edit, WM_CHAR, 'x', 0);
  EXPECT_EQ(window_text(edit), "x");
  WNDCLASSEX copied = {};
  copied.cbSize = sizeof copied;
  ASSERT_TRUE(GetClassInfoEx(GetModuleHandle(nullptr), "TestBigEdit", &copied));
  EXPECT_EQ(copied.hInstance, GetModuleHandle(nullptr));
  EXPECT_FALSE(copied.style & CS_GLOBALCLASS);
  edit.SendMessage(EM_SETLIMITTEXT, 100);
  EXPECT_EQ(edit.SendMessage(EM_GETLIMITTEXT), 101);
  EXPECT_EQ(edit.SendMessage(WM_USER), 102);
  edit.DestroyWindow();
}

// A wrapper of a system class, as in WTL: a window class over it is a superclass.
struct EditWrapper : CWindow {
  using CWindow::CWindow;
  static LPCTSTR GetWndClassName() { return "EDIT"; }
};
class EditByWrapper : public CWindowImpl<EditByWrapper, EditWrapper, CWinTraits<WS_POPUP>> {
 public:
  BEGIN_MSG_MAP(EditByWrapper)
  END_MSG_MAP()
};

TEST(Superclass, FollowsFromTheWrapperItIsBuiltOn) {
  EditByWrapper edit;
  RECT place = {0, 0, 100, 20};
  ASSERT_TRUE(edit.Create(nullptr, place));
  EXPECT_STREQ(EditByWrapper::GetWndClassInfo().m_lpszOrigName, "EDIT");
  char name[40];
  GetClassName(edit, name, sizeof name);
  EXPECT_EQ(std::string(name).substr(0, 4), "ATL:");
  SendMessage(edit, WM_CHAR, 'x', 0);
  EXPECT_EQ(window_text(edit), "x");
  edit.DestroyWindow();
}

TEST(Superclass, OfNothingMakesNoWindow) {
  class Orphan : public CWindowImpl<Orphan> {
   public:
    DECLARE_WND_SUPERCLASS("TestOrphan", "TestNoSuchClass")
    BEGIN_MSG_MAP(Orphan)
    END_MSG_MAP()
  } orphan;
  EXPECT_FALSE(orphan.Create(HWND_MESSAGE));
}

TEST(WindowClass, OfAModuleGoesWithIt) {
  for (int round = 0; round < 2; ++round) {
    HMODULE plugin = LoadLibraryA("window_class_plugin.dll");
    ASSERT_TRUE(plugin);
    auto make_and_destroy_window =
        reinterpret_cast<BOOL (*)()>(reinterpret_cast<void*>(GetProcAddress(plugin, "make_and_destroy_window")));
    EXPECT_TRUE(make_and_destroy_window());
    WNDCLASSEX info = {};
    info.cbSize = sizeof info;
    EXPECT_TRUE(GetClassInfoEx(plugin, "TestPluginWindow", &info));
    FreeLibrary(plugin);
    EXPECT_FALSE(GetModuleHandleA("window_class_plugin.dll"));
    EXPECT_FALSE(GetClassInfoEx(plugin, "TestPluginWindow", &info));
  }
}

TEST(WindowClass, OfOneNameIsSharedByTwoClasses) {
  class First : public CWindowImpl<First> {
   public:
    DECLARE_WND_CLASS("TestSharedClass")
    BEGIN_MSG_MAP(First)
      MESSAGE_HANDLER(WM_USER, OnUser)
    END_MSG_MAP()
    LRESULT OnUser(UINT, WPARAM, LPARAM, BOOL&) { return 1; }
  } first;
  class Second : public CWindowImpl<Second> {
   public:
    DECLARE_WND_CLASS("TestSharedClass")
    BEGIN_MSG_MAP(Second)
      MESSAGE_HANDLER(WM_USER, OnUser)
    END_MSG_MAP()
    LRESULT OnUser(UINT, WPARAM, LPARAM, BOOL&) { return 2; }
  } second;
  ASSERT_TRUE(first.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP));
  ASSERT_TRUE(second.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP));
  EXPECT_EQ(first.SendMessage(WM_USER), 1);
  EXPECT_EQ(second.SendMessage(WM_USER), 2);
  EXPECT_EQ(GetClassLongPtr(first, GCW_ATOM), GetClassLongPtr(second, GCW_ATOM));
  first.DestroyWindow();
  second.DestroyWindow();
}

TEST(WindowImpl, AThousandRoundsOfCreateSubclassAndDestroyLeaveNothingBehind) {
  ATOM atom = 0;
  expect_flat(1000, [&] {
    Recorder window;
    window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
    TakenEdit edit;
    edit.SubclassWindow(CreateWindow("EDIT", "", WS_CHILD, 0, 0, 9, 9, window, nullptr, nullptr, nullptr));
    BigEdit big;
    big.Create(window, nullptr, nullptr, WS_CHILD);
    window.DestroyWindow();
    ASSERT_FALSE(edit.m_hWnd);
    ASSERT_FALSE(big.m_hWnd);
    if (!atom) atom = Recorder::GetWndClassInfo().m_atom;
    ASSERT_EQ(Recorder::GetWndClassInfo().m_atom, atom);
  });
}

}  // namespace
