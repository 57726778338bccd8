// wbzThemedStdButton: the face of a push button.
#ifndef WBZFRAME_THEMED_STD_BUTTON_H
#define WBZFRAME_THEMED_STD_BUTTON_H

#include <wbzframe/themer.h>

// Draws with the visual style of the button's window (uxtheme). Where there is none, because the styles are off for the
// system, the program or the window, or because there is no window, it draws what DrawFrameControl makes of a button.
class KEXLIB_API wbzThemedStdButton : public wbzThemeDrawer {
 public:
  // The window is read through the pointer whenever it is needed: it has to stay valid as long as the drawer. A null
  // pointer is as no window.
  static std::shared_ptr<wbzThemeDrawer> create(HWND* window);

  // Whether the window has a visual style.
  bool can_draw() const override;

  // The face, for the window's style or plain.
  void draw(HDC dc, const RECT& rect, wbzThemeStyle style) const override;

 private:
  explicit wbzThemedStdButton(HWND* window);

  const HWND* window_;
};

#endif
