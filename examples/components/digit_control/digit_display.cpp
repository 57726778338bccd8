#include <olectl.h>

#include <digit_control/digit_display.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

COLORREF rgb(OLE_COLOR color) {
  COLORREF translated = 0;
  OleTranslateColor(color, nullptr, &translated);
  return translated;
}

COLORREF between(COLORREF one, COLORREF other) {
  const auto middle = [](int a, int b) { return (a + b) / 2; };
  return RGB(middle(GetRValue(one), GetRValue(other)), middle(GetGValue(one), GetGValue(other)),
             middle(GetBValue(one), GetBValue(other)));
}

// Owns a GDI object and keeps it selected during its lifetime.
class Selected {
 public:
  Selected(HDC dc, HGDIOBJ object) : dc_(dc), object_(object), before_(SelectObject(dc, object)) {}
  Selected(const Selected&) = delete;
  Selected& operator=(const Selected&) = delete;
  ~Selected() {
    SelectObject(dc_, before_);
    DeleteObject(object_);
  }

 private:
  HDC dc_;
  HGDIOBJ object_, before_;
};

void fill(HDC dc, const RECT& place, COLORREF color) {
  const HBRUSH brush = CreateSolidBrush(color);
  FillRect(dc, &place, brush);
  DeleteObject(brush);
}

LOGFONTW of_height(LOGFONTW font, int height) {
  font.lfHeight = -height;
  return font;
}

int width_of(HDC dc, const std::wstring& text) {
  SIZE size = {};
  GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
  return size.cx;
}

// The layout, relative to the block's top left corner, in units of 1 / `scale` pixel.
struct Layout {
  int scale, digit_height, text_height, stroke, slant, cell, gap, point, margin, frame, line_gap;
  int titles = 0, heading = 0;  // widths and heights with the space after them
  int line_width, line_height, width, height;

  Layout(HDC dc, const DigitDisplay& display, int scale_wanted) : scale(scale_wanted) {
    const DigitLook& look = display.look;
    digit_height = std::max(abs(static_cast<int>(display.font.lfHeight)), 6) * scale;
    text_height = std::max(digit_height * 9 / 20, 10 * scale);
    stroke = std::max(digit_height / (display.font.lfWeight >= FW_SEMIBOLD ? 6 : 9), scale);
    slant = look.type == DigitLook::segments && display.font.lfItalic ? digit_height / 8 : 0;
    gap = look.gap * scale;
    margin = digit_height / 4;
    frame = look.has_line_borders ? digit_height / 6 : 0;
    line_gap = look.line_gap * scale;
    cell = digit_height * 11 / 20;
    if (look.type == DigitLook::glyphs) {
      const LOGFONTW digit_font_wanted = of_height(display.font, digit_height);
      const Selected digit_font(dc, CreateFontIndirectW(&digit_font_wanted));
      cell = width_of(dc, L"0");
    }
    point = look.precision > 0 ? 2 * stroke : 0;
    const LOGFONTW text_font_wanted = of_height(display.font, text_height);
    const Selected text_font(dc, CreateFontIndirectW(&text_font_wanted));
    if (look.shows_titles)
      for (const DigitLine& line : display.lines) titles = std::max(titles, width_of(dc, line.title));
    if (titles) titles += digit_height / 3;
    if (!display.text.empty()) heading = text_height * 3 / 2;
    line_width = look.digits * cell + (look.digits - 1) * gap + (point ? point + gap : 0) + slant + 2 * frame;
    line_height = digit_height + 2 * frame;
    const int lines = static_cast<int>(display.lines.size());
    width = std::max(titles + line_width, width_of(dc, display.text)) + 2 * margin;
    height = heading + lines * line_height + (lines - 1) * line_gap + 2 * margin;
  }
};

// The bars of a figure: clockwise from the top, the middle bar last.
int bars_of(char figure) {
  constexpr int bars[] = {0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};
  if (figure == '-') return 0x40;
  return figure >= '0' && figure <= '9' ? bars[figure - '0'] : 0;
}

// A bar between two points, with pointed ends and a thin gap to its neighbours.
void draw_bar(HDC dc, POINT from, POINT to, int stroke, int slant, int slant_height, POINT corner) {
  const int half = stroke / 2, away = std::max(stroke / 8, 1);
  POINT points[6];
  if (from.y == to.y) {
    const LONG x0 = from.x + away, x1 = to.x - away, y = from.y;
    const POINT flat[] = {{x0, y}, {x0 + half, y - half}, {x1 - half, y - half},
                          {x1, y}, {x1 - half, y + half}, {x0 + half, y + half}};
    std::copy_n(flat, 6, points);
  } else {
    const LONG y0 = from.y + away, y1 = to.y - away, x = from.x;
    const POINT upright[] = {{x, y0}, {x + half, y0 + half}, {x + half, y1 - half},
                             {x, y1}, {x - half, y1 - half}, {x - half, y0 + half}};
    std::copy_n(upright, 6, points);
  }
  for (POINT& each : points) {
    each.x += corner.x + slant * (slant_height - each.y) / slant_height;
    each.y += corner.y;
  }
  Polygon(dc, points, 6);
}

