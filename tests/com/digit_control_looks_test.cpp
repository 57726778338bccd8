// The drawing of the digit control of the examples.
#include <gtest/gtest.h>

#include <kexlib/com/activex.h>
#include <kexlib/com/digit_control.h>
#include <kexlib/com/registration_free.h>

#include <afx.h>
#include <digits.h>

#include <com/digit_control_fixture.h>
#include <support/message_pump.h>
#include <support/picture.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using namespace digit_control;

TEST_F(DrawnDigitsOnScreen, AreMadeThroughTheManifestOnly) {
  CComPtr<IUnknown> control;
  EXPECT_EQ(reg_free_co_create(digit_class, components().c_str(), "", CLSCTX_INPROC_SERVER, &control),
            REGDB_E_CLASSNOTREG);
  ASSERT_EQ(
      reg_free_co_create(digit_class, components().c_str(), drawing_manifest().c_str(), CLSCTX_INPROC_SERVER, &control),
      S_OK);
  CComQIPtr<IDigits> digits(control);
  ASSERT_NE(digits.p, nullptr);
  short lines = 0;
  EXPECT_EQ(digits->get_NbLines(&lines), S_OK);
  EXPECT_EQ(lines, 1);
  digits.Release();
  EXPECT_EQ(control.Detach()->Release(), 0u);
}

TEST_F(DrawnDigitsOnScreen, TakeThePlaceholdersPlaceInTheirOwnSize) {
  const Manifest known;
  CAxWindowT<CWindow> host;
  const CComPtr<IUnknown> control =
      CreateControl(dialog_.m_hWnd, &host, IDC_PLACEHOLDER, "{107BD0EE-6861-11CF-B28B-0000C0C14EA0}");
  ASSERT_NE(control.p, nullptr);
  // Six digits of 32 by 17 pixels with gaps of 4, the point of 6 and its gap, and margins of 8.
  RECT size;
  GetClientRect(host.m_hWnd, &size);
  EXPECT_EQ(size.right, 6 * 17 + 5 * 4 + 6 + 4 + 2 * 8);
  EXPECT_EQ(size.bottom, 32 + 2 * 8);
  RECT inside;
  GetClientRect(::GetWindow(host.m_hWnd, GW_CHILD), &inside);
  EXPECT_TRUE(EqualRect(&inside, &size));
  host.DestroyWindow();
}

TEST_F(DrawnDigitsOnScreen, AreMadeOfTheBarsOfTheirFigures) {
  // One digit of 80 pixels in height and 44 in width, in the middle.
  digits_.SetNbDigits(1);
  digits_.SetPrecision(0);
  set_font_size(digits_, 60);
  RECT size;
  GetClientRect(window_of(digits_), &size);
  const int x = (size.right - (44 + 40)) / 2 + 20, y = (size.bottom - (80 + 40)) / 2 + 20;
  const POINT bars[] = {{x + 22, y + 4}, {x + 40, y + 22}, {x + 40, y + 58}, {x + 22, y + 76},
                        {x + 4, y + 58}, {x + 4, y + 22},  {x + 22, y + 40}};
  const char* const lit[] = {"1111110", "0110000", "1101101", "1111001", "0110011",
                             "1011011", "1011111", "1110000", "1111111", "1111011"};
  for (int figure = 0; figure < 10; ++figure) {
    digits_.SetValue(0, figure);
    const Picture picture = shown(digits_);
    for (int bar = 0; bar < 7; ++bar)
      EXPECT_EQ(picture.at(bars[bar].x, bars[bar].y), lit[figure][bar] == '1' ? fore : mask) << figure << ' ' << bar;
    EXPECT_EQ(picture.at(x + 22, y + 22), back);  // within the upper ring
    EXPECT_EQ(picture.at(x - 8, y + 40), back);
  }
}

TEST_F(DrawnDigitsOnScreen, HaveAColourForValuesBeyondTheirBounds) {
  digits_.SetBounds(-10, 10);
  EXPECT_EQ(digits_.GetUpperBound(), 10.0);
  struct {
    double value;
    COLORREF color;
  } const cases[] = {{-10, fore}, {10, fore}, {10.5, overflow}, {-10.5, underflow}};
  for (const auto& each : cases) {
    digits_.SetValue(0, each.value);
    for (const COLORREF color : {fore, overflow, underflow})
      EXPECT_EQ(count(digits_, color) > 100, color == each.color) << each.value << ' ' << color;
  }
}

