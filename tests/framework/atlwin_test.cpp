// Windows, dialogs and message maps of ATL.
#include <gtest/gtest.h>

#include <atlwin.h>
#include <framework/resources.h>
#include <support/expect_flat.h>
#include <support/test_control.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

using Messages = std::vector<UINT>;

bool contains(const Messages& messages, UINT message) {
  return std::find(messages.begin(), messages.end(), message) != messages.end();
}

// A window that takes note of its messages.
class Recorder : public CWindowImpl<Recorder, CWindow, CFrameWinTraits> {
 public:
  BEGIN_MSG_MAP(Recorder)
    seen.push_back(uMsg);
    if (handles_seen_at.contains(uMsg)) handles_seen_at[uMsg] = m_hWnd;
    MESSAGE_HANDLER(WM_CREATE, OnCreate)
    MESSAGE_HANDLER(WM_USER, OnFirst)
    MESSAGE_HANDLER(WM_USER, OnSecond)
    MESSAGE_RANGE_HANDLER(WM_USER + 10, WM_USER + 12, OnRange)
  END_MSG_MAP()

  LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL& handled) {
    handled = FALSE;
    if (on_create) on_create();
    return create_result;
  }
  LRESULT OnFirst(UINT, WPARAM wParam, LPARAM, BOOL& handled) {
    handled = wParam == 1;
    return 11;
  }
  LRESULT OnSecond(UINT, WPARAM wParam, LPARAM, BOOL& handled) {
    handled = wParam == 2;
    return 22;
  }
  LRESULT OnRange(UINT message, WPARAM, LPARAM, BOOL&) { return static_cast<LRESULT>(message) - WM_USER; }

  void OnFinalMessage(HWND window) override { final_messages.push_back(window); }

  Messages seen;
  std::map<UINT, HWND> handles_seen_at;
  std::function<void()> on_create;
  LRESULT create_result = 0;
  std::vector<HWND> final_messages;
};

TEST(WindowImpl, KnowsItsHandleFromTheVeryFirstMessageOn) {
  Recorder window;
  window.handles_seen_at = {{WM_GETMINMAXINFO, nullptr}, {WM_NCCREATE, nullptr}, {WM_CREATE, nullptr}};
  HWND created = window.Create(nullptr, CWindow::rcDefault, "title");
  ASSERT_TRUE(created);
  EXPECT_EQ(window.m_hWnd, created);
  EXPECT_EQ(window.seen.front(), UINT{WM_GETMINMAXINFO});
  for (auto [message, handle] : window.handles_seen_at) EXPECT_EQ(handle, created) << message;
  char title[10];
  EXPECT_EQ(window.GetWindowText(title, sizeof title), 5);
  EXPECT_STREQ(title, "title");
  EXPECT_TRUE(window.DestroyWindow());
}

TEST(WindowImpl, GetsTheStylesOfItsTraitsUnlessToldOthers) {
  Recorder window;
  window.Create(nullptr);
  EXPECT_EQ(window.GetStyle() & WS_OVERLAPPEDWINDOW, DWORD{WS_OVERLAPPEDWINDOW});
  EXPECT_EQ(window.GetExStyle() & WS_EX_APPWINDOW, DWORD{WS_EX_APPWINDOW});
  window.DestroyWindow();
  window.Create(nullptr, nullptr, nullptr, WS_POPUP, WS_EX_TOOLWINDOW);
  EXPECT_EQ(window.GetStyle() & (WS_POPUP | WS_OVERLAPPEDWINDOW), DWORD{WS_POPUP});
  EXPECT_EQ(window.GetExStyle() & (WS_EX_APPWINDOW | WS_EX_TOOLWINDOW), DWORD{WS_EX_TOOLWINDOW});
  window.DestroyWindow();
}

TEST(WindowImpl, HasAnArrowAPlainBackgroundAndDoubleClicksByItsClass) {
  Recorder window;
  window.Create(nullptr);
  EXPECT_EQ(GetClassLongPtr(window, GCLP_HCURSOR), reinterpret_cast<ULONG_PTR>(LoadCursor(nullptr, IDC_ARROW)));
  EXPECT_EQ(GetClassLongPtr(window, GCLP_HBRBACKGROUND), ULONG_PTR{COLOR_WINDOW + 1});
  EXPECT_EQ(GetClassLongPtr(window, GCL_STYLE), ULONG_PTR{CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS});
  window.DestroyWindow();
}

TEST(WindowImpl, ARefusedCreationGivesNullAndTheObjectMayTryAgain) {
  Recorder window;
  window.create_result = -1;
  // A handler's answer counts only if the message ends with it.
  EXPECT_TRUE(window.Create(nullptr));
  window.DestroyWindow();

  class Refusing : public CWindowImpl<Refusing, CWindow, CFrameWinTraits> {
   public:
    BEGIN_MSG_MAP(Refusing)
      MESSAGE_HANDLER(WM_CREATE, OnCreate)
    END_MSG_MAP()
    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&) { return answer; }
    void OnFinalMessage(HWND) override { ++final_messages; }
    LRESULT answer = -1;
    int final_messages = 0;
  } refusing;
  EXPECT_FALSE(refusing.Create(nullptr));
  EXPECT_FALSE(refusing.m_hWnd);
  EXPECT_EQ(refusing.final_messages, 1);
  refusing.answer = 0;
  EXPECT_TRUE(refusing.Create(nullptr));
  refusing.DestroyWindow();
  EXPECT_EQ(refusing.final_messages, 2);
}

