// wbzThemer: paints the face of a control, with one drawer or two.
#ifndef WBZFRAME_THEMER_H
#define WBZFRAME_THEMER_H

#include <kexlib/export.h>

#include <windows.h>

#include <memory>

// The state of a control. Other values are drawn as normal.
enum wbzThemeStyle : int {
  wbzThemeNormal = 0,
  wbzThemeDisabled = 1,
  wbzThemeHot = 2,  // under the mouse, or with the focus
  wbzThemePressed = 3
};

// Draws one kind of control.
class KEXLIB_API wbzThemeDrawer {
 public:
  // Drawers are shared, not copied.
  wbzThemeDrawer() = default;
  wbzThemeDrawer(const wbzThemeDrawer&) = delete;
  wbzThemeDrawer& operator=(const wbzThemeDrawer&) = delete;
  // Themers own their drawers.
  virtual ~wbzThemeDrawer();

  // Whether it can draw in the system's visual style now.
  virtual bool can_draw() const = 0;

  // Draws into the rectangle. The background shows through transparent parts of the style.
  virtual void draw(HDC dc, const RECT& rect, wbzThemeStyle style) const = 0;
};

// Paints a control with its drawers.
class KEXLIB_API wbzThemer {
 public:
  // Draws with `drawer`, then with `second` over it. Either may be empty.
  static std::shared_ptr<wbzThemer> create(std::shared_ptr<wbzThemeDrawer> drawer,
                                           std::shared_ptr<wbzThemeDrawer> second);

  // Whether the themer has a drawer and all its drawers can draw in the visual style now. False for an empty pointer.
  static bool can_draw(std::shared_ptr<wbzThemer> themer);

  // Draws with the drawers. Exceptions of a drawer are passed on.
  void draw_theme(HDC dc, const RECT& rect, wbzThemeStyle state) const;

 private:
  wbzThemer(std::shared_ptr<wbzThemeDrawer> drawer, std::shared_ptr<wbzThemeDrawer> second);

  std::shared_ptr<wbzThemeDrawer> drawer_;
  std::shared_ptr<wbzThemeDrawer> second_;
};

#endif
