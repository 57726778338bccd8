// The button menu in a dialog that reflects its notifications: clicks with the mouse, choices with the keyboard.
#include <gtest/gtest.h>

#include <kexlib/controls/button_menu.h>

#include <controls/resources.h>
#include <support/expect_flat.h>
#include <support/import_override.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/user_input.h>
#include <support/window_text.h>

#include <functional>
#include <string>
#include <vector>

namespace {

constexpr UINT missing = 999;

// Reflects notifications, and records the button's notification codes and the commands of menus.
class MenuDialog : public CDialogImpl<MenuDialog> {
 public:
  enum { IDD = IDD_BUTTONS };
  BEGIN_MSG_MAP(MenuDialog)
    MESSAGE_HANDLER(WM_COMMAND, OnCommand)
    REFLECT_NOTIFICATIONS()
  END_MSG_MAP()
  LRESULT OnCommand(UINT, WPARAM wParam, LPARAM lParam, BOOL& handled) {
    if (LOWORD(wParam) == IDC_MORE)
      told.push_back(HIWORD(wParam));
    else
      commands.push_back(static_cast<int>(wParam)), senders.push_back(lParam);
    handled = FALSE;
    return 0;
  }
  std::vector<int> told, commands;
  std::vector<LPARAM> senders;
};

class ButtonMenu : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dialog_.Create(nullptr));
    more_ = dialog_.GetDlgItem(IDC_MORE);
  }
  void TearDown() override {
    if (dialog_.IsWindow()) dialog_.DestroyWindow();
  }
  LRESULT click_now() {
    BOOL handled = TRUE;
    return button_.OnClick(BN_CLICKED, IDC_MORE, more_, handled);
  }

  MenuDialog dialog_;
  HWND more_ = nullptr;
  atlButtonMenu button_;
};

TEST_F(ButtonMenu, BecomesAnArrow) {
  ASSERT_TRUE(GetWindowLongA(more_, GWL_STYLE) & BS_ICON);
  ASSERT_TRUE(button_.SubclassWindow(more_));
  EXPECT_EQ(button_.m_hWnd, more_);
  EXPECT_FALSE(GetWindowLongA(more_, GWL_STYLE) & BS_ICON);
  EXPECT_EQ(window_text(more_), "6");
  LOGFONT font{};
  ASSERT_TRUE(CFontHandle(button_.GetFont()).GetLogFont(font));
  EXPECT_STREQ(font.lfFaceName, "Marlett");
  EXPECT_EQ(font.lfCharSet, DEFAULT_CHARSET);
  const CClientDC screen(nullptr);
  EXPECT_EQ(font.lfHeight, -MulDiv(screen.GetDeviceCaps(LOGPIXELSY), 100, 720));
  EXPECT_EQ(font.lfWeight, 0);
  pump_waiting();
  EXPECT_TRUE(Picture(dialog_).save("button_menu", 2));
}

TEST_F(ButtonMenu, LeavesWhatIsNoWindowAlone) {
  EXPECT_FALSE(button_.SubclassWindow(nullptr));
  EXPECT_EQ(button_.m_hWnd, nullptr);
  ASSERT_TRUE(button_.SubclassWindow(more_));
  EXPECT_FALSE(button_.SubclassWindow(nullptr));
  EXPECT_EQ(button_.m_hWnd, more_) << "the previous button is kept";
}

// The desktop window belongs to another process, so subclassing it fails.
TEST_F(ButtonMenu, KeepsItsButtonWhereTheSystemRefusesAnother) {
  ASSERT_TRUE(button_.SubclassWindow(more_));
  EXPECT_FALSE(button_.SubclassWindow(GetDesktopWindow()));
  EXPECT_EQ(button_.m_hWnd, more_);
  EXPECT_NE(window_text(GetDesktopWindow()), "6");
  button_.SetMenu(GetModuleHandle(nullptr), IDR_NO_SUBMENU);
  SendMessageA(more_, BM_CLICK, 0, 0);
  EXPECT_EQ(button_.GetCheck(), BST_CHECKED) << "a click still comes here";
}