TEST(WindowImpl, CreatesWindowsInsideTheCreationOfOthers) {
  Recorder outer, inner;
  outer.on_create = [&] { inner.Create(outer.m_hWnd, nullptr, "inner", WS_CHILD, 0, 7U); };
  ASSERT_TRUE(outer.Create(nullptr));
  ASSERT_TRUE(inner.m_hWnd);
  EXPECT_NE(outer.m_hWnd, inner.m_hWnd);
  EXPECT_EQ(inner.GetParent().m_hWnd, outer.m_hWnd);
  EXPECT_EQ(inner.GetDlgCtrlID(), 7);
  EXPECT_EQ(outer.GetDlgItem(7).m_hWnd, inner.m_hWnd);
  outer.DestroyWindow();
  EXPECT_FALSE(inner.m_hWnd);
  EXPECT_EQ(inner.final_messages.size(), 1U);
}

TEST(WindowImpl, WindowsOfTheSystemMadeMeanwhileAreNotTakenForOurs) {
  Recorder window;
  HWND system = nullptr;
  window.on_create = [&] {
    system = CreateWindow("STATIC", "", WS_CHILD, 0, 0, 1, 1, window.m_hWnd, nullptr, nullptr, nullptr);
  };
  HWND created = window.Create(nullptr);
  EXPECT_TRUE(system);
  EXPECT_EQ(window.m_hWnd, created);
  window.DestroyWindow();
}

TEST(WindowImpl, ACreationThatFailsBeforeAnyMessageLeavesNothingForTheNextWindow) {
  Recorder failed, next;
  EXPECT_FALSE(failed.Create(nullptr, nullptr, nullptr, WS_CHILD));  // a child needs a parent
  EXPECT_FALSE(failed.m_hWnd);
  EXPECT_TRUE(failed.seen.empty());
  HWND created = next.Create(nullptr);
  EXPECT_EQ(next.m_hWnd, created);
  EXPECT_FALSE(failed.m_hWnd);
  next.DestroyWindow();
  EXPECT_EQ(failed.final_messages.size(), 0U);
}

TEST(WindowImpl, AChildWithoutIdentifierGetsOneOfItsObject) {
  Recorder parent, child;
  parent.Create(nullptr);
  child.Create(parent, nullptr, nullptr, WS_CHILD);
  EXPECT_EQ(child.GetDlgCtrlID(), static_cast<int>(reinterpret_cast<INT_PTR>(&child)));
  parent.DestroyWindow();
}

TEST(WindowImpl, EachThreadFindsItsOwnWindows) {
  auto make = [] {
    for (int i = 0; i < 200; ++i) {
      Recorder window;
      HWND created = window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
      ASSERT_TRUE(created);
      ASSERT_EQ(window.m_hWnd, created);
      ASSERT_EQ(window.SendMessage(WM_USER, 1), 11);
      window.DestroyWindow();
    }
  };
  std::thread other(make);
  make();
  other.join();
}

TEST(MessageMap, GoesOnToTheNextHandlerWhereOneDeclines) {
  Recorder window;
  window.Create(nullptr);
  EXPECT_EQ(window.SendMessage(WM_USER, 1), 11);
  EXPECT_EQ(window.SendMessage(WM_USER, 2), 22);
  // Both decline: the system's answer counts.
  EXPECT_EQ(window.SendMessage(WM_USER, 3), 0);
  EXPECT_EQ(window.SendMessage(WM_USER + 9), 0);
  EXPECT_EQ(window.SendMessage(WM_USER + 10), 10);
  EXPECT_EQ(window.SendMessage(WM_USER + 12), 12);
  EXPECT_EQ(window.SendMessage(WM_USER + 13), 0);
  window.DestroyWindow();
}

// A map without a window, as base classes have them.
class Part {
 public:
  explicit Part(LRESULT answer) : answer_(answer) {}

  BEGIN_MSG_MAP(Part)
    MESSAGE_HANDLER(WM_USER + 1, OnMessage)
  END_MSG_MAP()

  LRESULT OnMessage(UINT message, WPARAM, LPARAM, BOOL&) { return answer_ + static_cast<LRESULT>(message) - WM_USER; }

 private:
  LRESULT answer_;
};

class Chained : public CWindowImpl<Chained>, public Part {
 public:
  Chained() : Part(100) {}

  BEGIN_MSG_MAP(Chained)
    CHAIN_MSG_MAP(Part)
  END_MSG_MAP()
};

TEST(MessageMap, ChainsToBaseClasses) {
  Chained window;
  window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
  EXPECT_EQ(window.SendMessage(WM_USER + 1), 101);
  EXPECT_EQ(window.SendMessage(WM_USER + 2), 0);
  window.DestroyWindow();
}

TEST(WindowImpl, ACopyHasAProcedureOfItsOwn) {
  Chained window;
  window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
  { Chained copy(window); }
  EXPECT_EQ(window.SendMessage(WM_USER + 1), 101);
  window.DestroyWindow();
}

TEST(MessageMap, HandlesNothingUnderANumberThatItHasNot) {
  Part part(0);
  LRESULT result = 77;
  EXPECT_FALSE(part.ProcessWindowMessage(nullptr, WM_USER + 1, 0, 0, result, 9));
  EXPECT_EQ(result, 77);
}

class Commands : public CWindowImpl<Commands> {
 public:
  BEGIN_MSG_MAP(Commands)
    COMMAND_HANDLER(1, BN_CLICKED, OnBoth)
    COMMAND_ID_HANDLER(2, OnId)
    COMMAND_CODE_HANDLER(EN_CHANGE, OnCode)
    COMMAND_RANGE_HANDLER(10, 12, OnRange)
    NOTIFY_HANDLER(3, NM_CLICK, OnNotify)
    NOTIFY_CODE_HANDLER(TTN_GETDISPINFO, OnNotifyCode)
  END_MSG_MAP()