TEST_F(DrawnDigitsOnScreen, AreDashesWhereANumberHasNoRoom) {
  digits_.SetNbDigits(3);
  digits_.SetPrecision(0);
  digits_.SetDisplayMask(0);
  digits_.SetValue(0, 1000);
  const Picture dashes = shown(digits_);
  const int dash_pixels = count(digits_, fore);
  EXPECT_GT(dash_pixels, 0);
  for (const double other : {-100.0, 1e300, std::numeric_limits<double>::quiet_NaN(), HUGE_VAL}) {
    digits_.SetValue(0, other);
    if (other != HUGE_VAL) {  // beyond the bounds
      EXPECT_TRUE(shown(digits_) == dashes) << other;
    } else {
      EXPECT_EQ(count(digits_, overflow), dash_pixels);
    }
  }
  digits_.SetValue(0, 999);
  EXPECT_FALSE(shown(digits_) == dashes);
}

TEST_F(DrawnDigitsOnScreen, ShowWhatTheirSwitchesSay) {
  digits_.SetValue(0, 8.88);
  EXPECT_GT(count(digits_, fore), 100);
  EXPECT_GT(count(digits_, mask), 100);
  digits_.SetDisplayMask(0);
  EXPECT_EQ(count(digits_, mask), 0);
  digits_.SetDisplay(0);
  EXPECT_EQ(count(digits_, fore), 0);
  digits_.SetDisplay(1);
  digits_.SetEnabled(0);
  EXPECT_EQ(count(digits_, fore), 0);
  EXPECT_GT(count(digits_, RGB(125, 189, 120)), 100);  // half way to the background
  EXPECT_FALSE(IsWindowEnabled(window_of(digits_)));
}

TEST_F(DrawnDigitsOnScreen, FlashUntilToldToStop) {
  digits_.SetValue(0, 8.88);
  digits_.SetFlashing(1);
  EXPECT_TRUE(pump_until([&] { return count(digits_, fore) == 0; }));
  EXPECT_TRUE(pump_until([&] { return count(digits_, fore) > 0; }));
  EXPECT_TRUE(pump_until([&] { return count(digits_, fore) == 0; }));
  digits_.SetFlashing(0);
  EXPECT_GT(count(digits_, fore), 0);
}

TEST_F(DrawnDigitsOnScreen, FollowTheirFontWhoeverChangesIt) {
  const SIZEL before = extent();
  kexOleFont font = digits_.GetFont();
  EXPECT_EQ(font.GetSize().int64, 240000);
  font.SetSize(money(480000));
  const SIZEL larger = extent();
  EXPECT_GT(larger.cx, before.cx);
  EXPECT_GT(larger.cy, before.cy);
  font.SetName("Arial");
  font.SetBold(1);
  digits_.initialise();
  EXPECT_EQ(font.GetName(), "Tahoma");
  EXPECT_EQ(font.GetBold(), 0);
  EXPECT_EQ(font.GetSize().int64, 480000);

  // A font object of the caller, which the control shares.
  FONTDESC wanted = {
      sizeof(FONTDESC), const_cast<wchar_t*>(L"Arial"), money(240000), FW_NORMAL, 0, FALSE, FALSE, FALSE};
  CComPtr<IFontDisp> own;
  ASSERT_EQ(OleCreateFontIndirect(&wanted, IID_IFontDisp, reinterpret_cast<void**>(&own)), S_OK);
  digits_.SetFont(own);
  EXPECT_EQ(extent().cy, before.cy);
  kexOleFont shared = digits_.GetFont();
  shared.SetSize(money(360000));
  CComQIPtr<IFont> same(own);
  CY size = {};
  EXPECT_EQ(same->get_Size(&size), S_OK);
  EXPECT_EQ(size.int64, 360000);
  EXPECT_GT(extent().cy, before.cy);
}