TEST_F(ButtonMenu, KeepsItsButtonWhereSomebodyElseHasSubclassedIt) {
  ASSERT_TRUE(button_.SubclassWindow(more_));
  atlButtonMenu somebody_else;
  ASSERT_TRUE(somebody_else.SubclassWindow(more_));
  EXPECT_FALSE(button_.SubclassWindow(dialog_.GetDlgItem(IDC_LATER)));
  EXPECT_EQ(button_.m_hWnd, more_);
  EXPECT_NE(window_text(dialog_.GetDlgItem(IDC_LATER)), "6");
  EXPECT_TRUE(somebody_else.UnsubclassWindow());
}

TEST_F(ButtonMenu, LetsGoOfOneButtonForAnother) {
  button_.SetMenu(GetModuleHandle(nullptr), IDR_NO_SUBMENU);
  ASSERT_TRUE(button_.SubclassWindow(more_));
  ASSERT_TRUE(button_.SubclassWindow(more_)) << "the same again";
  ASSERT_TRUE(button_.SubclassWindow(dialog_.GetDlgItem(IDC_LATER)));
  EXPECT_EQ(window_text(dialog_.GetDlgItem(IDC_LATER)), "6");
  SendMessageA(more_, BM_CLICK, 0, 0);
  EXPECT_EQ(SendMessageA(more_, BM_GETCHECK, 0, 0), BST_UNCHECKED) << "it is a button as any other now";
}

// Counts the fonts that the library creates, and can make the creation fail.
int fonts_made = 0;
bool fonts_refused = false;
HFONT WINAPI make_font(const LOGFONTA* description) {
  ++fonts_made;
  return fonts_refused ? nullptr : CreateFontIndirectA(description);
}

class ArrowFont : public ButtonMenu {
 protected:
  ArrowFont() { fonts_made = 0, fonts_refused = false; }
  ImportOverride override_{"kexlib.dll", "gdi32.dll", "CreateFontIndirectA", make_font};
};

TEST_F(ArrowFont, IsMadeOnce) {
  ASSERT_TRUE(override_.made());
  ASSERT_TRUE(button_.SubclassWindow(more_));
  const HFONT font = button_.GetFont();
  ASSERT_TRUE(button_.SubclassWindow(more_));
  dialog_.DestroyWindow();
  ASSERT_TRUE(dialog_.Create(nullptr));
  ASSERT_TRUE(button_.SubclassWindow(dialog_.GetDlgItem(IDC_MORE)));
  EXPECT_EQ(button_.GetFont(), font);
  EXPECT_EQ(fonts_made, 1);
}

int WINAPI fine_screen(HDC dc, int what) { return what == LOGPIXELSY ? 7200 : GetDeviceCaps(dc, what); }

// On a usual screen similar sizes have the same number of pixels.
TEST_F(ArrowFont, IsOfTenPoints) {
  const ImportOverride fine("kexlib.dll", "gdi32.dll", "GetDeviceCaps", fine_screen);
  ASSERT_TRUE(fine.made());
  ASSERT_TRUE(button_.SubclassWindow(more_));
  LOGFONT font{};
  ASSERT_TRUE(CFontHandle(button_.GetFont()).GetLogFont(font));
  EXPECT_EQ(font.lfHeight, -1000);
}

TEST_F(ArrowFont, GoesWithTheObject) {
  HFONT font;
  {
    atlButtonMenu button;
    ASSERT_TRUE(button.SubclassWindow(more_));
    font = button.GetFont();
    dialog_.DestroyWindow();
    EXPECT_EQ(GetObjectType(font), DWORD{OBJ_FONT});
  }
  EXPECT_EQ(GetObjectType(font), 0u);
}

// Kept for compatibility: a copy shares the font. The first of the two that is destroyed deletes it.
TEST_F(ArrowFont, IsSharedByCopies) {
  ASSERT_TRUE(button_.SubclassWindow(more_));
  const HFONT font = button_.GetFont();
  {
    atlButtonMenu copy(button_);
    EXPECT_EQ(copy.m_hWnd, more_) << "the window, but not its messages";
    const HWND later = dialog_.GetDlgItem(IDC_LATER);
    ASSERT_TRUE(copy.SubclassWindow(later));
    EXPECT_EQ(copy.GetFont(), font);
    EXPECT_TRUE(copy.UnsubclassWindow());
    EXPECT_EQ(GetObjectType(font), DWORD{OBJ_FONT});
  }
  EXPECT_EQ(GetObjectType(font), 0u);
  atlButtonMenu assigned;
  EXPECT_EQ(&(assigned = button_), &assigned);
  EXPECT_EQ(assigned.m_hWnd, more_);
  EXPECT_EQ(fonts_made, 1);
}