  LRESULT OnBoth(WORD code, WORD id, HWND control, BOOL&) { return note("both", code, id, control); }
  LRESULT OnId(WORD code, WORD id, HWND control, BOOL&) { return note("id", code, id, control); }
  LRESULT OnCode(WORD code, WORD id, HWND control, BOOL&) { return note("code", code, id, control); }
  LRESULT OnRange(WORD code, WORD id, HWND control, BOOL&) { return note("range", code, id, control); }
  LRESULT OnNotify(int id, LPNMHDR header, BOOL&) { return note("notify", 0, static_cast<WORD>(id), header->hwndFrom); }
  LRESULT OnNotifyCode(int id, LPNMHDR header, BOOL&) {
    return note("notify code", 0, static_cast<WORD>(id), header->hwndFrom);
  }

  LRESULT note(const char* handler, WORD code, WORD id, HWND control) {
    handled = handler;
    handled += " " + std::to_string(code) + " " + std::to_string(id) + " " +
               std::to_string(reinterpret_cast<INT_PTR>(control));
    return 5;
  }
  std::string send(UINT message, WPARAM wParam, LPARAM lParam) {
    handled = "nobody";
    LRESULT result = SendMessage(message, wParam, lParam);
    EXPECT_EQ(result == 5, handled != "nobody");
    return handled;
  }
  std::string handled;
};

TEST(MessageMap, RoutesCommandsByIdentifierAndCode) {
  Commands window;
  window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
  EXPECT_EQ(window.send(WM_COMMAND, MAKEWPARAM(1, BN_CLICKED), 9), "both 0 1 9");
  EXPECT_EQ(window.send(WM_COMMAND, MAKEWPARAM(1, BN_SETFOCUS), 9), "nobody");
  EXPECT_EQ(window.send(WM_COMMAND, MAKEWPARAM(2, 77), 9), "id 77 2 9");
  EXPECT_EQ(window.send(WM_COMMAND, MAKEWPARAM(5, EN_CHANGE), 9), "code 768 5 9");
  EXPECT_EQ(window.send(WM_COMMAND, MAKEWPARAM(9, 0), 0), "nobody");
  EXPECT_EQ(window.send(WM_COMMAND, MAKEWPARAM(10, 0), 0), "range 0 10 0");
  EXPECT_EQ(window.send(WM_COMMAND, MAKEWPARAM(12, 1), 0), "range 1 12 0");
  EXPECT_EQ(window.send(WM_COMMAND, MAKEWPARAM(13, 0), 0), "nobody");
  window.DestroyWindow();
}

TEST(MessageMap, RoutesNotificationsByIdentifierAndCode) {
  Commands window;
  window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
  auto notify = [&](UINT_PTR id, UINT code) {
    NMHDR header = {reinterpret_cast<HWND>(9), id, code};
    return window.send(WM_NOTIFY, id, reinterpret_cast<LPARAM>(&header));
  };
  EXPECT_EQ(notify(3, NM_CLICK), "notify 0 3 9");
  EXPECT_EQ(notify(4, NM_CLICK), "nobody");
  EXPECT_EQ(notify(3, NM_DBLCLK), "nobody");
  EXPECT_EQ(notify(8, TTN_GETDISPINFO), "notify code 0 8 9");
  window.DestroyWindow();
}

// A button that gets its own clicks back from its parent.
class ReflectedButton : public CWindowImpl<ReflectedButton> {
 public:
  DECLARE_WND_SUPERCLASS("TestReflectedButton", "BUTTON")

  BEGIN_MSG_MAP(ReflectedButton)
    REFLECTED_COMMAND_CODE_HANDLER(BN_CLICKED, OnClick)
    note_reflected(uMsg, lParam);
    DEFAULT_REFLECTION_HANDLER()
  END_MSG_MAP()

  LRESULT OnClick(WORD, WORD id, HWND control, BOOL&) {
    EXPECT_EQ(control, m_hWnd);
    clicked.push_back(id);
    return 0;
  }

  std::vector<int> clicked;
  Messages reflected;

 private:
  // All but those of its painting, which come when they like.
  void note_reflected(UINT message, LPARAM parameter) {
    if (message < OCM__BASE) return;
    if (message == OCM_NOTIFY && reinterpret_cast<const NMHDR*>(parameter)->code == NM_CUSTOMDRAW) return;
    reflected.push_back(message - OCM__BASE);
  }
};

class ReflectingParent : public CWindowImpl<ReflectingParent, CWindow, CFrameWinTraits> {
 public:
  BEGIN_MSG_MAP(ReflectingParent)
    REFLECT_NOTIFICATIONS()
    if (uMsg == WM_COMMAND) unhandled_commands.push_back(LOWORD(wParam));
  END_MSG_MAP()
  std::vector<int> unhandled_commands;
};

TEST(Reflection, GivesAControlItsOwnNotifications) {
  ReflectingParent parent;
  parent.Create(nullptr);
  ReflectedButton button;
  RECT place = {0, 0, 50, 20};
  ASSERT_TRUE(button.Create(parent, place, "button", WS_CHILD, 0, 42U));
  button.SendMessage(BM_CLICK);
  EXPECT_EQ(button.clicked, std::vector<int>{42});
  EXPECT_TRUE(parent.unhandled_commands.empty());
  parent.DestroyWindow();
}

