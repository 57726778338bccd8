#include <parts_list/parts_picture.h>

#include <algorithm>

namespace parts_list {

namespace {

constexpr COLORREF paper = RGB(252, 252, 248), bar_color = RGB(120, 160, 205), ink = RGB(30, 40, 55);
constexpr int shown_at_least = 6;  // so that one part does not fill the sheet

}  // namespace

void PartsPicture::draw(const std::vector<Part>& parts, int width, int height) {
  create(width, height);
  Fill(parts.empty() ? ::GetSysColor(COLOR_BTNFACE) : paper);
  double longest = 0;
  for (const Part& part : parts) longest = std::max(longest, part.millimetres);
  const int count = std::max(shown_at_least, static_cast<int>(parts.size()));
  for (size_t i = 0; i < parts.size() && longest > 0; ++i) {
    const int top = 4 + static_cast<int>(i) * (height - 8) / count;
    const int bottom = 4 + static_cast<int>(i + 1) * (height - 8) / count - 2;
    draw_bar(parts[i], {4, top, 4 + static_cast<int>((width - 8) * parts[i].millimetres / longest), bottom});
  }
  draw_button_edge(0, ::GetSysColor(COLOR_BTNFACE));
  if (parts.empty()) cool_stipple();  // as a toolbar shows that something is pressed: there is nothing on the sheet
}

void PartsPicture::draw_bar(const Part& part, RECT bar) {
  const HGDIOBJ brush = ::SelectObject(m_dc, ::GetStockObject(DC_BRUSH));
  ::SetDCBrushColor(m_dc, bar_color);
  ::PatBlt(m_dc, bar.left, bar.top, bar.right - bar.left, bar.bottom - bar.top, PATCOPY);
  ::SelectObject(m_dc, brush);
  const HGDIOBJ font = ::SelectObject(m_dc, ::GetStockObject(DEFAULT_GUI_FONT));
  ::SetBkMode(m_dc, TRANSPARENT);
  ::SetTextColor(m_dc, ink);
  bar.left += 4;
  bar.right = m_size.cx;
  ::DrawText(m_dc, part.name, part.name.GetLength(), &bar, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
  ::SelectObject(m_dc, font);
}

std::unique_ptr<hnDuctImage> PartsPicture::image() const {
  ::GdiFlush();
  return std::unique_ptr<hnDuctImage>(rq_duct_image_from_dib(m_bitmap));
}

}  // namespace parts_list
