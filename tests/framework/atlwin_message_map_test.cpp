// Message maps: handlers, chains and reflection.
#include <gtest/gtest.h>

#include <framework/recorder.h>

#include <string>
#include <vector>

namespace {

TEST(MessageMap, GoesOnToTheNextHandlerWhereOneDeclines) {
  Recorder window;
  window.Create(nullptr);
  EXPECT_EQ(window.SendMessage(WM_USER, 1), 11);
  EXPECT_EQ(window.SendMessage(WM_USER, 2), 22);
  // Both decline: the result is the system's.
  EXPECT_EQ(window.SendMessage(WM_USER, 3), 0);
  EXPECT_EQ(window.SendMessage(WM_USER + 9), 0);
  EXPECT_EQ(window.SendMessage(WM_USER + 10), 10);
  EXPECT_EQ(window.SendMessage(WM_USER + 12), 12);
  EXPECT_EQ(window.SendMessage(WM_USER + 13), 0);
  window.DestroyWindow();
}

// A map without a window, like those of base classes.
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

// A button to which the parent reflects its notifications.
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
  // Without the messages of painting, which may arrive at any time.
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
  drawn.hwndItem = button;  // for a menu this is its handle; a window here shows whether it is used
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

}  // namespace
