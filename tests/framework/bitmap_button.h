// Shared by the tests of WTL's bitmap button.
#ifndef TESTS_FRAMEWORK_BITMAP_BUTTON_H
#define TESTS_FRAMEWORK_BITMAP_BUTTON_H

#include <gtest/gtest.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlctrls.h>
#include <atlctrlx.h>
#include <atlmisc.h>

#include <support/picture.h>

#include <functional>
#include <memory>

inline constexpr COLORREF red = RGB(200, 0, 0), green = RGB(0, 160, 0), blue = RGB(0, 0, 200),
                          gray = RGB(120, 120, 120), behind = RGB(255, 255, 200);
inline constexpr int image_size = 24;
enum { normal, pushed, hot, disabled };

// Squares of one colour with a black frame, in the order above.
inline HIMAGELIST make_images() {
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
    plain.Detach();
    return plain.Create(parent, place, "", WS_CHILD | WS_VISIBLE, 0, 17U);
  }

  // A button with these styles and an image for each state.
  CBitmapButton& make(DWORD style) {
    button = std::make_unique<CBitmapButton>(style, make_images());
    button->SetImages(normal, pushed, hot, disabled);
    EXPECT_TRUE(button->SubclassWindow(make_plain()));
    return *button;
  }

  // The button, painted over the background.
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

#endif