TEST(Reflection, GivesTheSystemsAnswerWhereTheControlHasNone) {
  ReflectingParent parent;
  parent.Create(nullptr);
  ReflectedButton button;
  button.Create(parent, nullptr, "button", WS_CHILD, 0, 42U);
  HDC dc = button.GetDC();
  EXPECT_EQ(
      parent.SendMessage(WM_CTLCOLORBTN, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(button.m_hWnd)),
      DefWindowProc(parent, WM_CTLCOLORBTN, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(button.m_hWnd)));
  EXPECT_TRUE(contains(button.reflected, WM_CTLCOLORBTN));
  button.ReleaseDC(dc);
  parent.DestroyWindow();
}

TEST(Reflection, FindsTheControlOfEachKindOfMessage) {
  ReflectingParent parent;
  parent.Create(nullptr);
  ReflectedButton button;
  button.Create(parent, nullptr, "button", WS_CHILD, 0, 42U);
  auto handle = reinterpret_cast<LPARAM>(button.m_hWnd);
  DRAWITEMSTRUCT draw = {};
  draw.hwndItem = button;
  MEASUREITEMSTRUCT measure = {};
  measure.CtlID = 42;
  COMPAREITEMSTRUCT compare = {};
  compare.hwndItem = button;
  DELETEITEMSTRUCT deleted = {};
  deleted.hwndItem = button;
  NMHDR header = {button, 42, NM_CLICK};
  struct Case {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
  };
  for (auto [message, wParam, lParam] : std::vector<Case>{{WM_COMMAND, MAKEWPARAM(42, BN_SETFOCUS), handle},
                                                          {WM_NOTIFY, 42, reinterpret_cast<LPARAM>(&header)},
                                                          {WM_PARENTNOTIFY, MAKEWPARAM(WM_CREATE, 42), handle},
                                                          {WM_PARENTNOTIFY, MAKEWPARAM(WM_LBUTTONDOWN, 42), 0},
                                                          {WM_DRAWITEM, 42, reinterpret_cast<LPARAM>(&draw)},
                                                          {WM_MEASUREITEM, 42, reinterpret_cast<LPARAM>(&measure)},
                                                          {WM_COMPAREITEM, 42, reinterpret_cast<LPARAM>(&compare)},
                                                          {WM_DELETEITEM, 42, reinterpret_cast<LPARAM>(&deleted)},
                                                          {WM_VKEYTOITEM, 0, handle},
                                                          {WM_CHARTOITEM, 0, handle},
                                                          {WM_HSCROLL, 0, handle},
                                                          {WM_VSCROLL, 0, handle}}) {
    button.reflected.clear();
    parent.SendMessage(message, wParam, lParam);
    EXPECT_EQ(button.reflected, Messages{message}) << message;
  }
  parent.DestroyWindow();
}

TEST(Reflection, LeavesMessagesOfMenusAndAcceleratorsToTheParent) {
  ReflectingParent parent;
  parent.Create(nullptr);
  parent.SendMessage(WM_COMMAND, MAKEWPARAM(7, 0), 0);
  EXPECT_EQ(parent.unhandled_commands, std::vector<int>{7});
  ReflectedButton button;
  button.Create(parent, nullptr, "button", WS_CHILD, 0, 42U);
  button.reflected.clear();
  DRAWITEMSTRUCT drawn = {};
  drawn.hwndItem = button;  // a menu's handle stands there; this one shows whether it is taken for a window
  EXPECT_EQ(parent.SendMessage(WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&drawn)), 0);
  MEASUREITEMSTRUCT measured = {};
  measured.CtlID = 42;
  EXPECT_EQ(parent.SendMessage(WM_MEASUREITEM, 0, reinterpret_cast<LPARAM>(&measured)), 0);
  EXPECT_TRUE(button.reflected.empty());
  parent.DestroyWindow();
}

TEST(Reflection, TreatsWhatCanComeBackAndNothingElseByDefault) {
  for (UINT message :
       Messages{WM_COMMAND, WM_NOTIFY, WM_PARENTNOTIFY, WM_DRAWITEM, WM_MEASUREITEM, WM_COMPAREITEM, WM_DELETEITEM,
                WM_VKEYTOITEM, WM_CHARTOITEM, WM_HSCROLL, WM_VSCROLL, WM_CTLCOLORBTN, WM_CTLCOLORDLG, WM_CTLCOLOREDIT,
                WM_CTLCOLORLISTBOX, WM_CTLCOLORMSGBOX, WM_CTLCOLORSTATIC, WM_CTLCOLORSCROLLBAR}) {
    LRESULT result = 77;
    EXPECT_TRUE(ReflectedButton::DefaultReflectionHandler(nullptr, OCM__BASE + message, 0, 0, result)) << message;
    EXPECT_EQ(result, 0) << message;
    EXPECT_FALSE(ReflectedButton::DefaultReflectionHandler(nullptr, message, 0, 0, result)) << message;
  }
}

// An edit control that was there before.
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

std::string text_of(HWND window) {
  char text[100];
  GetWindowTextA(window, text, sizeof text);
  return text;
}

