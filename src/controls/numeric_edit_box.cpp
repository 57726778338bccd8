#include <kexlib/controls/numeric_edit_box.h>

kexNumericEditBox::kexNumericEditBox() : decimal_seperator(kexNumericFormatting::get_decimal_seperator()) {}

kexNumericEditBox::~kexNumericEditBox() = default;

BOOL kexNumericEditBox::ProcessWindowMessage(HWND, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                                             DWORD map) {
  if (map != 0 || message != WM_KILLFOCUS) return FALSE;
  BOOL handled = TRUE;
  result = on_lost_focus(message, wParam, lParam, handled);
  return handled;
}

void kexNumericEditBox::Create(ATL::CWindow& font_source) {
  // The window that the object holds becomes the parent: that is meant. An edit box of before is let go of.
  const HWND host = m_hWnd;
  if (!host || !UnsubclassWindow()) Detach();
  CWindowImpl::Create(host, nullptr, nullptr, WS_CHILD | WS_VISIBLE, WS_EX_CLIENTEDGE);
  SetWindowLongPtr(GWLP_ID, 0);  // ATL makes up an identifier where there is to be none
  SetFont(font_source.GetFont());
  update_display();
}

double kexNumericEditBox::get_value() {
  update_model();
  return value;
}

void kexNumericEditBox::set_value(double number) {
  value = number;
  update_display();
}

int kexNumericEditBox::get_decimal_places() const { return decimal_places; }

void kexNumericEditBox::set_decimal_places(int places) {
  decimal_places = places;
  update_display();
}

// The value keeps its sign until it is read from the text that has none: that is meant.
void kexNumericEditBox::allow_negative_values(bool allow) {
  allow_negative = allow;
  update_display();
}

LRESULT kexNumericEditBox::on_lost_focus(UINT, WPARAM, LPARAM, BOOL& handled) {
  handled = FALSE;  // the edit control has its own work to do
  update_model();
  update_display();
  return 0;
}

void kexNumericEditBox::update_display() {
  if (IsWindow()) kexNumericFormatting::putValue(this, value, allow_negative, decimal_seperator, decimal_places);
}

void kexNumericEditBox::update_model() {
  if (IsWindow()) value = kexNumericFormatting::getValue(this, allow_negative, decimal_seperator);
}
