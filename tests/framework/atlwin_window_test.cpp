// CWindow.
#include <gtest/gtest.h>

#include <atlwin.h>

namespace {

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

  // At the edge it stays inside the work area.
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
  // A minimised owner is not used.
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
  expect_centered_at(child, 300, 200 + 40);  // too wide: its left edge is visible
  DestroyWindow(parent);
}

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

}  // namespace
