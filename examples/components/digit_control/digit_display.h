// Lines of digits: their appearance, size and drawing. Independent of COM.
//
//     +-----------------------+
//     | Text                  |    the heading
//     | Title   -12.50        |    a line: its title, a cell for each digit, a point before the decimals
//     | Title     8.88        |
//     +-----------------------+
#ifndef EXAMPLES_COMPONENTS_DIGIT_CONTROL_DIGIT_DISPLAY_H
#define EXAMPLES_COMPONENTS_DIGIT_CONTROL_DIGIT_DISPLAY_H

#include <windows.h>

#include <string>
#include <vector>

// Numbers and flags only. A saved state contains all members.
struct DigitLook {
  enum Type : short { segments, glyphs };  // seven bars each, or the font's own figures

  COLORREF back = 0x80000000 | COLOR_WINDOW;  // OLE's colours
  COLORREF fore = RGB(24, 40, 72);
  COLORREF mask = RGB(226, 230, 236);  // bars that are off
  COLORREF overflow = RGB(200, 40, 40);
  COLORREF underflow = RGB(32, 96, 200);
  short appearance = 0;    // 0 flat, 1 sunken
  short border_style = 1;  // 0 none, 1 a line
  short gap = 4;           // pixels between digits
  short line_gap = 8;      // pixels between lines
  short digits = 6;
  short precision = 2;  // decimals
  short type = segments;
  bool shows_digits = true;
  bool shows_mask = true;
  bool shows_titles = true;
  bool has_line_borders = false;
  bool is_enabled = true;
  bool finds_own_size = true;
  double lower = -1e300;  // values beyond the bounds have separate colours
  double upper = 1e300;

  // The valid settings.
  static constexpr short most_digits = 32, most_lines = 64, most_decimals = 15, largest_gap = 200;
  bool is_sound() const;
};

struct DigitLine {
  double value = 0;
  std::wstring title;
};

struct DigitDisplay {
  DigitLook look;
  LOGFONTW font = {};  // its height is the height of a digit, in pixels
  std::wstring text;
  std::vector<DigitLine> lines = std::vector<DigitLine>(1);

  // The size in pixels at which nothing is clipped.
  SIZE natural_size() const;
  // Draws in the middle of a rectangle of any size. `lit` applies to digits that flash.
  void draw(HDC dc, const RECT& place, bool lit = true) const;
};

// The characters of the cells from left to right, with the point, if any, at its position. If the number does not fit,
// each cell contains a dash.
std::string digits_of(double value, short digits, short precision);

#endif
