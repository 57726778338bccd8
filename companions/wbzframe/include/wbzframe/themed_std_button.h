// wbzThemedStdButton: the face of a push button.
#ifndef WBZFRAME_THEMED_STD_BUTTON_H
#define WBZFRAME_THEMED_STD_BUTTON_H

#include <wbzframe/themer.h>

// Draws with the visual style of the button's window (uxtheme). Without one, because visual styles are off for the
// system, the program or the window, or because there is no window, it draws with DrawFrameControl.
class KEXLIB_API wbzThemedStdButton : public wbzThemeDrawer {
 public:
  // The window handle is read through the pointer at each call: the pointer must stay valid as long as the drawer. Null
  // means no window.
  static std::shared_ptr<wbzThemeDrawer> create(HWND* window);

  // Whether the window has a visual style.
  bool can_draw() const override;

  // Draws the face.
  void draw(HDC dc, const RECT& rect, wbzThemeStyle style) const override;

 private:
  explicit wbzThemedStdButton(HWND* window);

  const HWND* window_;
};

#endif