TEST_F(DrawnDigitsOnScreen, ReckonTheSizesThatSuitThem) {
  // 48 pixels are a margin of 8, a digit of 32 and a margin of 8.
  EXPECT_EQ(digits_.GetOptimalFontSize(48).int64, 240000);
  EXPECT_EQ(digits_.GetOptimalWidth(48), 148);
  EXPECT_EQ(digits_.GetOptimalWidth2(48, money(480000)), 148);
  EXPECT_LT(digits_.GetOptimalWidth2(48, money(120000)), 148);
  // Only the low 16 bits of the height are passed.
  EXPECT_EQ(digits_.GetOptimalWidth2(70000, money(1000 * 10000)), digits_.GetOptimalWidth2(4464, money(1000 * 10000)));
  digits_.CalculateFontSizeToFit();
  const LONGLONG fitting = digits_.GetFont().GetSize().int64;
  EXPECT_EQ(fitting, 450000);  // 60 pixels, or 90 with the margins of 15
  digits_.SetNbDigits(12);
  digits_.CalculateFontSizeToFit();
  EXPECT_LT(digits_.GetFont().GetSize().int64, fitting);
}

TEST_F(DrawnDigitsOnScreen, DrawIntoAnyDeviceContext) {
  digits_.SetValue(0, 8.88);
  CComQIPtr<IViewObject2> view(digits_.GetControlUnknown());
  const Picture picture(148, 48, RGB(1, 2, 3));
  const RECTL bounds = {0, 0, 148, 48};
  EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, picture.dc(), &bounds, nullptr, nullptr, 0),
            S_OK);
  EXPECT_EQ(picture.at(4, 4), back);
  EXPECT_EQ(picture.at(110, 9), fore);
  EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, picture.dc(), nullptr, nullptr, nullptr, 0),
            E_POINTER);
  EXPECT_EQ(view->Draw(DVASPECT_ICON, -1, nullptr, nullptr, nullptr, picture.dc(), &bounds, nullptr, nullptr, 0),
            DV_E_DVASPECT);
}

void CALLBACK close_box(HWND, UINT, UINT_PTR timer, DWORD) {
  const HWND box = FindWindowA("#32770", "Digit control");
  if (!box) return;
  KillTimer(nullptr, timer);
  PostMessageA(box, WM_COMMAND, IDOK, 0);
}

TEST_F(DrawnDigitsOnScreen, TellAboutThemselves) {
  SetTimer(nullptr, 0, 20, close_box);
  digits_.AboutBox();
  EXPECT_EQ(FindWindowA("#32770", "Digit control"), nullptr);
}

TEST_F(DrawnDigitsOnScreen, LookLikeDigits) {
  digits_.SetBackColor(RGB(252, 252, 250));
  digits_.SetForeColor(RGB(24, 40, 72));
  digits_.SetNbLines(3);
  digits_.SetText("Position (mm)");
  const char* const titles[] = {"X", "Y", "Depth"};
  for (short line = 0; line < 3; ++line) digits_.SetTitle(line, titles[line]);
  digits_.SetBounds(-100, 100);
  digits_.SetPoint(12.5, -98.76, 104.3);
  digits_.SetInternalBorder(1);
  MoveWindow(digits_.m_hWnd, 10, 50, 310, 180, TRUE);
  digits_.CalculateFontSizeToFit();
  EXPECT_TRUE(shown(digits_).save("digit_control"));
  digits_.SetType(1);
  digits_.SetDisplayMask(0);
  digits_.SetAppearance(1);
  EXPECT_TRUE(shown(digits_).save("digit_control_glyphs"));
  digits_.SetType(0);
  digits_.SetDisplayMask(1);
  digits_.GetFont().SetItalic(1);
  digits_.SetBackColor(RGB(16, 20, 16));
  digits_.SetForeColor(RGB(90, 255, 130));
  digits_.SetMaskColor(RGB(32, 44, 34));
  digits_.SetOverflowColor(RGB(255, 96, 80));
  digits_.SetInternalBorder(0);
  EXPECT_TRUE(shown(digits_).save("digit_control_dark"));
}

}  // namespace