void draw_bars(HDC dc, const Layout& layout, POINT corner, int bars, COLORREF color) {
  const Selected pen(dc, CreatePen(PS_SOLID, 1, color));
  const Selected brush(dc, CreateSolidBrush(color));
  const LONG half = layout.stroke / 2, left = half, right = layout.cell - half, top = half,
             middle = layout.digit_height / 2, bottom = layout.digit_height - half;
  const POINT ends[][2] = {{{left, top}, {right, top}},        {{right, top}, {right, middle}},
                           {{right, middle}, {right, bottom}}, {{left, bottom}, {right, bottom}},
                           {{left, middle}, {left, bottom}},   {{left, top}, {left, middle}},
                           {{left, middle}, {right, middle}}};
  for (int i = 0; i < 7; ++i)
    if (bars & 1 << i) draw_bar(dc, ends[i][0], ends[i][1], layout.stroke, layout.slant, layout.digit_height, corner);
}

void draw_text(HDC dc, const std::wstring& text, RECT place, UINT format, COLORREF color) {
  SetTextColor(dc, color);
  DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place, format | DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP);
}

void draw_figure(HDC dc, const Layout& layout, short type, POINT corner, char figure, COLORREF color) {
  if (type == DigitLook::segments) return draw_bars(dc, layout, corner, bars_of(figure), color);
  const RECT place = {corner.x, corner.y, corner.x + layout.cell, corner.y + layout.digit_height};
  draw_text(dc, std::wstring(1, static_cast<wchar_t>(figure)), place, DT_CENTER | DT_VCENTER, color);
}

// Draws the point on the baseline of the digits.
void draw_point(HDC dc, const Layout& layout, short type, POINT corner, COLORREF color) {
  const LONG bottom = corner.y + layout.digit_height;
  if (type == DigitLook::glyphs) {
    draw_text(dc, L".", {corner.x, corner.y, corner.x + layout.point, bottom}, DT_CENTER | DT_VCENTER, color);
  } else {
    const LONG left = corner.x + layout.stroke / 2;
    fill(dc, {left, bottom - layout.stroke, left + layout.stroke, bottom}, color);
  }
}

COLORREF color_of(const DigitLook& look, double value) {
  COLORREF color = rgb(value > look.upper ? look.overflow : value < look.lower ? look.underflow : look.fore);
  return look.is_enabled ? color : between(color, rgb(look.back));
}

void draw_digits(HDC dc, const Layout& layout, const DigitDisplay& display, POINT corner, double value, bool lit) {
  const DigitLook& look = display.look;
  const COLORREF color = color_of(look, value), mask = rgb(look.mask);
  const bool shown = lit && look.shows_digits;
  for (char figure : digits_of(value, look.digits, look.precision)) {
    if (figure == '.') {
      if (shown || look.shows_mask) draw_point(dc, layout, look.type, corner, shown ? color : mask);
      corner.x += layout.point + layout.gap;
      continue;
    }
    if (look.shows_mask) draw_figure(dc, layout, look.type, corner, '8', mask);
    if (shown) draw_figure(dc, layout, look.type, corner, figure, color);
    corner.x += layout.cell + layout.gap;
  }
}

void draw_block(HDC dc, const Layout& layout, const DigitDisplay& display, POINT corner, bool lit) {
  const DigitLook& look = display.look;
  const COLORREF words = look.is_enabled ? rgb(look.fore) : between(rgb(look.fore), rgb(look.back));
  LONG x = corner.x + layout.margin, y = corner.y + layout.margin;
  SetBkMode(dc, TRANSPARENT);
  const LOGFONTW small_font = of_height(display.font, layout.text_height);
  const LOGFONTW large_font = of_height(display.font, layout.digit_height);
  {
    const Selected text_font(dc, CreateFontIndirectW(&small_font));
    const RECT heading = {x, y, corner.x + layout.width - layout.margin, y + layout.text_height};
    draw_text(dc, display.text, heading, DT_LEFT | DT_VCENTER, words);
    y += layout.heading;
    RECT title = {x, y, x + layout.titles, y + layout.line_height};
    for (const DigitLine& line : display.lines) {
      if (look.shows_titles) draw_text(dc, line.title, title, DT_LEFT | DT_VCENTER, words);
      OffsetRect(&title, 0, layout.line_height + layout.line_gap);
    }
  }
  const Selected digit_font(dc, CreateFontIndirectW(&large_font));
  // The digits are right-aligned, whatever the width of the heading.
  x = corner.x + layout.width - layout.margin - layout.line_width;
  for (const DigitLine& line : display.lines) {
    if (look.has_line_borders) {
      const RECT outside = {x, y, x + layout.line_width, y + layout.line_height};
      const int line_size = layout.scale;
      fill(dc, outside, between(rgb(look.fore), rgb(look.back)));
      fill(dc,
           {outside.left + line_size, outside.top + line_size, outside.right - line_size, outside.bottom - line_size},
           rgb(look.back));
    }
    draw_digits(dc, layout, display, {x + layout.frame, y + layout.frame}, line.value, lit);
    y += layout.line_height + layout.line_gap;
  }
}

