// The look and the members of WTL's bitmap button.
#include <gtest/gtest.h>

#include <framework/bitmap_button.h>
#include <support/message_pump.h>
#include <support/resource_counts.h>

#include <string>

namespace {

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

TEST_F(BitmapButton, WhatTheSystemRefusesGetsNoTooltip) {
  CBitmapButton none;
  EXPECT_FALSE(none.SubclassWindow(GetDesktopWindow()));
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
  button->m_fFocus = 1;
  EXPECT_EQ(color(), blue);
  button->m_fPressed = 1;
  EXPECT_EQ(color(), green) << "pressed goes before hot";
  button->EnableWindow(FALSE);
  EXPECT_EQ(color(), gray) << "disabled goes before pressed";
  button->m_fPressed = 0, button->m_fFocus = 0;
  button->EnableWindow();
  EXPECT_EQ(color(), red);
  button->SendMessage(BM_SETSTATE, TRUE);
  EXPECT_EQ(color(), red) << "the state of the system's button is another one";
}

TEST_F(BitmapButton, AStateWithoutAPictureShowsTheNormalOne) {
  button = std::make_unique<CBitmapButton>(0, make_images());
  button->SetImages(hot);
  button->SubclassWindow(make_plain());
  EXPECT_EQ(color(), blue);
  button->EnableWindow(FALSE);
  EXPECT_EQ(color(), blue);
  button->EnableWindow();
  button->m_fPressed = 1;
  EXPECT_EQ(color(), blue);
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
  button->m_fPressed = 1;
  EXPECT_EQ(paint().at(image_size, 10), RGB(0, 0, 0));
  EXPECT_EQ(paint().at(10, image_size), RGB(0, 0, 0));
  EXPECT_EQ(paint().at(1, 10), RGB(0, 0, 0));

  button->SetBitmapButtonExtendedStyle(0);
  EXPECT_EQ(paint().at(image_size, 10), behind) << "without an edge it stays";
  button->SetBitmapButtonExtendedStyle(BMPBTN_AUTO3D_DOUBLE);
  button->SetImages(-1, pushed);
  EXPECT_EQ(paint().at(image_size, 10), behind) << "so it does with a picture of its own";
}

// The edge that the system draws over the button.
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
  button->m_fPressed = 1;
  Picture pressed = paint();
  for (auto [style, raised, sunken] :
       {std::tuple<DWORD, UINT, UINT>{BMPBTN_AUTO3D_SINGLE, BDR_RAISEDINNER, BDR_SUNKENOUTER},
        {BMPBTN_AUTO3D_DOUBLE, EDGE_RAISED, EDGE_SUNKEN}}) {
    button->SetBitmapButtonExtendedStyle(style);
    button->m_fPressed = 0;
    EXPECT_TRUE(paint() == with_edge(released, 40, raised));
    button->m_fPressed = 1;
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
  button->SetBitmapButtonExtendedStyle(BMPBTN_AUTOCHECK);
  button->SetCheck(true);
  EXPECT_EQ(color(), green);
}

TEST_F(BitmapButton, OnlyAutocheckMakesAClickChangeTheCheckState) {
  for (const DWORD hover : {DWORD{0}, DWORD{BMPBTN_HOVER}}) {
    make(hover | BMPBTN_CHECK);
    button->SendMessage(BM_CLICK);
    EXPECT_FALSE(button->GetCheck());
    button->SetBitmapButtonExtendedStyle(hover | BMPBTN_AUTOCHECK);
    parent.clicks = 0;
    bool during = false;
    parent.on_click = [&] { during = button->GetCheck(); };
    button->SendMessage(BM_CLICK);
    EXPECT_TRUE(during) << "before the parent is told";
    button->SendMessage(BM_CLICK);
    EXPECT_FALSE(button->GetCheck());
    EXPECT_EQ(parent.clicks, 2);
    parent.on_click = nullptr;
    button->UnsubclassWindow();
    plain.DestroyWindow();
  }
  make(BMPBTN_AUTOCHECK);
  button->SendMessage(WM_KEYDOWN, VK_SPACE, 0x00390001);
  button->SendMessage(WM_KEYUP, VK_SPACE, static_cast<LPARAM>(0xC0390001));
  EXPECT_TRUE(button->GetCheck()) << "the space bar too";
}

TEST_F(BitmapButton, WithAutofireClicksWhileItIsHeldDown) {
  make(BMPBTN_HOVER | BMPBTN_AUTOFIRE);
  button->SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
  ASSERT_TRUE(pump_until([&] { return parent.clicks >= 2; }));
  button->SendMessage(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(-5, 5));
  parent.clicks = 0;
  button->SendMessage(WM_TIMER, CBitmapButton::ID_TIMER_REPEAT);
  EXPECT_EQ(parent.clicks, 0) << "not while the mouse is outside";
  button->SendMessage(WM_LBUTTONUP, 0, MAKELPARAM(-5, 5));
  EXPECT_EQ(GetCapture(), nullptr);
  button->SendMessage(WM_TIMER, CBitmapButton::ID_TIMER_REPEAT);
  EXPECT_EQ(parent.clicks, 0);
  EXPECT_FALSE(button->KillTimer(CBitmapButton::ID_TIMER_REPEAT)) << "it has ended";
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
  CToolInfo tool(0, *button);
  button->m_tip.DelTool(tool);
  EXPECT_TRUE(button->SetToolTipText("after"));
  EXPECT_EQ(shown(), "after");
  EXPECT_TRUE(button->SetToolTipText(nullptr));
  EXPECT_EQ(button->m_tip.GetToolCount(), 1) << "the tool stays, switched off";
  EXPECT_EQ(shown(), "after");
}

TEST_F(BitmapButton, HasATextOfItsOwn) {
  CBitmapButton owner;
  char text[3] = "x";
  EXPECT_EQ(owner.GetToolTipTextLength(), -1);
  EXPECT_FALSE(owner.GetToolTipText(text, sizeof text));
  char given[] = "text";
  EXPECT_TRUE(owner.SetToolTipText(given));
  given[0] = 'n';
  EXPECT_EQ(owner.GetToolTipTextLength(), 4);
  EXPECT_TRUE(owner.GetToolTipText(text, sizeof text));
  EXPECT_STREQ(text, "te");
  EXPECT_TRUE(owner.SetToolTipText(nullptr));
  EXPECT_EQ(owner.GetToolTipTextLength(), -1);
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

TEST_F(BitmapButton, IsReleasedBeforeItsClickIsHandledExceptInHoverMode) {
  for (const bool hover : {false, true}) {
    make(hover ? BMPBTN_HOVER : 0);
    parent.clicks = 0;
    bool pressed = !hover;
    HWND captured = nullptr;
    parent.on_click = [&] {
      pressed = button->m_fPressed;
      captured = GetCapture();
    };
    button->SendMessage(BM_CLICK);
    EXPECT_EQ(parent.clicks, 1);
    EXPECT_EQ(pressed, hover);
    EXPECT_EQ(captured, hover ? button->m_hWnd : nullptr);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_FALSE(button->m_fPressed);
    parent.on_click = nullptr;
    button->UnsubclassWindow();
    plain.DestroyWindow();
  }
}

TEST_F(BitmapButton, IsNotPaintedByTheSystem) {
  make(0);
  Picture before = paint();
  EXPECT_EQ(button->SendMessage(WM_UPDATEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS)), 0);
  EXPECT_TRUE(paint() == before);
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
    button->m_fPressed = 1;
    add(1, row);
    button->m_fPressed = 0;
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

}  // namespace
