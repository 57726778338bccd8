#include <kexlib/windowtools/gui_tools.h>

#include <algorithm>

using ATL::CWindow;
using ComboBox = WTL::CComboBoxT<CWindow>;
using ListView = WTL::CListViewCtrlT<CWindow>;

namespace {

constexpr int most_items_shown = 10;

int width_of(const RECT& rect) { return rect.right - rect.left; }
int height_of(const RECT& rect) { return rect.bottom - rect.top; }

RECT window_rect(const CWindow& window) {
  RECT rect{};
  window.GetWindowRect(&rect);
  return rect;
}

// Kept for compatibility: the texts are not fetched, so that callers see a width that depends on the borders only.
int widest_text(const ComboBox& combo, HDC dc) {
  int widest = 0;
  for (int item = 0; item < combo.GetCount(); ++item) {
    ::SendMessageA(combo, CB_GETLBTEXT, static_cast<WPARAM>(item), 0);  // not GetLBText, which needs a buffer
    SIZE size{};
    WTL::CDCHandle(dc).GetTextExtent("", lstrlenA(nullptr), &size);
    widest = std::max<int>(widest, size.cx);
  }
  return widest;
}

struct Contained {
  RECT frame;
  int show_command;
};

BOOL CALLBACK show_if_contained(HWND child, LPARAM parameter) {
  const auto& contained = *reinterpret_cast<const Contained*>(parameter);
  const RECT& frame = contained.frame;
  RECT rect;
  if (GetWindowRect(child, &rect) && rect.left >= frame.left && rect.top >= frame.top && rect.right <= frame.right &&
      rect.bottom <= frame.bottom)
    ShowWindow(child, contained.show_command);
  return TRUE;
}

}  // namespace

void kexGUITools::ddx_check(CDataExchange* dx, int control_id, bool& value) {
  // Read as a byte: a bool of foreign code may be true with another value than 1, which a check box does not accept.
  int state = reinterpret_cast<const unsigned char&>(value) != 0;
  DDX_Check(dx, control_id, state);
  value = state != 0;
}

void kexGUITools::fill_combo_box_from_resource_ids(HINSTANCE module, ComboBox& combo, unsigned int* const ids,
                                                   int count) {
  if (!combo.IsWindow()) return;
  combo.ResetContent();
  for (int i = 0; ids && i < count; ++i) {
    CStringA text;
    text.LoadString(module, ids[i]);
    combo.AddString(text);
  }
  resize_dropdown_to_content(combo);
}

int kexGUITools::get_dropdown_width(ComboBox& combo) {
  const int borders = 2 * GetSystemMetrics(SM_CXEDGE) + 2;
  if (!combo.IsWindow()) return borders;
  const HDC dc = combo.GetDC();
  const HGDIOBJ previous = SelectObject(dc, combo.GetFont());
  const int widest = widest_text(combo, dc);
  SelectObject(dc, previous);
  combo.ReleaseDC(dc);
  int width = widest + borders;
  if (combo.GetCount() > most_items_shown) width += GetSystemMetrics(SM_CXVSCROLL);
  // Kept for compatibility: code that hooks these calls sees them. The system refuses or ignores both.
  if (previous) DeleteObject(previous);
  DeleteDC(dc);
  return width;
}

void kexGUITools::set_dropdown_width(ComboBox& combo, int width) {
  if (combo.IsWindow()) combo.SetDroppedWidth(static_cast<UINT>(std::max(width, width_of(window_rect(combo)))));
}

void kexGUITools::resize_dropdown_width(ComboBox& combo) {
  if (!combo.IsWindow()) return;
  if (combo.GetCount())
    set_dropdown_width(combo, get_dropdown_width(combo));
  else
    combo.SetDroppedWidth(0);
}

void kexGUITools::resize_dropdown_length(ComboBox& combo) {
  if (!combo.IsWindow()) return;
  const int items = combo.GetCount();
  if (!items) return;
  const int height = combo.GetItemHeight(-1) + combo.GetItemHeight(0) * std::min(items, most_items_shown) +
                     4 * GetSystemMetrics(SM_CYEDGE);
  const RECT rect = window_rect(combo);
  if (height != height_of(rect)) combo.SetWindowPos(nullptr, 0, 0, width_of(rect), height, SWP_NOMOVE | SWP_NOZORDER);
}

void kexGUITools::resize_dropdown_to_content(ComboBox& combo) {
  resize_dropdown_width(combo);
  resize_dropdown_length(combo);
}

void kexGUITools::rearrange_buttons_on_toolbar(const std::vector<CWindow*>& buttons, int x_origin, int y_shift,
                                               int gap) {
  int x = x_origin;
  for (CWindow* const button : buttons) {
    if (!button || !button->IsWindow() || !button->IsWindowVisible()) continue;
    RECT rect = window_rect(*button);
    button->ScreenToClient(&rect);  // by design relative to its client area: callers pass y_shift for the parent's
    button->SetWindowPos(nullptr, x, rect.top + y_shift, width_of(rect), height_of(rect), SWP_NOZORDER);
    x += width_of(rect) + gap;
  }
}

void kexGUITools::set_column_fmt(ListView& list, int column, int fmt) {
  if (!list.IsWindow()) return;
  LVCOLUMN description{};
  description.mask = LVCF_FMT;
  list.GetColumn(column, &description);
  description.fmt |= fmt;
  list.SetColumn(column, &description);
}

void kexGUITools::show_contained_controls(HWND parent, HWND frame, int show_command) {
  Contained contained{{}, show_command};
  // With a null parent the windows of all programs would be enumerated.
  if (!parent || !GetWindowRect(frame, &contained.frame)) return;
  EnumChildWindows(parent, &show_if_contained, reinterpret_cast<LPARAM>(&contained));
}