TEST_F(ArrowFont, OfAFreshCopyIsItsOwn) {
  atlButtonMenu fresh;
  {
    const atlButtonMenu copy(fresh);
    fresh = copy;
  }
  ASSERT_TRUE(fresh.SubclassWindow(more_));
  EXPECT_EQ(fonts_made, 1);
  EXPECT_TRUE(fresh.UnsubclassWindow());
}

TEST_F(ButtonMenu, KeepsItsWindowWhenItIsAssignedTo) {
  ASSERT_TRUE(button_.SubclassWindow(more_));
  {
    atlButtonMenu other;
    other.SetMenu(nullptr, 0);
    button_ = other;
    const atlButtonMenu& itself = button_;
    button_ = itself;
  }
  EXPECT_EQ(button_.m_hWnd, more_);
  EXPECT_EQ(SendMessageA(more_, OCM_COMMAND, MAKEWPARAM(IDC_MORE, BN_CLICKED), 0), 0);
  EXPECT_EQ(button_.GetCheck(), BST_UNCHECKED) << "the menu of the other one is none";
  EXPECT_TRUE(button_.UnsubclassWindow());
}

TEST_F(ArrowFont, IsALetterWhereThereIsNone) {
  ASSERT_TRUE(override_.made());
  fonts_refused = true;
  const auto before = SendMessageA(more_, WM_GETFONT, 0, 0);
  ASSERT_TRUE(button_.SubclassWindow(more_));
  EXPECT_EQ(window_text(more_), "v");
  EXPECT_EQ(SendMessageA(more_, WM_GETFONT, 0, 0), before);
}

TEST_F(ButtonMenu, HandlesReflectedClicksAndTheSystemsDefaults) {
  ASSERT_TRUE(button_.SubclassWindow(more_));
  const auto lParam = reinterpret_cast<LPARAM>(more_);
  LRESULT result = 17;
  EXPECT_TRUE(button_.ProcessWindowMessage(more_, OCM_COMMAND, MAKEWPARAM(IDC_MORE, BN_CLICKED), lParam, result, 0));
  EXPECT_EQ(result, 0);
  result = 17;
  EXPECT_TRUE(button_.ProcessWindowMessage(more_, OCM_COMMAND, MAKEWPARAM(IDC_MORE, BN_SETFOCUS), lParam, result, 0));
  EXPECT_EQ(result, 0) << "the default of DefWindowProc";
  EXPECT_FALSE(button_.ProcessWindowMessage(more_, WM_COMMAND, MAKEWPARAM(IDC_MORE, BN_CLICKED), lParam, result, 0));
  EXPECT_FALSE(button_.ProcessWindowMessage(more_, OCM_COMMAND, MAKEWPARAM(IDC_MORE, BN_CLICKED), lParam, result, 1));
  EXPECT_FALSE(button_.ProcessWindowMessage(more_, OCM_COMMAND, MAKEWPARAM(IDC_MORE, BN_SETFOCUS), lParam, result, 1));
}

TEST_F(ButtonMenu, WithoutAMenuDoesNothingAtAll) {
  ASSERT_TRUE(button_.SubclassWindow(more_));
  EXPECT_EQ(click_now(), 0);
  EXPECT_EQ(button_.GetCheck(), BST_UNCHECKED);
  button_.SetMenu(GetModuleHandle(nullptr), IDR_NO_SUBMENU);
  button_.SetMenu(GetModuleHandle(nullptr), 0);
  click_now();
  EXPECT_EQ(button_.GetCheck(), BST_UNCHECKED);
}

TEST(ButtonMenuAlone, DoesNothingOnAClick) {
  atlButtonMenu none;
  none.SetMenu(GetModuleHandle(nullptr), IDR_MENU);
  BOOL handled = TRUE;
  EXPECT_EQ(none.OnClick(BN_CLICKED, IDC_MORE, nullptr, handled), 0);
}

