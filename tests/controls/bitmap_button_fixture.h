// A dialog with a bitmap button, and a themer that records its calls.
#ifndef TESTS_CONTROLS_BITMAP_BUTTON_FIXTURE_H
#define TESTS_CONTROLS_BITMAP_BUTTON_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/controls/bitmap_button.h>

#include <controls/resources.h>
#include <support/message_pump.h>
#include <support/picture.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace WTL;

constexpr COLORREF behind = RGB(255, 255, 200), face = RGB(10, 200, 120), orange = RGB(0xE0, 0x60, 0x20);
constexpr int picture_size = 16;
constexpr int missing = 999;
constexpr auto other_type = static_cast<kexWTLButtonType>(2);

// A drawer of one colour that records its calls.
class Drawer : public wbzThemeDrawer {
 public:
  bool can_draw() const override {
    ++asked;
    if (on_can_draw) on_can_draw();
    return able;
  }
  void draw(HDC dc, const RECT& rect, wbzThemeStyle style) const override {
    styles.push_back(style);
    if (on_draw) on_draw();
    if (fails) throw std::runtime_error("cannot draw");
    const HBRUSH brush = CreateSolidBrush(face);
    FillRect(dc, &rect, brush);
    DeleteObject(brush);
  }
  bool able = true, fails = false;
  std::function<void()> on_can_draw, on_draw;
  mutable int asked = 0;
  mutable std::vector<int> styles;
};

// Counts its paintings and clicks. Its background has a distinct colour.
class ButtonsDialog : public CDialogImpl<ButtonsDialog> {
 public:
  enum { IDD = IDD_BUTTONS };
  BEGIN_MSG_MAP(ButtonsDialog)
    MESSAGE_HANDLER(WM_PAINT, OnPaint)
    MESSAGE_HANDLER(WM_ERASEBKGND, OnErase)
    COMMAND_ID_HANDLER(IDC_OPEN, OnOpen)
  END_MSG_MAP()
  LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&) {
    ++paints;
    const WTL::CPaintDC dc(m_hWnd);
    if (on_paint) on_paint();
    return 0;
  }
  LRESULT OnErase(UINT, WPARAM wParam, LPARAM, BOOL&) {
    RECT client;
    GetClientRect(&client);
    const HBRUSH brush = CreateSolidBrush(behind);
    FillRect(reinterpret_cast<HDC>(wParam), &client, brush);
    DeleteObject(brush);
    return 1;
  }
  LRESULT OnOpen(WORD code, WORD, HWND, BOOL&) {
    if (code == BN_CLICKED) ++clicks, mouse_at_click = GetCapture();
    return 0;
  }
  int paints = 0, clicks = 0;
  HWND mouse_at_click = nullptr;  // the window that has the mouse
  std::function<void()> on_paint;
};

// Exposes the protected members of the button.
class Button : public kexWTLBitmapButton {
 public:
  using kexWTLBitmapButton::DoPaint;
  using kexWTLBitmapButton::kexWTLBitmapButton;
  using kexWTLBitmapButton::OnPaint;
};

class BitmapButtonControl : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dialog_.Create(nullptr));
    images_.Create(picture_size, picture_size, ILC_COLOR32, 2, 2);
    pump_waiting();
  }
  void TearDown() override {
    if (dialog_.IsWindow()) dialog_.DestroyWindow();
    images_.Destroy();
  }

  HWND window() const { return dialog_.GetDlgItem(IDC_OPEN); }
  Button& make(kexWTLButtonType type, const char* tooltip = nullptr) {
    button_ = std::make_unique<Button>(type);
    button_->SetInfo(window(), &images_, IDB_FRAME, tooltip, GetModuleHandle(nullptr));
    pump_waiting();
    return *button_;
  }
  std::shared_ptr<Drawer> set_drawer() {
    auto drawer = std::make_shared<Drawer>();
    button_->set_themer(wbzThemer::create(drawer, nullptr));
    return drawer;
  }
  // The result of DoPaint over a background.
  Picture paint(bool themed) const {
    RECT client;
    button_->GetClientRect(&client);
    Picture picture(client.right, client.bottom, behind);
    button_->DoPaint(CDCHandle(picture.dc()), themed);
    return picture;
  }
  POINT middle() const {
    WTL::CRect client;
    button_->GetClientRect(client);
    return client.CenterPoint();
  }
  COLORREF color(bool themed = false) const { return paint(themed).at(middle().x, middle().y); }
  bool is_shifted(bool themed) const {
    RECT client;
    button_->GetClientRect(&client);
    const int left = (client.right - picture_size) / 2, top = (client.bottom - picture_size) / 2;
    const Picture picture = paint(themed);
    // The frame begins two pixels inside the picture.
    const COLORREF blue = RGB(0x20, 0x40, 0xA0);
    const bool at_place = picture.at(left + 2, top + 2) == blue && picture.at(left + 14, top + 14) != blue;
    const bool moved = picture.at(left + 2, top + 2) != blue && picture.at(left + 14, top + 14) == blue;
    EXPECT_NE(at_place, moved);
    return moved;
  }

  ButtonsDialog dialog_;
  WTL::CImageList images_;
  std::unique_ptr<Button> button_;
};

#endif
