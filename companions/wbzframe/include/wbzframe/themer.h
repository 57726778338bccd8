// wbzThemer: paints the face of a control, with one drawer or two.
#ifndef WBZFRAME_THEMER_H
#define WBZFRAME_THEMER_H

#include <kexlib/export.h>

#include <windows.h>

#include <memory>

// What a control is drawn as. Other values are drawn as normal.
enum wbzThemeStyle : int {
  wbzThemeNormal = 0,
  wbzThemeDisabled = 1,
  wbzThemeHot = 2,  // under the mouse, or with the focus
  wbzThemePressed = 3
};

// Draws one kind of control.
class KEXLIB_API wbzThemeDrawer {
 public:
  // No copies: drawers are shared.
  wbzThemeDrawer() = default;
  wbzThemeDrawer(const wbzThemeDrawer&) = delete;
  wbzThemeDrawer& operator=(const wbzThemeDrawer&) = delete;
  // Drawers are owned by those who draw with them.
  virtual ~wbzThemeDrawer();

  // Whether it can draw in the system's visual style now.
  virtual bool can_draw() const = 0;

  // Draws into the rectangle; what lies behind shows through where the style is transparent.
  virtual void draw(HDC dc, const RECT& rect, wbzThemeStyle style) const = 0;
};

// What a control is painted with.
class KEXLIB_API wbzThemer {
 public:
  // Draws with the one, and then with the second over it. Either may be empty.
  static std::shared_ptr<wbzThemer> create(std::shared_ptr<wbzThemeDrawer> drawer,
                                           std::shared_ptr<wbzThemeDrawer> second);

  // Whether the themer's drawers, of which there is at least one, can draw in the visual style now. An empty themer
  // cannot.
  static bool can_draw(std::shared_ptr<wbzThemer> themer);

  // Paints.
  void draw_theme(HDC dc, const RECT& rect, wbzThemeStyle state) const;

 private:
  wbzThemer(std::shared_ptr<wbzThemeDrawer> drawer, std::shared_ptr<wbzThemeDrawer> second);

  std::shared_ptr<wbzThemeDrawer> drawer_;
  std::shared_ptr<wbzThemeDrawer> second_;
};

#endif
