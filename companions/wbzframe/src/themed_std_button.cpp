#include <windows.h>
#include <uxtheme.h>
#include <vsstyle.h>

#include <wbzframe/themed_std_button.h>

namespace {

// The visual style of a window's buttons, open while the object exists.
class ButtonTheme {
 public:
  explicit ButtonTheme(HWND window) : theme_(window ? OpenThemeData(window, L"BUTTON") : nullptr) {}
  ButtonTheme(const ButtonTheme&) = delete;
  ButtonTheme& operator=(const ButtonTheme&) = delete;
  ~ButtonTheme() {
    if (theme_) CloseThemeData(theme_);
  }
  operator HTHEME() const { return theme_; }

 private:
  HTHEME theme_;
};

int state_of(wbzThemeStyle style) {
  switch (style) {
    case wbzThemeDisabled:
      return PBS_DISABLED;
    case wbzThemeHot:
      return PBS_HOT;
    case wbzThemePressed:
      return PBS_PRESSED;
    default:
      return PBS_NORMAL;
  }
}

void draw_plainly(HDC dc, RECT rect, wbzThemeStyle style) {
  const UINT state = style == wbzThemePressed    ? DFCS_PUSHED
                     : style == wbzThemeDisabled ? DFCS_INACTIVE
                     : style == wbzThemeHot      ? DFCS_HOT
                                                 : 0;
  DrawFrameControl(dc, &rect, DFC_BUTTON, DFCS_BUTTONPUSH | state);
}

}  // namespace

wbzThemedStdButton::wbzThemedStdButton(HWND* window) : window_(window) {}

std::shared_ptr<wbzThemeDrawer> wbzThemedStdButton::create(HWND* window) {
  return std::shared_ptr<wbzThemeDrawer>(new wbzThemedStdButton(window));
}

bool wbzThemedStdButton::can_draw() const { return ButtonTheme(window_ ? *window_ : nullptr) != nullptr; }

void wbzThemedStdButton::draw(HDC dc, const RECT& rect, wbzThemeStyle style) const {
  const ButtonTheme theme(window_ ? *window_ : nullptr);
  if (theme)
    DrawThemeBackground(theme, dc, BP_PUSHBUTTON, state_of(style), &rect, nullptr);
  else
    draw_plainly(dc, rect, style);
}