// Kept for compatibility: callers see the button stay checked if there is no menu to show.
TEST_F(ButtonMenu, StaysPressedWithoutASubmenuOrAResource) {
  for (const UINT menu : {UINT{IDR_NO_SUBMENU}, missing}) {
    ASSERT_TRUE(button_.SubclassWindow(more_));
    button_.SetMenu(GetModuleHandle(nullptr), menu);
    EXPECT_EQ(click_now(), 0);
    EXPECT_EQ(button_.GetCheck(), BST_CHECKED) << menu;
    EXPECT_EQ(click_now(), 0);
    EXPECT_EQ(button_.GetCheck(), BST_CHECKED) << menu;
    button_.SetCheck(BST_UNCHECKED);
  }
}

// ---- the position of the menu, with replaced monitors --------------------------------------------------------------

struct Opened {
  int times, x, y, items, first_item;
  UINT flags;
  HWND owner;
  LRESULT check;
} opened;
HWND button_clicked = nullptr;

BOOL WINAPI track(HMENU menu, UINT flags, int x, int y, int, HWND owner, const RECT*) {
  opened = {opened.times + 1,
            x,
            y,
            GetMenuItemCount(menu),
            static_cast<int>(GetMenuItemID(menu, 0)),
            flags,
            owner,
            SendMessageA(button_clicked, BM_GETCHECK, 0, 0)};
  return TRUE;
}

// The only monitor, with this work area; points outside of it are on no monitor.
RECT work_area{};
const auto our_monitor = reinterpret_cast<HMONITOR>(INT_PTR{77});
HMONITOR WINAPI monitor_at(POINT point, DWORD otherwise) {
  if (PtInRect(&work_area, point)) return our_monitor;
  return otherwise == MONITOR_DEFAULTTONEAREST ? our_monitor : nullptr;
}
BOOL WINAPI monitor_info(HMONITOR monitor, LPMONITORINFO info) {
  EXPECT_EQ(monitor, our_monitor);
  EXPECT_EQ(info->cbSize, 40u);
  info->rcWork = work_area;
  return TRUE;
}

class ButtonMenuPlace : public ButtonMenu {
 protected:
  void SetUp() override {
    ButtonMenu::SetUp();
    ASSERT_TRUE(button_.SubclassWindow(more_));
    button_.SetMenu(GetModuleHandle(nullptr), IDR_MENU);
    opened = {};
    button_clicked = more_;
  }
  RECT place() const {
    RECT rect;
    GetWindowRect(more_, &rect);
    return rect;
  }
  ImportOverride track_{"kexlib.dll", "user32.dll", "TrackPopupMenu", track};
  ImportOverride monitor_{"kexlib.dll", "user32.dll", "MonitorFromPoint", monitor_at};
  ImportOverride info_{"kexlib.dll", "user32.dll", "GetMonitorInfoA", monitor_info};
};

TEST_F(ButtonMenuPlace, IsBelowTheButtonForItsParent) {
  work_area = {-5000, -5000, 5000, 5000};
  EXPECT_EQ(click_now(), 0);
  EXPECT_EQ(opened.times, 1);
  EXPECT_EQ(opened.x, place().left);
  EXPECT_EQ(opened.y, place().bottom);
  EXPECT_EQ(opened.flags, 2u);
  EXPECT_EQ(opened.owner, dialog_.m_hWnd);
  EXPECT_EQ(opened.items, 2);
  EXPECT_EQ(opened.first_item, ID_COPY);
  EXPECT_EQ(opened.check, BST_CHECKED);
  EXPECT_EQ(button_.GetCheck(), BST_UNCHECKED);
}

BOOL WINAPI destroy_while_tracking(HMENU, UINT, int, int, int, HWND owner, const RECT*) { return DestroyWindow(owner); }

TEST_F(ButtonMenuPlace, MayBeDestroyedWhileItsMenuIsOpen) {
  const ImportOverride destroy("kexlib.dll", "user32.dll", "TrackPopupMenu", destroy_while_tracking);
  BOOL handled = TRUE;
  EXPECT_EQ(button_.OnClick(BN_CLICKED, IDC_MORE, more_, handled), 0);
  EXPECT_EQ(button_.m_hWnd, nullptr);
}

