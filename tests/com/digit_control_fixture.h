// The common parts of the digit control's tests, and the control of examples/components/digit_control in a dialog.
#ifndef TESTS_COM_DIGIT_CONTROL_FIXTURE_H
#define TESTS_COM_DIGIT_CONTROL_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/com/digit_control.h>

#include <com/resources.h>
#include <support/files.h>
#include <support/picture.h>

#include <string>

namespace digit_control {

constexpr CLSID digit_class = {0x107BD0EE, 0x6861, 0x11CF, {0xB2, 0x8B, 0x00, 0x00, 0xC0, 0xC1, 0x4E, 0xA0}};
constexpr DWORD style = WS_CHILD | WS_VISIBLE;
constexpr RECT place{10, 20, 130, 100};

inline CY money(LONGLONG ten_thousandths) {
  CY value;
  value.int64 = ten_thousandths;
  return value;
}
inline const CY some_money = money(123456);

// A control that draws: examples/components/digit_control, which is not registered.

inline std::string components() { return (program_folder() / "components").string(); }
inline std::string drawing_manifest() { return components() + "\\digit_control.manifest"; }

// Keeps the manifest active on this thread while the object exists.
class Manifest {
 public:
  Manifest() {
    const std::string path = drawing_manifest();
    ACTCTXA wanted = {};
    wanted.cbSize = sizeof wanted;
    wanted.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
    wanted.lpSource = path.c_str();
    const std::string folder = components();
    wanted.lpAssemblyDirectory = folder.c_str();
    context_ = CreateActCtxA(&wanted);
    EXPECT_NE(context_, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(ActivateActCtx(context_, &cookie_));
  }
  Manifest(const Manifest&) = delete;
  Manifest& operator=(const Manifest&) = delete;
  ~Manifest() {
    DeactivateActCtx(0, cookie_);
    ReleaseActCtx(context_);
  }

 private:
  HANDLE context_;
  ULONG_PTR cookie_ = 0;
};

constexpr COLORREF back = RGB(250, 250, 240), fore = RGB(0, 128, 0), mask = RGB(220, 220, 220),
                   overflow = RGB(200, 0, 0), underflow = RGB(0, 0, 200);

class DrawnDigitsOnScreen : public testing::Test {
 protected:
  DrawnDigitsOnScreen() {
    EXPECT_EQ(OleInitialize(nullptr), S_OK);
    dialog_.Attach(CreateDialogParamA(nullptr, MAKEINTRESOURCEA(IDD_HOST), nullptr, nullptr, 0));
    GetWindowRect(GetDlgItem(dialog_.m_hWnd, IDC_PLACEHOLDER), &place_);
    MapWindowPoints(nullptr, dialog_.m_hWnd, reinterpret_cast<POINT*>(&place_), 2);
    place_.right = place_.left + 280;
    place_.bottom = place_.top + 90;
    EXPECT_TRUE(create(digits_, place_));
    colour(digits_);
  }
  ~DrawnDigitsOnScreen() override {
    digits_.DestroyWindow();
    dialog_.DestroyWindow();
    OleUninitialize();
  }

  BOOL create(kexDigitOCX& control, const RECT& where, CFile* state = nullptr) {
    const Manifest known;
    return control.Create(nullptr, style, where, &dialog_, 0, state, FALSE, nullptr);
  }
  static void colour(kexDigitOCX& control) {
    control.SetBackColor(back);
    control.SetForeColor(fore);
    control.SetMaskColor(mask);
    control.SetOverflowColor(overflow);
    control.SetUnderflowColor(underflow);
  }
  static HWND window_of(kexDigitOCX& control) { return ::GetWindow(control.m_hWnd, GW_CHILD); }
  static Picture shown(kexDigitOCX& control) {
    UpdateWindow(window_of(control));
    return Picture(window_of(control));
  }
  // The number of pixels of a colour in a picture of the control.
  static int count(kexDigitOCX& control, COLORREF color) {
    RECT size;
    GetClientRect(window_of(control), &size);
    const Picture picture = shown(control);
    int found = 0;
    for (int y = 0; y < size.bottom; ++y)
      for (int x = 0; x < size.right; ++x) found += picture.at(x, y) == color;
    return found;
  }
  SIZEL extent() {
    SIZEL size = {};
    CComQIPtr<IOleObject> object(digits_.GetControlUnknown());
    EXPECT_EQ(object->GetExtent(DVASPECT_CONTENT, &size), S_OK);
    return size;
  }
  static void set_font_size(kexDigitOCX& control, LONGLONG points) {
    kexOleFont font = control.GetFont();
    font.SetSize(money(points * 10000));
  }

  CWnd dialog_;
  RECT place_;
  kexDigitOCX digits_;
};

}  // namespace digit_control

#endif
