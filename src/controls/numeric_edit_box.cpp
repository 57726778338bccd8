#include <kexlib/controls/numeric_edit_box.h>

#include <controls/subclass_instead.h>

kexNumericEditBox::kexNumericEditBox() : decimal_seperator_(kexNumericFormatting::get_decimal_seperator()) {}

// The base is not copied: ATL's copies its window procedure, and both objects would free it.
kexNumericEditBox::kexNumericEditBox(const kexNumericEditBox& other) : CWindowImpl() { *this = other; }

kexNumericEditBox& kexNumericEditBox::operator=(const kexNumericEditBox& other) {
  if (this == &other) return *this;
  value_ = other.value_;
  allow_negative_ = other.allow_negative_;
  decimal_seperator_ = other.decimal_seperator_;
  decimal_places_ = other.decimal_places_;
  if (kexlib::is_subclassed<CWindowImpl>(*this))
    update_display();
  else
    m_hWnd = other.m_hWnd;
  return *this;
}

kexNumericEditBox::~kexNumericEditBox() = default;

BOOL kexNumericEditBox::ProcessWindowMessage(HWND, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                                             DWORD map) {
  if (map != 0 || message != WM_KILLFOCUS) return FALSE;
  BOOL handled = TRUE;
  result = on_lost_focus(message, wParam, lParam, handled);
  return handled;
}

BOOL kexNumericEditBox::SubclassWindow(HWND edit) { return kexlib::subclass_instead<CWindowImpl>(*this, edit); }

// By design the window that the object holds becomes the parent: callers attach the host just before.
void kexNumericEditBox::Create(ATL::CWindow& font_source) {
  const HWND host = m_hWnd;
  if (!kexlib::leave_window<CWindowImpl>(*this)) return;
  if (!CWindowImpl::Create(host, nullptr, nullptr, WS_CHILD | WS_VISIBLE, WS_EX_CLIENTEDGE)) {
    m_pfnSuperWindowProc = ::DefWindowProc;  // ATL keeps the procedure of EDIT, as if the object were subclassed
    return;
  }
  SetWindowLongPtr(GWLP_ID, 0);  // ATL replaces an identifier of 0
  SetFont(font_source.IsWindow() ? font_source.GetFont() : nullptr);
  update_display();
}

double kexNumericEditBox::get_value() {
  update_model();
  return value_;
}

void kexNumericEditBox::set_value(double number) {
  value_ = number;
  update_display();
}

int kexNumericEditBox::get_decimal_places() const { return decimal_places_; }

void kexNumericEditBox::set_decimal_places(int places) {
  decimal_places_ = places;
  update_display();
}

// Kept for compatibility: the value keeps its sign until the next read, so that callers may allow it again.
void kexNumericEditBox::allow_negative_values(bool allow) {
  allow_negative_ = allow;
  update_display();
}

LRESULT kexNumericEditBox::on_lost_focus(UINT, WPARAM, LPARAM, BOOL& handled) {
  handled = FALSE;  // the edit control hides its caret and notifies the parent
  update_model();
  update_display();
  return 0;
}

void kexNumericEditBox::update_display() {
  if (IsWindow()) kexNumericFormatting::putValue(this, value_, allow_negative_, decimal_seperator_, decimal_places_);
}

void kexNumericEditBox::update_model() {
  if (IsWindow()) value_ = kexNumericFormatting::getValue(this, allow_negative_, decimal_seperator_);
}
