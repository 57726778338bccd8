// The bitmap button of WTL.
#include <gtest/gtest.h>

#include <atlctrlx.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/resource_counts.h>

#include <functional>
#include <memory>
#include <string>

namespace {

constexpr COLORREF red = RGB(200, 0, 0), green = RGB(0, 160, 0), blue = RGB(0, 0, 200), gray = RGB(120, 120, 120),
                   behind = RGB(255, 255, 200);
constexpr int image_size = 24;
enum { normal, pushed, hot, disabled };

// Squares of one colour with a black frame, in the order above.
HIMAGELIST make_images() {
  HIMAGELIST images = ImageList_Create(image_size, image_size, ILC_COLOR32, 4, 4);
  for (COLORREF color : {red, green, blue, gray}) {
    CClientDC screen(nullptr);
    CBitmap bitmap;
    bitmap.CreateCompatibleBitmap(screen, image_size, image_size);
    CDC memory;
    memory.CreateCompatibleDC();
    HBITMAP original = memory.SelectBitmap(bitmap);
    CRect whole(0, 0, image_size, image_size);
    memory.FillSolidRect(whole, RGB(0, 0, 0));
    whole.DeflateRect(1, 1);
    memory.FillSolidRect(whole, color);
    memory.SelectBitmap(original);
    ImageList_Add(images, bitmap, nullptr);
  }
  return images;
}

class Parent : public CWindowImpl<Parent, CWindow, CFrameWinTraits> {
 public:
  BEGIN_MSG_MAP(Parent)
    COMMAND_CODE_HANDLER(BN_CLICKED, OnClicked)
    COMMAND_CODE_HANDLER(BN_DOUBLECLICKED, OnDoubleClicked)
  END_MSG_MAP()
  LRESULT OnClicked(WORD, WORD, HWND, BOOL&) {
    ++clicks;
    if (on_click) on_click();
    return 0;
  }
  LRESULT OnDoubleClicked(WORD, WORD, HWND, BOOL&) {
    ++double_clicks;
    return 0;
  }
  int clicks = 0;
  int double_clicks = 0;
  std::function<void()> on_click;
};

class BitmapButton : public testing::Test {
 protected:
  void SetUp() override {
    RECT place{200, 200, 400, 400};
    ASSERT_TRUE(parent.Create(nullptr, place, "bitmap button", WS_POPUP));
  }
  void TearDown() override {
    if (parent.IsWindow()) parent.DestroyWindow();
  }

  HWND make_plain(int size = 40) {
    RECT place{50, 50, 50 + size, 50 + size};
    return plain.Create(parent, place, "", WS_CHILD | WS_VISIBLE, 0, 17U);
  }

  // A button with these styles and pictures for all its states.
  CBitmapButton& make(DWORD style) {
    button = std::make_unique<CBitmapButton>(style, make_images());
    button->SetImages(normal, pushed, hot, disabled);
    EXPECT_TRUE(button->SubclassWindow(make_plain()));
    return *button;
  }

  // What the button paints over a background.
  Picture paint() const {
    RECT client;
    button->GetClientRect(&client);
    Picture picture(client.right, client.bottom, behind);
    button->SendMessage(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(picture.dc()), PRF_CLIENT);
    return picture;
  }
  COLORREF color() const { return paint().at(10, 10); }