// Kept for compatibility: callers see the button unchecked, even if they checked it before.
TEST_F(ButtonMenuPlace, LeavesTheButtonUnchecked) {
  work_area = {-5000, -5000, 5000, 5000};
  button_.SetCheck(BST_CHECKED);
  click_now();
  EXPECT_EQ(opened.check, BST_CHECKED);
  EXPECT_EQ(button_.GetCheck(), BST_UNCHECKED);
}

// Kept for compatibility: callers see the menu at the button's lower edge, even if that is below all monitors.
TEST_F(ButtonMenuPlace, IsMovedSidewaysOntoTheNearestMonitor) {
  const LONG left = place().left, bottom = place().bottom;
  const struct {
    RECT area;
    LONG x;
  } cases[] = {
      {{left + 100, 0, left + 500, 4000}, left + 100},               // the monitor begins to the right
      {{left - 500, 0, left - 100, 4000}, left - 100},               // and to the left
      {{left - 500, bottom + 100, left + 500, bottom + 200}, left},  // below
      {{left - 500, bottom - 200, left + 500, bottom}, left},        // above, by one line
      {{left + 7, bottom - 200, left + 500, bottom - 100}, left + 7},
      {{left, bottom, left + 1, bottom + 1}, left},  // a monitor of one pixel at the menu
  };
  for (const auto& each : cases) {
    work_area = each.area;
    click_now();
    EXPECT_EQ(opened.x, each.x) << each.area.left << " " << each.area.top;
    EXPECT_EQ(opened.y, bottom) << each.area.left << " " << each.area.top;
  }
}

TEST_F(ButtonMenuPlace, RoundsLeaveNothingBehind) {
  work_area = {-5000, -5000, 5000, 5000};
  int round = 0;
  expect_flat(1000, [&] {
    const HWND made =
        CreateWindowA("BUTTON", "", WS_CHILD | WS_VISIBLE, 0, 0, 30, 30, dialog_, nullptr, nullptr, nullptr);
    atlButtonMenu button;
    button.SubclassWindow(made);
    const UINT menus[] = {IDR_MENU, IDR_NO_SUBMENU, missing, 0};
    button.SetMenu(GetModuleHandle(nullptr), menus[round++ % 4]);
    BOOL handled = TRUE;
    button.OnClick(BN_CLICKED, 0, made, handled);
    DestroyWindow(made);
  });
}

// ---- with the real mouse and keyboard ------------------------------------------------------------------------------

// The action while a menu is open. A timer calls it, since the menu runs a separate message loop.
std::function<void(HWND)> on_open;
int ticks = 0;

void CALLBACK look_for_menu(HWND, UINT, UINT_PTR, DWORD) {
  constexpr int too_many = 500;
  const HWND menu = FindWindowA("#32768", nullptr);
  if (++ticks > too_many) EndMenu();
  if (!menu || !IsWindowVisible(menu) || !on_open) return;
  const auto once = std::move(on_open);
  on_open = nullptr;
  once(menu);
}

class ButtonMenuOnScreen : public ButtonMenu {
 protected:
  void SetUp() override {
    park_mouse();
    ButtonMenu::SetUp();
    ASSERT_TRUE(bring_to_front(dialog_));
    ASSERT_TRUE(button_.SubclassWindow(more_));
    button_.SetMenu(GetModuleHandle(nullptr), IDR_MENU);
    ticks = 0;
    timer_ = SetTimer(nullptr, 0, 20, look_for_menu);
  }
  void TearDown() override {
    KillTimer(nullptr, timer_);
    on_open = nullptr;
    park_mouse();
    ButtonMenu::TearDown();
  }
  // Clicks, and processes messages while the menu is open and until the button is released.
  void click_and(std::function<void(HWND)> while_open) {
    bool seen = false;
    on_open = [&seen, while_open](HWND menu) {
      seen = true;
      while_open(menu);
    };
    click(more_);
    ASSERT_TRUE(pump_until([&] { return seen && button_.GetCheck() == BST_UNCHECKED; }));
  }
  UINT_PTR timer_ = 0;
};