TEST(Subclassing, SeesTheMessagesFirstAndPassesTheRestOn) {
  HWND window = make_edit();
  TakenEdit edit;
  ASSERT_TRUE(edit.SubclassWindow(window));
  EXPECT_EQ(edit.m_hWnd, window);
  for (char c : {'a', '#', 'b'}) SendMessage(window, WM_CHAR, static_cast<WPARAM>(c), 0);
  EXPECT_EQ(text_of(window), "ab");

  EXPECT_EQ(edit.UnsubclassWindow(), window);
  EXPECT_FALSE(edit.m_hWnd);
  edit.seen.clear();
  SendMessage(window, WM_CHAR, '#', 0);
  EXPECT_EQ(text_of(window), "ab#");
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
  // The object is free for another one.
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

TEST(Subclassing, RefusesWhatIsNoWindow) {
  TakenEdit edit;
  EXPECT_FALSE(edit.SubclassWindow(nullptr));
  HWND gone = make_edit();
  DestroyWindow(gone);
  EXPECT_FALSE(edit.SubclassWindow(gone));
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
  EXPECT_EQ(text_of(window), "x");
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
  EXPECT_EQ(text_of(edit), "x");
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

// A wrapper of a system class, as WTL has them: a window class over it becomes a superclass by itself.
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
  EXPECT_EQ(text_of(edit), "x");
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

// Destroys itself in its own handler, nested as deeply as it is told, and deletes itself at the end.
class SelfDestroying : public CWindowImpl<SelfDestroying, CWindow, CFrameWinTraits> {
 public:
  explicit SelfDestroying(std::vector<std::string>& events) : events_(events) {}
  ~SelfDestroying() override { events_.push_back("deleted"); }

  BEGIN_MSG_MAP(SelfDestroying)
    MESSAGE_HANDLER(WM_USER, OnUser)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
  END_MSG_MAP()

  LRESULT OnUser(UINT, WPARAM depth, LPARAM, BOOL&) {
    HWND window = m_hWnd;
    if (depth) {
      SendMessage(WM_USER, depth - 1);
    } else {
      ::DestroyWindow(m_hWnd);
    }
    events_.push_back("after " + std::to_string(depth));
    EXPECT_EQ(m_hWnd, window);  // still ours: the object learns of the end at the very end
    return 40 + static_cast<LRESULT>(depth);
  }
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&) {
    events_.push_back("destroyed");
    return 0;
  }
  void OnFinalMessage(HWND) override {
    events_.push_back("final");
    EXPECT_FALSE(m_hWnd);
    delete this;
  }

 private:
  std::vector<std::string>& events_;
};

TEST(WindowImpl, DestroyedInItsOwnHandlerLearnsOfItWhenTheLastFrameIsLeft) {
  std::vector<std::string> events;
  auto* window = new SelfDestroying(events);
  HWND handle = window->Create(nullptr);
  EXPECT_EQ(SendMessage(handle, WM_USER, 2, 0), 42);
  EXPECT_EQ(events, (std::vector<std::string>{"destroyed", "after 0", "after 1", "after 2", "final", "deleted"}));
  EXPECT_FALSE(IsWindow(handle));
}

TEST(WindowImpl, MayDeleteItselfInItsOwnDestroyWindow) {
  std::vector<std::string> events;
  auto* window = new SelfDestroying(events);
  HWND handle = window->Create(nullptr);
  // What the object leaves in its memory is there to be seen in the next one of its size.
  EXPECT_TRUE(window->DestroyWindow());
  EXPECT_EQ(events, (std::vector<std::string>{"destroyed", "final", "deleted"}));
  EXPECT_FALSE(IsWindow(handle));
}

TEST(WindowImpl, DestroyedByItsOwnMethodInAHandlerIsToldWhichWindowItWas) {
  Recorder window;
  HWND during = nullptr;
  window.on_create = [&] {
    during = window.m_hWnd;
    EXPECT_TRUE(window.DestroyWindow());
  };
  EXPECT_FALSE(window.Create(nullptr));
  EXPECT_TRUE(during);
  EXPECT_EQ(window.final_messages, std::vector<HWND>{during});
  EXPECT_FALSE(window.m_hWnd);
}

TEST(WindowImpl, ThatOnlyNamesAWindowLosesItWhenItDestroysIt) {
  Recorder window;
  window.Attach(CreateWindow("STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr));
  EXPECT_TRUE(window.DestroyWindow());
  EXPECT_FALSE(window.m_hWnd);
  EXPECT_TRUE(window.final_messages.empty());
}

TEST(WindowImpl, AHandlerThatThrowsLeavesNoMessageTheCurrentOne) {
  class Throwing : public CWindowImpl<Throwing, CWindow, CFrameWinTraits> {
   public:
    BEGIN_MSG_MAP(Throwing)
      MESSAGE_HANDLER(WM_USER, OnUser)
    END_MSG_MAP()
    LRESULT OnUser(UINT, WPARAM, LPARAM, BOOL&) {
      EXPECT_EQ(m_pCurrentMsg->message, UINT{WM_USER});
      throw 5;
    }
    void OnFinalMessage(HWND) override { ++final_messages; }
    bool is_working() const { return m_pCurrentMsg != nullptr; }
    int final_messages = 0;
  } window;
  HWND handle = window.Create(nullptr);
  auto procedure = reinterpret_cast<WNDPROC>(window.GetWindowLongPtr(GWLP_WNDPROC));
  // Not by SendMessage: no exception finds its way through the system.
  EXPECT_THROW(procedure(handle, WM_USER, 0, 0), int);
  EXPECT_FALSE(window.is_working());
  window.DestroyWindow();
  EXPECT_EQ(window.final_messages, 1);
}

TEST(WindowImpl, IsToldOfItsEndThoughItHandledTheLastMessageItself) {
  class Last : public CWindowImpl<Last, CWindow, CFrameWinTraits> {
   public:
    BEGIN_MSG_MAP(Last)
      MESSAGE_HANDLER(WM_NCDESTROY, OnLast)
    END_MSG_MAP()
    LRESULT OnLast(UINT, WPARAM, LPARAM, BOOL&) { return 0; }
    void OnFinalMessage(HWND) override { ++final_messages; }
    int final_messages = 0;
  } window;
  window.Create(nullptr);
  window.DestroyWindow();
  EXPECT_EQ(window.final_messages, 1);
}

TEST(WindowImpl, AWindowOfItsClassThatNobodyAnnouncedIsNotMade) {
  Recorder window;
  HWND stranger = nullptr;
  window.on_create = [&] {
    window.on_create = nullptr;
    stranger = CreateWindow(MAKEINTATOM(Recorder::GetWndClassInfo().m_atom), "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                            GetModuleHandle(nullptr), nullptr);
  };
  HWND created = window.Create(nullptr);
  EXPECT_FALSE(stranger);
  EXPECT_EQ(window.m_hWnd, created);
  window.DestroyWindow();
}

TEST(WindowImpl, DestroyedFromOutsideIsToldOnce) {
  Recorder window;
  HWND handle = window.Create(nullptr);
  DestroyWindow(handle);
  EXPECT_EQ(window.final_messages, std::vector<HWND>{handle});
}

TEST(WindowImpl, ItsProcedureOutlivesTheWindowUntilTheObjectGoes) {
  WNDPROC procedure;
  Recorder window;
  window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
  procedure = reinterpret_cast<WNDPROC>(window.GetWindowLongPtr(GWLP_WNDPROC));
  window.DestroyWindow();
  window.seen.clear();
  // Somebody kept the procedure, as a subclasser does: it still leads to the object.
  CallWindowProc(procedure, nullptr, WM_NULL, 0, 0);
  EXPECT_EQ(window.seen, Messages{WM_NULL});
}

// Memory that code can be run in, beside that of modules.
size_t code_made_at_run_time() {
  size_t bytes = 0;
  MEMORY_BASIC_INFORMATION region;
  for (char* at = nullptr; VirtualQuery(at, &region, sizeof region); at += region.RegionSize)
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE && (region.Protect & 0xF0)) bytes += region.RegionSize;
  return bytes;
}

TEST(WindowImpl, ItsProcedureIsGivenBackWithTheObject) {
  size_t before = code_made_at_run_time();
  for (int i = 0; i < 20000; ++i) {
    CWndProcThunk thunk;
    ASSERT_TRUE(thunk.Init(nullptr, nullptr));
  }
  EXPECT_LT(code_made_at_run_time() - before, 65536U);
}

class Plain : public CDialogImpl<Plain> {
 public:
  enum { IDD = IDD_PLAIN };

  BEGIN_MSG_MAP(Plain)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    MESSAGE_HANDLER(WM_CTLCOLOREDIT, OnColor)
    MESSAGE_HANDLER(WM_VKEYTOITEM, OnKey)
    MESSAGE_HANDLER(WM_USER, OnUser)
    COMMAND_HANDLER(IDC_PUSH, BN_CLICKED, OnPush)
    COMMAND_ID_HANDLER(IDCANCEL, OnPush)
  END_MSG_MAP()

  LRESULT OnInitDialog(UINT, WPARAM first_control, LPARAM parameter, BOOL&) {
    init_parameter = parameter;
    EXPECT_EQ(reinterpret_cast<HWND>(first_control), GetDlgItem(IDC_PUSH).m_hWnd);
    ::SetFocus(GetDlgItem(IDC_EDIT));
    if (end_at_once) EndDialog(55);
    return FALSE;  // the focus is where it belongs
  }
  LRESULT OnColor(UINT, WPARAM, LPARAM, BOOL&) { return reinterpret_cast<LRESULT>(GetStockObject(BLACK_BRUSH)); }
  LRESULT OnKey(UINT, WPARAM, LPARAM, BOOL&) { return -2; }
  LRESULT OnUser(UINT, WPARAM, LPARAM, BOOL&) { return 1234567890123; }
  LRESULT OnPush(WORD, WORD id, HWND, BOOL&) {
    EndDialog(id);
    return 0;
  }
  void OnFinalMessage(HWND) override { ++final_messages; }

  LPARAM init_parameter = 0;
  bool end_at_once = false;
  int final_messages = 0;
};

TEST(Dialog, RunsModallyUntilItIsEnded) {
  Plain dialog;
  dialog.end_at_once = true;
  EXPECT_EQ(dialog.DoModal(nullptr, 77), 55);
  EXPECT_EQ(dialog.init_parameter, 77);
  EXPECT_EQ(dialog.final_messages, 1);
  EXPECT_FALSE(dialog.m_hWnd);
  EXPECT_EQ(dialog.DoModal(nullptr), 55);
}

TEST(Dialog, AnswersMessagesAsDialogsMust) {
  Plain dialog;
  ASSERT_TRUE(dialog.Create(nullptr, 5));
  EXPECT_EQ(dialog.init_parameter, 5);
  // These answers are the procedure's own result, the others go through the dialog's message result.
  EXPECT_EQ(dialog.SendMessage(WM_CTLCOLOREDIT), reinterpret_cast<LRESULT>(GetStockObject(BLACK_BRUSH)));
  EXPECT_EQ(dialog.SendMessage(WM_VKEYTOITEM), -2);
  EXPECT_EQ(dialog.SendMessage(WM_USER), 1234567890123);
  EXPECT_EQ(dialog.SendMessage(WM_INITDIALOG, reinterpret_cast<WPARAM>(dialog.GetDlgItem(IDC_PUSH).m_hWnd)), FALSE);
  // What is not handled is the dialog manager's.
  EXPECT_TRUE(dialog.SetWindowText("new"));
  EXPECT_EQ(text_of(dialog), "new");
  EXPECT_TRUE(dialog.DestroyWindow());
  EXPECT_EQ(dialog.final_messages, 1);
}

TEST(Dialog, EndsAtAClickOnItsButton) {
  Plain dialog;
  struct Clicker : CWindowImpl<Clicker> {
    BEGIN_MSG_MAP(Clicker)
      MESSAGE_HANDLER(WM_TIMER, OnTimer)
    END_MSG_MAP()
    LRESULT OnTimer(UINT, WPARAM, LPARAM, BOOL&) {
      if (dialog->m_hWnd) dialog->GetDlgItem(IDC_PUSH).PostMessage(BM_CLICK);
      return 0;
    }
    Plain* dialog;
  } clicker;
  clicker.dialog = &dialog;
  clicker.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
  clicker.SetTimer(1, 10);
  EXPECT_EQ(dialog.DoModal(nullptr), IDC_PUSH);
  clicker.DestroyWindow();
}

TEST(Dialog, WithoutItsResourceIsNotMadeAndLeavesNothingForTheNextOne) {
  class Missing : public CDialogImpl<Missing> {
   public:
    enum { IDD = IDD_MISSING };
    BEGIN_MSG_MAP(Missing)
    END_MSG_MAP()
  } missing;
  EXPECT_EQ(missing.DoModal(nullptr), -1);
  EXPECT_FALSE(missing.Create(nullptr));
  EXPECT_FALSE(missing.m_hWnd);
  Plain dialog;
  HWND created = dialog.Create(nullptr);
  EXPECT_EQ(dialog.m_hWnd, created);
  EXPECT_FALSE(missing.m_hWnd);
  dialog.DestroyWindow();
}

RECT place_of(HWND window) {
  RECT rect;
  GetWindowRect(window, &rect);
  return rect;
}

HWND make_popup(int x, int y, int width, int height, HWND owner = nullptr, DWORD style = WS_VISIBLE) {
  return CreateWindow("STATIC", "", WS_POPUP | style, x, y, width, height, owner, nullptr, nullptr, nullptr);
}

void expect_centered_at(HWND window, int x, int y, HWND over = nullptr) {
  RECT before = place_of(window);
  EXPECT_TRUE(CWindow(window).CenterWindow(over));
  RECT after = place_of(window);
  EXPECT_EQ(after.left, x);
  EXPECT_EQ(after.top, y);
  EXPECT_EQ(after.right - after.left, before.right - before.left);
  EXPECT_EQ(after.bottom - after.top, before.bottom - before.top);
}

TEST(CenterWindow, PutsAWindowOverItsOwnerWithinTheWorkArea) {
  RECT area;
  SystemParametersInfo(SPI_GETWORKAREA, 0, &area, 0);
  HWND owner = make_popup(200, 100, 400, 301);
  HWND owned = make_popup(0, 0, 101, 100, owner, 0);
  expect_centered_at(owned, 400 - 50, 250 - 50);

  // At the edge the work area holds it.
  SetWindowPos(owner, nullptr, area.right - 20, area.bottom - 20, 40, 40, SWP_NOZORDER);
  expect_centered_at(owned, area.right - 101, area.bottom - 100);
  SetWindowPos(owner, nullptr, area.left - 20, area.top - 20, 40, 40, SWP_NOZORDER);
  expect_centered_at(owned, area.left, area.top);
  DestroyWindow(owner);
}

TEST(CenterWindow, UsesTheWorkAreaWhereNoOwnerIsSeen) {
  RECT area;
  SystemParametersInfo(SPI_GETWORKAREA, 0, &area, 0);
  int x = (area.left + area.right) / 2 - 50, y = (area.top + area.bottom) / 2 - 25;
  HWND alone = make_popup(0, 0, 100, 50);
  expect_centered_at(alone, x, y);
  HWND hidden = make_popup(10, 10, 100, 100, nullptr, 0);
  expect_centered_at(alone, x, y, hidden);
  // What is seen of a minimised one is no place to be over.
  HWND minimised = CreateWindow("STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_MINIMIZE, 10, 10, 100, 100, nullptr,
                                nullptr, nullptr, nullptr);
  expect_centered_at(alone, x, y, minimised);
  DestroyWindow(alone);
  DestroyWindow(hidden);
  DestroyWindow(minimised);
}

TEST(CenterWindow, PutsAChildOverItsParentAndNeverOutsideOfIt) {
  HWND parent = make_popup(300, 200, 200, 100);
  HWND child = CreateWindow("STATIC", "", WS_CHILD, 0, 0, 50, 20, parent, nullptr, nullptr, nullptr);
  expect_centered_at(child, 300 + 75, 200 + 40);
  HWND sister = CreateWindow("STATIC", "", WS_CHILD, 100, 50, 60, 40, parent, nullptr, nullptr, nullptr);
  expect_centered_at(child, 300 + 130 - 25, 200 + 70 - 10, sister);
  MoveWindow(child, 0, 0, 400, 20, FALSE);
  expect_centered_at(child, 300, 200 + 40);  // too wide: its beginning shows
  DestroyWindow(parent);
}

TEST(CenterWindow, OfNoWindowFails) { EXPECT_FALSE(CWindow().CenterWindow()); }

TEST(Window, ModifiesStylesAndSaysWhetherThereWasAnythingToDo) {
  CWindow window(make_popup(0, 0, 10, 10));
  EXPECT_TRUE(window.ModifyStyle(0, SS_CENTER));
  EXPECT_EQ(window.GetStyle() & SS_TYPEMASK, DWORD{SS_CENTER});
  EXPECT_FALSE(window.ModifyStyle(0, SS_CENTER));
  EXPECT_TRUE(window.ModifyStyle(SS_CENTER, 0, SWP_FRAMECHANGED));
  EXPECT_FALSE(window.ModifyStyle(WS_POPUP, WS_POPUP)) << "what is removed and added is there";
  EXPECT_TRUE(window.ModifyStyleEx(0, WS_EX_CLIENTEDGE));
  EXPECT_FALSE(window.ModifyStyleEx(0, WS_EX_CLIENTEDGE));
  EXPECT_TRUE(window.DestroyWindow());
  EXPECT_FALSE(window.m_hWnd);
}

TEST(Window, ConvertsBothCornersOfARectangle) {
  CWindow window(make_popup(100, 50, 60, 40));
  RECT rect = {110, 70, 120, 80};
  EXPECT_TRUE(window.ScreenToClient(&rect));
  EXPECT_TRUE(EqualRect(&rect, std::vector<RECT>{{10, 20, 20, 30}}.data()));
  EXPECT_TRUE(window.ClientToScreen(&rect));
  EXPECT_TRUE(EqualRect(&rect, std::vector<RECT>{{110, 70, 120, 80}}.data()));
  window.DestroyWindow();
  EXPECT_FALSE(CWindow().ScreenToClient(&rect));
  EXPECT_TRUE(EqualRect(&rect, std::vector<RECT>{{110, 70, 120, 80}}.data()));
}

TEST(Window, GivesItsFontAndText) {
  CWindow window(make_popup(0, 0, 10, 10));
  auto font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
  window.SetFont(font);
  EXPECT_EQ(window.GetFont(), font);
  window.SetWindowText("text");
  EXPECT_EQ(window.GetWindowTextLength(), 4);
  window.DestroyWindow();
}

TEST(Window, SetsItsFontWithOrWithoutPaintingAnew) {
  class Fonted : public CWindowImpl<Fonted> {
   public:
    BEGIN_MSG_MAP(Fonted)
      if (uMsg == WM_SETFONT) redraws.push_back(LOWORD(lParam));
    END_MSG_MAP()
    std::vector<int> redraws;
  } window;
  window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
  window.SetFont(nullptr);
  window.SetFont(nullptr, FALSE);
  EXPECT_EQ(window.redraws, (std::vector<int>{TRUE, FALSE}));
  window.DestroyWindow();
}

TEST(Window, MovesToARectangle) {
  CWindow window(make_popup(0, 0, 10, 10));
  RECT target = {30, 40, 130, 90};
  EXPECT_TRUE(window.MoveWindow(&target));
  RECT place = place_of(window);
  EXPECT_TRUE(EqualRect(&place, &target));
  window.DestroyWindow();
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

TEST(Dialog, RoundsOfDialogsLeaveNothingBehind) {
  expect_flat(100, [] {
    Plain dialog;
    dialog.Create(nullptr);
    dialog.DestroyWindow();
    ASSERT_EQ(dialog.final_messages, 1);
  });
}

TEST(AxWindow, WithoutAControlHostsNothing) {
  CAxWindow window;
  ASSERT_TRUE(window.Create(HWND_MESSAGE, nullptr, "", WS_POPUP));
  char name[20];
  GetClassName(window, name, sizeof name);
  EXPECT_STREQ(name, "AtlAxWin140");
  CComPtr<IUnknown> control;
  EXPECT_EQ(window.QueryControl(&control), E_FAIL);
  EXPECT_FALSE(control);
  EXPECT_EQ(AtlAxGetControl(window, nullptr), E_POINTER);
  window.DestroyWindow();
}

TEST(AxWindow, OfAControlThatThereIsNotIsNotMade) {
  OleInitialize(nullptr);
  CAxWindow window;
  EXPECT_FALSE(window.Create(HWND_MESSAGE, nullptr, "{00000000-1111-2222-3333-444444444444}", WS_POPUP));
  OleUninitialize();
}

// An object that is no OLE object: the host keeps it and shows nothing.
class PlainObjectInAxWindow : public testing::Test {
 protected:
  PlainObjectInAxWindow() {
    class_.prepare = [](TestControl* made) { made->is_ole_object = false; };
  }
  ~PlainObjectInAxWindow() override { EXPECT_EQ(RecordingDispatch::alive, 0); }

  HWND create(const char* name = "{9F4F3A70-6B1D-4C5E-8A11-520E773C0102}") {
    return window_.Create(HWND_MESSAGE, nullptr, name, WS_POPUP);
  }

  TestControlClass class_;
  CAxWindow window_;
};

TEST_F(PlainObjectInAxWindow, IsKeptUntilTheWindowGoes) {
  ASSERT_TRUE(create());
  EXPECT_EQ(class_.made->references(), 1u);
  EXPECT_EQ(class_.made->window, nullptr);
  window_.DestroyWindow();
  EXPECT_EQ(RecordingDispatch::alive, 0);
}

TEST_F(PlainObjectInAxWindow, IsGivenWithAReferenceToWhoeverAsks) {
  ASSERT_TRUE(create());
  {
    CComPtr<IUnknown> object;
    EXPECT_EQ(window_.QueryControl(&object), S_OK);
    EXPECT_EQ(object.p, static_cast<IOleObject*>(class_.made));
    EXPECT_EQ(class_.made->references(), 2u);
    window_.DestroyWindow();
    EXPECT_EQ(class_.made->references(), 1u);
  }
  EXPECT_EQ(RecordingDispatch::alive, 0);
}

TEST_F(PlainObjectInAxWindow, IsNamedByItsClass) {
  EXPECT_FALSE(create("{9F4F3A70-6B1D-4C5E-8A11-520E773C0102"));
  EXPECT_FALSE(create("no class"));
  EXPECT_EQ(class_.made, nullptr);
}

TEST_F(PlainObjectInAxWindow, LeavesNothingBehind) {
  expect_flat(100, [&] {
    ASSERT_TRUE(create());
    window_.DestroyWindow();
  });
}

}  // namespace