  Parent parent;
  CButton plain;
  std::unique_ptr<CBitmapButton> button;
};

TEST_F(BitmapButton, SubclassingMakesTheButtonOwnerDrawnWithATooltipAndItsPicturesSize) {
  CBitmapButton& made = make(BMPBTN_AUTOSIZE);
  EXPECT_EQ(made.GetStyle() & BS_OWNERDRAW, DWORD{BS_OWNERDRAW});
  CRect rect;
  made.GetClientRect(rect);
  EXPECT_EQ(rect.Size(), CSize(image_size, image_size));
  char name[64];
  GetClassName(made.m_tip, name, sizeof name);
  EXPECT_STREQ(name, "tooltips_class32");
  EXPECT_EQ(made.m_tip.GetToolCount(), 0);
}

TEST_F(BitmapButton, KeepsItsSizeWithoutAutosize) {
  CRect rect;
  make(0).GetClientRect(rect);
  EXPECT_EQ(rect.Size(), CSize(40, 40));
}

TEST_F(BitmapButton, AFrameComesOnTopOfThePicturesSize) {
  make(0);
  button->ModifyStyleEx(0, WS_EX_CLIENTEDGE, SWP_FRAMECHANGED);
  button->SizeToImage();
  CRect client, window;
  button->GetClientRect(client);
  button->GetWindowRect(window);
  EXPECT_EQ(client.Size(), CSize(image_size, image_size));
  EXPECT_GT(window.Width(), image_size);
}

TEST_F(BitmapButton, WhatIsNoWindowCannotBeSubclassed) {
  CBitmapButton none;
  EXPECT_FALSE(none.SubclassWindow(nullptr));
  EXPECT_FALSE(none.m_tip.IsWindow());
}

TEST_F(BitmapButton, CanBeCreatedToo) {
  CBitmapButton made(BMPBTN_AUTOSIZE, make_images());
  made.SetImages(normal);
  RECT place{50, 50, 90, 90};
  ASSERT_TRUE(made.Create(parent, place, "", WS_CHILD | WS_VISIBLE));
  EXPECT_EQ(made.GetStyle() & BS_OWNERDRAW, DWORD{BS_OWNERDRAW});
  EXPECT_TRUE(made.m_tip.IsWindow());
  CRect rect;
  made.GetClientRect(rect);
  EXPECT_EQ(rect.Size(), CSize(image_size, image_size));
  char name[64];
  GetClassName(made, name, sizeof name);
  EXPECT_STREQ(name, "WTL_BitmapButton");
  parent.DestroyWindow();
}

TEST_F(BitmapButton, ShowsThePictureOfItsState) {
  make(0);
  EXPECT_EQ(color(), red);
  button->EnableWindow(FALSE);
  EXPECT_EQ(color(), gray);
  button->SendMessage(BM_SETSTATE, TRUE);
  EXPECT_EQ(color(), green) << "pressed goes before disabled";
  button->SendMessage(BM_SETSTATE, FALSE);
  EXPECT_EQ(color(), gray);
  button->EnableWindow();
  EXPECT_EQ(color(), red);
}

TEST_F(BitmapButton, AStateWithoutAPictureShowsTheNormalOne) {
  button = std::make_unique<CBitmapButton>(0, make_images());
  button->SetImages(hot);
  button->SubclassWindow(make_plain());
  EXPECT_EQ(color(), blue);
  button->EnableWindow(FALSE);
  EXPECT_EQ(color(), blue);
  button->SendMessage(BM_SETSTATE, TRUE);
  EXPECT_EQ(color(), blue);
}

TEST_F(BitmapButton, WithoutPicturesItShowsNone) {
  button = std::make_unique<CBitmapButton>(BMPBTN_AUTOSIZE);
  button->SubclassWindow(make_plain());
  EXPECT_EQ(color(), behind);
  button->SetImages(normal);
  EXPECT_EQ(color(), behind) << "nor without an image list";
}

TEST_F(BitmapButton, SetImagesLeavesWhatItIsNotTold) {
  make(0);
  button->SetImages(-1, -1, -1, pushed);
  EXPECT_EQ(button->m_nImage[CBitmapButton::_nImageNormal], normal);
  EXPECT_EQ(button->m_nImage[CBitmapButton::_nImagePushed], pushed);
  EXPECT_EQ(button->m_nImage[CBitmapButton::_nImageFocusOrHover], hot);
  EXPECT_EQ(button->m_nImage[CBitmapButton::_nImageDisabled], pushed);
}

TEST_F(BitmapButton, APressedOneWithAnEdgeAndWithoutAPictureMovesByAPixel) {
  button = std::make_unique<CBitmapButton>(BMPBTN_AUTO3D_SINGLE, make_images());
  button->SetImages(normal);
  button->SubclassWindow(make_plain());
  EXPECT_EQ(paint().at(image_size, 10), behind);
  button->SendMessage(BM_SETSTATE, TRUE);
  EXPECT_EQ(paint().at(image_size, 10), RGB(0, 0, 0));
  EXPECT_EQ(paint().at(10, image_size), RGB(0, 0, 0));
  EXPECT_EQ(paint().at(1, 10), RGB(0, 0, 0));

  button->SetBitmapButtonExtendedStyle(0);
  EXPECT_EQ(paint().at(image_size, 10), behind) << "without an edge it stays";
  button->SetBitmapButtonExtendedStyle(BMPBTN_AUTO3D_DOUBLE);
  button->SetImages(-1, pushed);
  EXPECT_EQ(paint().at(image_size, 10), behind) << "so it does with a picture of its own";
}

// The edge that the system draws, over what else the button shows.
Picture with_edge(const Picture& plain, int size, UINT edge) {
  Picture picture(size, size, behind);
  BitBlt(picture.dc(), 0, 0, size, size, plain.dc(), 0, 0, SRCCOPY);
  RECT rect{0, 0, size, size};
  DrawEdge(picture.dc(), &rect, edge, BF_RECT);
  return picture;
}

TEST_F(BitmapButton, HasTheEdgeThatItsStyleSays) {
  make(0);
  Picture released = paint();
  button->SendMessage(BM_SETSTATE, TRUE);
  Picture pressed = paint();
  for (auto [style, raised, sunken] :
       {std::tuple<DWORD, UINT, UINT>{BMPBTN_AUTO3D_SINGLE, BDR_RAISEDINNER, BDR_SUNKENOUTER},
        {BMPBTN_AUTO3D_DOUBLE, EDGE_RAISED, EDGE_SUNKEN}}) {
    button->SetBitmapButtonExtendedStyle(style);
    button->SendMessage(BM_SETSTATE, FALSE);
    EXPECT_TRUE(paint() == with_edge(released, 40, raised));
    button->SendMessage(BM_SETSTATE, TRUE);
    EXPECT_TRUE(paint() == with_edge(pressed, 40, sunken));
  }
}

TEST_F(BitmapButton, InHoverModeItHasNoEdgeUntilTheMouseComes) {
  make(BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE);
  Picture released = paint();
  EXPECT_EQ(released.at(0, 39), behind);
  button->m_fMouseOver = 1;
  EXPECT_NE(paint().at(0, 39), behind);
  EXPECT_EQ(color(), blue);
}

TEST_F(BitmapButton, ACheckedOneLooksPressedIfItsStyleSaysSo) {
  make(0);
  EXPECT_FALSE(button->GetCheck());
  button->SetCheck(true);
  EXPECT_TRUE(button->GetCheck());
  EXPECT_EQ(color(), red);
  button->SetBitmapButtonExtendedStyle(BMPBTN_CHECK, BMPBTN_CHECK);
  EXPECT_EQ(color(), green);
  button->SetCheck(false);
  EXPECT_EQ(color(), red);
}

TEST_F(BitmapButton, ChangesOnlyTheStylesOfTheMask) {
  CBitmapButton made(BMPBTN_AUTOSIZE);
  EXPECT_EQ(made.SetBitmapButtonExtendedStyle(BMPBTN_HOVER | BMPBTN_CHECK, BMPBTN_HOVER | BMPBTN_AUTOSIZE),
            DWORD{BMPBTN_AUTOSIZE});
  EXPECT_EQ(made.GetBitmapButtonExtendedStyle(), DWORD{BMPBTN_HOVER});
  made.SetBitmapButtonExtendedStyle(BMPBTN_AUTO3D_SINGLE);
  EXPECT_EQ(made.GetBitmapButtonExtendedStyle(), DWORD{BMPBTN_AUTO3D_SINGLE}) << "no mask: all of them";
}

TEST_F(BitmapButton, ItsImageListGoesWithItUnlessItIsShared) {
  auto round = [] {
    HIMAGELIST images = make_images(), others = make_images();
    {
      CBitmapButton owner(BMPBTN_AUTOSIZE, images);
      EXPECT_EQ(owner.GetImageList(), images);
      CBitmapButton user(BMPBTN_SHAREIMAGELISTS);
      EXPECT_EQ(user.SetImageList(others), nullptr);
      EXPECT_EQ(user.SetImageList(others), others);
    }
    EXPECT_EQ(ImageList_GetImageCount(others), 4);
    EXPECT_TRUE(ImageList_Destroy(others));
  };
  round();
  ResourceCounts before;
  for (int i = 0; i < 50; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

TEST_F(BitmapButton, ANewImageListResizesIt) {
  make(BMPBTN_AUTOSIZE);
  HIMAGELIST larger = ImageList_Create(33, 31, ILC_COLOR32, 1, 1);
  ImageList_Destroy(button->SetImageList(larger));
  CRect rect;
  button->GetClientRect(rect);
  EXPECT_EQ(rect.Size(), CSize(33, 31));
}

TEST_F(BitmapButton, TellsItsTooltipTheTextNowOrLater) {
  auto shown = [&] {
    char text[80] = {};
    CToolInfo tool(0, *button, 0, nullptr, text);
    button->m_tip.SendMessage(TTM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(&tool));
    return std::string(text);
  };
  button = std::make_unique<CBitmapButton>(BMPBTN_AUTOSIZE, make_images());
  button->SetToolTipText("before");
  button->SubclassWindow(make_plain());
  EXPECT_EQ(shown(), "before");
  button->SetToolTipText("after");
  EXPECT_EQ(shown(), "after");
  button->SetToolTipText(nullptr);
  EXPECT_EQ(button->m_tip.GetToolCount(), 1);
  EXPECT_EQ(shown(), "");
}

TEST_F(BitmapButton, ACopyHasATooltipTextOfItsOwn) {
  CBitmapButton first(BMPBTN_SHAREIMAGELISTS);
  first.SetToolTipText("text");
  {
    CBitmapButton second(first);
    second.SetToolTipText("other");
  }
  EXPECT_STREQ(first.m_strToolTipText, "text");
}

TEST_F(BitmapButton, HasNothingToErase) {
  make(0);
  Picture picture(40, 40, behind);
  EXPECT_EQ(button->SendMessage(WM_ERASEBKGND, reinterpret_cast<WPARAM>(picture.dc())), 1);
  EXPECT_EQ(picture.at(5, 5), behind);
}

TEST_F(BitmapButton, TheSpaceBarPressesItExceptInHoverMode) {
  make(0);
  button->SetFocus();
  auto press_space = [&] {
    button->SendMessage(WM_KEYDOWN, VK_SPACE, 0x00390001);
    bool pressed = button->m_fPressed;
    button->SendMessage(WM_KEYUP, VK_SPACE, static_cast<LPARAM>(0xC0390001));
    return pressed;
  };
  EXPECT_TRUE(press_space());
  EXPECT_FALSE(button->m_fPressed);
  EXPECT_EQ(parent.clicks, 1);
  button->SetBitmapButtonExtendedStyle(BMPBTN_HOVER);
  EXPECT_FALSE(press_space());
  EXPECT_EQ(parent.clicks, 1);
}

TEST_F(BitmapButton, IsShownReleasedBeforeItsClickIsHandled) {
  make(0);
  bool pressed = true;
  parent.on_click = [&] { pressed = button->m_fPressed; };
  button->SendMessage(BM_CLICK);
  EXPECT_EQ(parent.clicks, 1);
  EXPECT_FALSE(pressed);
}

TEST_F(BitmapButton, MayBeDestroyedByItsClick) {
  make(0);
  button->SetToolTipText("gone");
  HWND tip = button->m_tip, window = *button;
  parent.on_click = [&] { ::DestroyWindow(window); };
  ::SendMessage(window, BM_CLICK, 0, 0);
  EXPECT_EQ(parent.clicks, 1);
  EXPECT_FALSE(::IsWindow(window));
  EXPECT_FALSE(::IsWindow(tip));
  EXPECT_EQ(button->m_hWnd, nullptr);
}

TEST_F(BitmapButton, RoundsLeaveNothingBehind) {
  auto round = [&] {
    make(BMPBTN_AUTOSIZE | BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE);
    button->SetToolTipText("text");
    button->UpdateWindow();
    paint();
    ::DestroyWindow(*button);
    button.reset();
  };
  for (int i = 0; i < 3; ++i) round();
  pump_waiting();
  ResourceCounts before;
  for (int i = 0; i < 200; ++i) round();
  pump_waiting();
  EXPECT_EQ(ResourceCounts(), before);
}

TEST_F(BitmapButton, HasAPictureOfEachStateForPeopleToLookAt) {
  make(BMPBTN_AUTO3D_DOUBLE);
  constexpr int columns = 5, cell = 48;
  Picture sheet(columns * cell, 2 * cell, behind);
  auto add = [&](int column, int row) {
    Picture picture = paint();
    BitBlt(sheet.dc(), column * cell + 4, row * cell + 4, 40, 40, picture.dc(), 0, 0, SRCCOPY);
  };
  for (int row = 0; row < 2; ++row) {
    button->SetBitmapButtonExtendedStyle(row == 0 ? BMPBTN_AUTO3D_DOUBLE : BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE);
    add(0, row);
    button->SendMessage(BM_SETSTATE, TRUE);
    add(1, row);
    button->SendMessage(BM_SETSTATE, FALSE);
    (row == 0 ? button->m_fFocus = 1 : button->m_fMouseOver = 1);
    add(2, row);
    (row == 0 ? button->m_fFocus = 0 : button->m_fMouseOver = 0);
    button->EnableWindow(FALSE);
    add(3, row);
    button->EnableWindow();
    button->SetBitmapButtonExtendedStyle(BMPBTN_CHECK, BMPBTN_CHECK);
    button->SetCheck(true);
    add(4, row);
    button->SetCheck(false);
  }
  EXPECT_TRUE(sheet.save("framework_bitmap_button", 3));
}

// ---- with the real mouse and keyboard ------------------------------------------------------------------------------

class BitmapButtonOnScreen : public BitmapButton {
 protected:
  void SetUp() override {
    SetCursorPos(5, 5);
    BitmapButton::SetUp();
    parent.ShowWindow(SW_SHOW);
    SetForegroundWindow(parent);
    ASSERT_TRUE(pump_until([&] { return GetForegroundWindow() == parent.m_hWnd; }));
  }
  void TearDown() override {
    SetCursorPos(5, 5);
    BitmapButton::TearDown();
  }

  // In the button's client area, or outside of it.
  void move(int x, int y) {
    POINT place{x, y};
    button->ClientToScreen(&place);
    SetCursorPos(place.x, place.y);
    pump_waiting();
  }
  static void mouse(DWORD what) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = what;
    SendInput(1, &input, sizeof input);
    pump_waiting();
  }
  // What is to be seen there on the screen.
  COLORREF on_screen(int x = 10, int y = 10) const { return Picture(button->m_hWnd).at(x, y); }
  testing::AssertionResult comes(COLORREF expected) {
    if (pump_until([&] { return on_screen() == expected; })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << std::hex << on_screen() << " instead of " << expected;
  }
};

TEST_F(BitmapButtonOnScreen, ShowsThatTheMouseIsOverIt) {
  make(BMPBTN_HOVER);
  EXPECT_TRUE(comes(red));
  move(10, 10);
  EXPECT_TRUE(comes(blue));
  move(20, 20);
  EXPECT_TRUE(comes(blue));
  move(100, 100);
  EXPECT_TRUE(comes(red));
  move(10, 10);
  EXPECT_TRUE(comes(blue)) << "again";
}

TEST_F(BitmapButtonOnScreen, WithoutHoverModeTheMouseChangesNothing) {
  make(0);
  EXPECT_TRUE(comes(red));
  move(10, 10);
  mouse(MOUSEEVENTF_LEFTDOWN);  // a press shows that the moves before it have arrived
  EXPECT_TRUE(comes(green));
  EXPECT_FALSE(button->m_fMouseOver);
  mouse(MOUSEEVENTF_LEFTUP);
  EXPECT_TRUE(comes(blue)) << "the focus that a click gives";
}

TEST_F(BitmapButtonOnScreen, IsPressedWhileTheMouseIsHeldDownOverIt) {
  make(BMPBTN_HOVER);
  move(10, 10);
  EXPECT_TRUE(comes(blue));
  mouse(MOUSEEVENTF_LEFTDOWN);
  EXPECT_TRUE(comes(green));
  move(100, 100);
  EXPECT_TRUE(comes(red));
  move(12, 12);
  EXPECT_TRUE(comes(green));
  mouse(MOUSEEVENTF_LEFTUP);
  EXPECT_TRUE(comes(blue));
  EXPECT_TRUE(pump_until([&] { return parent.clicks == 1; }));
}

TEST_F(BitmapButtonOnScreen, AClickThatEndsOutsideOfItIsNone) {
  make(BMPBTN_HOVER);
  move(10, 10);
  mouse(MOUSEEVENTF_LEFTDOWN);
  EXPECT_TRUE(comes(green));
  move(100, 100);
  EXPECT_TRUE(comes(red));
  mouse(MOUSEEVENTF_LEFTUP);
  EXPECT_TRUE(pump_until([&] { return GetCapture() == nullptr; }));
  EXPECT_EQ(parent.clicks, 0);
  EXPECT_TRUE(comes(red));
}

TEST_F(BitmapButtonOnScreen, LosingTheMouseReleasesIt) {
  make(BMPBTN_HOVER);
  move(10, 10);
  mouse(MOUSEEVENTF_LEFTDOWN);
  EXPECT_TRUE(comes(green));
  parent.SetCapture();
  EXPECT_FALSE(button->m_fPressed);
  mouse(MOUSEEVENTF_LEFTUP);
  ReleaseCapture();
  pump_waiting();
  EXPECT_EQ(parent.clicks, 0);
}

TEST_F(BitmapButtonOnScreen, TwoQuickClicksAreTwoClicks) {
  make(BMPBTN_HOVER);
  move(10, 10);
  EXPECT_TRUE(comes(blue));
  for (int i = 0; i < 2; ++i) {
    mouse(MOUSEEVENTF_LEFTDOWN);
    EXPECT_TRUE(comes(green));
    mouse(MOUSEEVENTF_LEFTUP);
    EXPECT_TRUE(comes(blue));
  }
  EXPECT_EQ(parent.clicks, 2);
  EXPECT_EQ(parent.double_clicks, 0);
}

TEST_F(BitmapButtonOnScreen, ShowsTheFocusUnlessItIsInHoverMode) {
  make(BMPBTN_AUTO3D_SINGLE);
  button->SetFocus();
  EXPECT_TRUE(comes(blue));
  // The focus rectangle lies two edges inside.
  int inset = 2 * GetSystemMetrics(SM_CXEDGE);
  Picture focused(*button);
  bool dotted = false;
  for (int x = inset; x < 40 - inset; ++x) dotted |= focused.at(x, inset) != blue;
  EXPECT_TRUE(dotted);
  parent.SetFocus();
  EXPECT_TRUE(comes(red));

  button->SetBitmapButtonExtendedStyle(BMPBTN_HOVER);
  button->SetFocus();
  EXPECT_TRUE(button->m_fFocus);
  EXPECT_TRUE(comes(red));
}

TEST_F(BitmapButtonOnScreen, ShowsItsTooltip) {
  make(BMPBTN_HOVER);
  button->SetToolTipText("What it does");
  button->m_tip.SetDelayTime(TTDT_INITIAL, 20);
  move(10, 10);
  move(11, 11);
  EXPECT_TRUE(pump_until([&] { return button->m_tip.IsWindowVisible(); }));
  Picture(button->m_tip).save("framework_bitmap_button_tooltip", 3);
  move(100, 100);
  EXPECT_TRUE(pump_until([&] { return !button->m_tip.IsWindowVisible(); }));

  button->SetToolTipText(nullptr);
  move(10, 10);
  move(11, 11);
  EXPECT_TRUE(comes(blue));
  // The tooltip's timer would have run out long before this one.
  bool over = false;
  UINT_PTR timer = SetTimer(nullptr, 0, 400, nullptr);
  MSG message;
  while (!over && GetMessage(&message, nullptr, 0, 0) > 0) {
    over = message.message == WM_TIMER && message.wParam == timer && !message.hwnd;
    DispatchMessage(&message);
    EXPECT_FALSE(button->m_tip.IsWindowVisible());
  }
  KillTimer(nullptr, timer);
}

}  // namespace