TEST_F(ButtonMenuOnScreen, SendsTheChosenCommandToTheParent) {
  RECT menu{}, button{};
  GetWindowRect(more_, &button);
  LRESULT check = 0;
  std::string items;
  click_and([&](HWND window) {
    GetWindowRect(window, &menu);
    check = SendMessageA(more_, BM_GETCHECK, 0, 0);
    const auto shown = reinterpret_cast<HMENU>(SendMessageA(window, MN_GETHMENU, 0, 0));
    char text[40] = "";
    for (int i = 0; i < GetMenuItemCount(shown); ++i)
      GetMenuStringA(shown, static_cast<UINT>(i), text, sizeof text, MF_BYPOSITION), items += text + std::string("|");
    press_key(VK_DOWN);
    press_key(VK_DOWN);
    press_key(VK_RETURN);
  });
  EXPECT_EQ(menu.left, button.left);
  EXPECT_EQ(menu.top, button.bottom);
  EXPECT_EQ(check, BST_CHECKED);
  EXPECT_EQ(items, "&Copy|&Paste|");
  ASSERT_TRUE(pump_until([&] { return !dialog_.commands.empty(); }));
  EXPECT_EQ(dialog_.commands, std::vector<int>{ID_PASTE});
  EXPECT_EQ(dialog_.senders, std::vector<LPARAM>{0}) << "as a menu bar sends it";
}

TEST_F(ButtonMenuOnScreen, SendsNothingWhenTheMenuIsLeft) {
  click_and([](HWND) { press_key(VK_ESCAPE); });
  pump_waiting();
  EXPECT_TRUE(dialog_.commands.empty());
}

TEST_F(ButtonMenuOnScreen, ShowsTheMenuOfTheLastSetMenu) {
  button_.SetMenu(GetModuleHandle(nullptr), IDR_NO_SUBMENU);
  button_.SetMenu(GetModuleHandle(nullptr), IDR_MENU);
  click_and([](HWND) {
    press_key('C');  // its access key
  });
  ASSERT_TRUE(pump_until([&] { return !dialog_.commands.empty(); }));
  EXPECT_EQ(dialog_.commands, std::vector<int>{ID_COPY});
}

TEST_F(ButtonMenuOnScreen, CanBeLookedAt) {
  click_and([&](HWND menu) {
    RECT rect;
    dialog_.GetWindowRect(&rect);
    rect.bottom += 40;  // the menu reaches beyond it
    // The drawing reaches the screen while the menu waits for messages, so check at the next tick.
    on_open = [rect](HWND) {
      const Picture picture(rect.right - rect.left, rect.bottom - rect.top, 0);
      const HDC screen = GetDC(nullptr);
      BitBlt(picture.dc(), 0, 0, rect.right - rect.left, rect.bottom - rect.top, screen, rect.left, rect.top, SRCCOPY);
      ReleaseDC(nullptr, screen);
      EXPECT_TRUE(picture.save("button_menu_open", 2));
      press_key(VK_ESCAPE);
    };
    EXPECT_TRUE(IsWindow(menu));
  });
}

TEST_F(ButtonMenuOnScreen, IgnoresTheOtherMouseButtons) {
  bool menu_seen = false;
  on_open = [&](HWND) {
    menu_seen = true;
    press_key(VK_ESCAPE);
  };
  click(more_, MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
  click(more_, MOUSEEVENTF_MIDDLEDOWN, MOUSEEVENTF_MIDDLEUP);
  // A click on another button is processed after these messages.
  click(dialog_.GetDlgItem(IDC_LATER));
  ASSERT_TRUE(pump_until([&] { return dialog_.commands == std::vector<int>{IDC_LATER}; }));
  EXPECT_FALSE(menu_seen);
  EXPECT_TRUE(dialog_.told.empty());
  EXPECT_EQ(button_.GetState() & (BST_CHECKED | BST_PUSHED), 0u);
}

TEST_F(ButtonMenuOnScreen, WithoutAMenuTheClickReachesTheParentOnly) {
  button_.SetMenu(nullptr, 0);
  click(more_);
  ASSERT_TRUE(pump_until([&] { return dialog_.told == std::vector<int>{BN_CLICKED}; }));
  EXPECT_EQ(button_.GetCheck(), BST_UNCHECKED);
}

TEST_F(ButtonMenuOnScreen, StaysPressedAfterAClickWithoutAResource) {
  button_.SetMenu(GetModuleHandle(nullptr), missing);
  click(more_);
  ASSERT_TRUE(pump_until([&] { return button_.GetCheck() == BST_CHECKED; }));
  EXPECT_EQ(dialog_.told, std::vector<int>{BN_CLICKED});
}

}  // namespace