void draw_border(HDC dc, RECT place, const DigitLook& look) {
  if (look.border_style == 0) return;
  if (look.appearance == 1) {
    DrawEdge(dc, &place, EDGE_SUNKEN, BF_RECT);
  } else {
    const HBRUSH brush = CreateSolidBrush(between(rgb(look.fore), rgb(look.back)));
    FrameRect(dc, &place, brush);
    DeleteObject(brush);
  }
}

// A bitmap to draw in, larger than the target: scaling it down makes the edges smooth.
class Canvas {
 public:
  Canvas(HDC screen, int width, int height)
      : dc_(CreateCompatibleDC(screen)),
        bitmap_(CreateCompatibleBitmap(screen, width, height)),
        before_(SelectObject(dc_, bitmap_)) {}
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  ~Canvas() {
    SelectObject(dc_, before_);
    DeleteObject(bitmap_);
    DeleteDC(dc_);
  }
  HDC dc() const { return dc_; }

 private:
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ before_;
};

}  // namespace

bool DigitLook::is_sound() const {
  const auto within = [](short value, short least, short most) { return value >= least && value <= most; };
  COLORREF translated;
  for (const COLORREF color : {back, fore, mask, overflow, underflow})
    if (FAILED(OleTranslateColor(color, nullptr, &translated))) return false;
  return within(appearance, 0, 1) && within(border_style, 0, 1) && within(gap, 0, largest_gap) &&
         within(line_gap, 0, largest_gap) && within(digits, 1, most_digits) && within(precision, 0, most_decimals) &&
         within(type, segments, glyphs) && lower <= upper;
}

std::string digits_of(double value, short digits, short precision) {
  char text[400];  // the longest number has 309 figures before the point
  const int length = snprintf(text, sizeof text, "%.*f", precision, value);
  std::string number(text, static_cast<size_t>(length));
  const bool is_zero = number.find_first_of("123456789") == std::string::npos;
  if (is_zero && number[0] == '-') number.erase(0, 1);
  const int cells = static_cast<int>(number.size()) - (precision > 0 ? 1 : 0);
  if (std::isfinite(value) && cells <= digits) return std::string(static_cast<size_t>(digits - cells), ' ') + number;
  std::string dashes(static_cast<size_t>(digits), '-');
  if (precision > 0) dashes.insert(static_cast<size_t>(std::max(digits - precision, 0)), 1, '.');
  return dashes;
}

SIZE DigitDisplay::natural_size() const {
  const HDC dc = CreateCompatibleDC(nullptr);
  const Layout layout(dc, *this, 1);
  DeleteDC(dc);
  return {layout.width, layout.height};
}

void DigitDisplay::draw(HDC dc, const RECT& place, bool lit) const {
  const int width = place.right - place.left, height = place.bottom - place.top;
  if (width <= 0 || height <= 0) return;
  const int scale = width < 2000 && height < 1000 ? 4 : 1;  // a bitmap of at most 128 MB
  const Canvas canvas(dc, width * scale, height * scale);
  fill(canvas.dc(), {0, 0, width * scale, height * scale}, rgb(look.back));
  const Layout layout(canvas.dc(), *this, scale);
  // Aligned to whole pixels, so that the digits' straight edges are sharp.
  const auto in_the_middle = [=](int room, int needed) { return (room - needed / scale) / 2 * scale; };
  draw_block(canvas.dc(), layout, *this, {in_the_middle(width, layout.width), in_the_middle(height, layout.height)},
             lit);
  SetStretchBltMode(dc, HALFTONE);
  SetBrushOrgEx(dc, 0, 0, nullptr);
  StretchBlt(dc, place.left, place.top, width, height, canvas.dc(), 0, 0, width * scale, height * scale, SRCCOPY);
  draw_border(dc, place, look);
}
