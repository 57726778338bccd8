#include <kexlib/com/digit_control.h>

#include <olectl.h>

namespace {

// {107BD0EE-6861-11CF-B28B-0000C0C14EA0}
constexpr GUID digit_control_class = {0x107BD0EE, 0x6861, 0x11CF, {0xB2, 0x8B, 0x00, 0x00, 0xC0, 0xC1, 0x4E, 0xA0}};

// The parameter types, as InvokeHelper expects them.
const BYTE* parameters(const char* types) { return reinterpret_cast<const BYTE*>(types); }

}  // namespace

IMPLEMENT_DYNCREATE(kexDigitOCX, CWnd)

const GUID& kexDigitOCX::GetClsid() const { return digit_control_class; }

// Both enable containment: MFC does not check it and has no documented way to, and would read through a null pointer.
int kexDigitOCX::Create(const char*, const char* window_name, unsigned long style, const RECT& rect, CWnd* parent,
                        unsigned int id, CCreateContext*) {
  AfxEnableControlContainer();
  return CreateControl(GetClsid(), window_name, style, rect, parent, id);
}

int kexDigitOCX::Create(const char* window_name, unsigned long style, const RECT& rect, CWnd* parent, unsigned int id,
                        CFile* persist, int storage, wchar_t* last) {
  AfxEnableControlContainer();
  return CreateControl(GetClsid(), window_name, style, rect, parent, id, persist, storage, last);
}

void kexDigitOCX::initialise() {
  kexOleFont font = GetFont();
  font.SetName("Tahoma");
  font.SetBold(0);
}

short kexDigitOCX::GetAppearance() {
  short value = 0;
  GetProperty(DISPID_APPEARANCE, VT_I2, &value);
  return value;
}

void kexDigitOCX::SetAppearance(short value) { SetProperty(DISPID_APPEARANCE, VT_I2, value); }

unsigned long kexDigitOCX::GetBackColor() {
  unsigned long value = 0;
  GetProperty(DISPID_BACKCOLOR, VT_I4, &value);
  return value;
}

void kexDigitOCX::SetBackColor(unsigned long value) { SetProperty(DISPID_BACKCOLOR, VT_I4, value); }

short kexDigitOCX::GetBorderStyle() {
  short value = 0;
  GetProperty(DISPID_BORDERSTYLE, VT_I2, &value);
  return value;
}

void kexDigitOCX::SetBorderStyle(short value) { SetProperty(DISPID_BORDERSTYLE, VT_I2, value); }

int kexDigitOCX::GetDimAuto() {
  int value = 0;
  GetProperty(9, VT_BOOL, &value);
  return value;
}

void kexDigitOCX::SetDimAuto(int value) { SetProperty(9, VT_BOOL, value); }

int kexDigitOCX::GetDisplay() {
  int value = 0;
  GetProperty(10, VT_BOOL, &value);
  return value;
}

void kexDigitOCX::SetDisplay(int value) { SetProperty(10, VT_BOOL, value); }

int kexDigitOCX::GetDisplayMask() {
  int value = 0;
  GetProperty(2, VT_BOOL, &value);
  return value;
}

void kexDigitOCX::SetDisplayMask(int value) { SetProperty(2, VT_BOOL, value); }

int kexDigitOCX::GetDisplayTitles() {
  int value = 0;
  GetProperty(30, VT_BOOL, &value);
  return value;
}

void kexDigitOCX::SetDisplayTitles(int value) { SetProperty(30, VT_BOOL, value); }

int kexDigitOCX::GetEnabled() {
  int value = 0;
  GetProperty(DISPID_ENABLED, VT_BOOL, &value);
  return value;
}

void kexDigitOCX::SetEnabled(int value) { SetProperty(DISPID_ENABLED, VT_BOOL, value); }

unsigned long kexDigitOCX::GetForeColor() {
  unsigned long value = 0;
  GetProperty(DISPID_FORECOLOR, VT_I4, &value);
  return value;
}

void kexDigitOCX::SetForeColor(unsigned long value) { SetProperty(DISPID_FORECOLOR, VT_I4, value); }

short kexDigitOCX::GetGap() {
  short value = 0;
  GetProperty(7, VT_I2, &value);
  return value;
}

void kexDigitOCX::SetGap(short value) { SetProperty(7, VT_I2, value); }

short kexDigitOCX::GetInterligne() {
  short value = 0;
  GetProperty(8, VT_I2, &value);
  return value;
}

void kexDigitOCX::SetInterligne(short value) { SetProperty(8, VT_I2, value); }

int kexDigitOCX::GetInternalBorder() {
  int value = 0;
  GetProperty(31, VT_BOOL, &value);
  return value;
}

void kexDigitOCX::SetInternalBorder(int value) { SetProperty(31, VT_BOOL, value); }

unsigned long kexDigitOCX::GetMaskColor() {
  unsigned long value = 0;
  GetProperty(3, VT_I4, &value);
  return value;
}

void kexDigitOCX::SetMaskColor(unsigned long value) { SetProperty(3, VT_I4, value); }

short kexDigitOCX::GetNbDigits() {
  short value = 0;
  GetProperty(13, VT_I2, &value);
  return value;
}

void kexDigitOCX::SetNbDigits(short value) { SetProperty(13, VT_I2, value); }

short kexDigitOCX::GetNbLines() {
  short value = 0;
  GetProperty(11, VT_I2, &value);
  return value;
}

void kexDigitOCX::SetNbLines(short value) { SetProperty(11, VT_I2, value); }

unsigned long kexDigitOCX::GetOverflowColor() {
  unsigned long value = 0;
  GetProperty(4, VT_I4, &value);
  return value;
}

void kexDigitOCX::SetOverflowColor(unsigned long value) { SetProperty(4, VT_I4, value); }

short kexDigitOCX::GetPrecision() {
  short value = 0;
  GetProperty(12, VT_I2, &value);
  return value;
}

void kexDigitOCX::SetPrecision(short value) { SetProperty(12, VT_I2, value); }

short kexDigitOCX::GetType() {
  short value = 0;
  GetProperty(14, VT_I2, &value);
  return value;
}

void kexDigitOCX::SetType(short value) { SetProperty(14, VT_I2, value); }

unsigned long kexDigitOCX::GetUnderflowColor() {
  unsigned long value = 0;
  GetProperty(5, VT_I4, &value);
  return value;
}

void kexDigitOCX::SetUnderflowColor(unsigned long value) { SetProperty(5, VT_I4, value); }

double kexDigitOCX::GetUpperBound() {
  double value = 0;
  GetProperty(6, VT_R8, &value);
  return value;
}

void kexDigitOCX::SetUpperBound(double value) { SetProperty(6, VT_R8, value); }

kexOleFont kexDigitOCX::GetFont() {
  IDispatch* font = nullptr;
  GetProperty(DISPID_FONT, VT_DISPATCH, &font);
  return kexOleFont(font);
}

void kexDigitOCX::SetFont(IDispatch* font) { SetProperty(DISPID_FONT, VT_DISPATCH, font); }

CStringA kexDigitOCX::GetText() {
  CStringA value;
  GetProperty(DISPID_TEXT, VT_BSTR, &value);
  return value;
}

void kexDigitOCX::SetText(const char* text) { SetProperty(DISPID_TEXT, VT_BSTR, text); }

double kexDigitOCX::GetValue(short index) {
  double value = 0;
  InvokeHelper(21, DISPATCH_PROPERTYGET, VT_R8, &value, parameters(VTS_I2), index);
  return value;
}

void kexDigitOCX::SetValue(short index, double value) {
  InvokeHelper(21, DISPATCH_PROPERTYPUT, VT_EMPTY, nullptr, parameters(VTS_I2 VTS_R8), index, value);
}

CStringA kexDigitOCX::GetTitle(short index) {
  CStringA title;
  InvokeHelper(22, DISPATCH_PROPERTYGET, VT_BSTR, &title, parameters(VTS_I2), index);
  return title;
}

void kexDigitOCX::SetTitle(short index, const char* title) {
  InvokeHelper(22, DISPATCH_PROPERTYPUT, VT_EMPTY, nullptr, parameters(VTS_I2 VTS_BSTR), index, title);
}

void kexDigitOCX::AboutBox() { InvokeHelper(DISPID_ABOUTBOX, DISPATCH_METHOD, VT_EMPTY, nullptr, nullptr); }

void kexDigitOCX::SetBounds(double first, double second) {
  InvokeHelper(15, DISPATCH_METHOD, VT_EMPTY, nullptr, parameters(VTS_R8 VTS_R8), first, second);
}

void kexDigitOCX::SetDelta(double first, double second, double third, double fourth) {
  InvokeHelper(16, DISPATCH_METHOD, VT_EMPTY, nullptr, parameters(VTS_R8 VTS_R8 VTS_R8 VTS_R8), first, second, third,
               fourth);
}

void kexDigitOCX::SetPoint(double first, double second, double third) {
  InvokeHelper(17, DISPATCH_METHOD, VT_EMPTY, nullptr, parameters(VTS_R8 VTS_R8 VTS_R8), first, second, third);
}

void kexDigitOCX::CalculateOptimizeSize() { InvokeHelper(18, DISPATCH_METHOD, VT_EMPTY, nullptr, nullptr); }

void kexDigitOCX::SetFlashing(int flashing) {
  InvokeHelper(19, DISPATCH_METHOD, VT_EMPTY, nullptr, parameters(VTS_BOOL), flashing);
}

void kexDigitOCX::CalculateFontSizeToFit() { InvokeHelper(20, DISPATCH_METHOD, VT_EMPTY, nullptr, nullptr); }

short kexDigitOCX::GetOptimalWidth(long height) {
  short width = 0;
  InvokeHelper(23, DISPATCH_METHOD, VT_I2, &width, parameters(VTS_I4), height);
  return width;
}

CY kexDigitOCX::GetOptimalFontSize(long height) {
  CY size = {};
  InvokeHelper(24, DISPATCH_METHOD, VT_CY, &size, parameters(VTS_I4), height);
  return size;
}

// By design the height is passed as a 16-bit integer: the control declares the parameter so.
short kexDigitOCX::GetOptimalWidth2(long height, CY size) {
  short width = 0;
  InvokeHelper(25, DISPATCH_METHOD, VT_I2, &width, parameters(VTS_I2 VTS_CY), static_cast<short>(height), &size);
  return width;
}

kexOleFont::kexOleFont(IDispatch* dispatch) : COleDispatchDriver(dispatch) {}

CStringA kexOleFont::GetName() {
  CStringA value;
  GetProperty(0, VT_BSTR, &value);
  return value;
}

void kexOleFont::SetName(const char* value) { SetProperty(0, VT_BSTR, value); }

CY kexOleFont::GetSize() {
  CY value = {};
  GetProperty(2, VT_CY, &value);
  return value;
}

void kexOleFont::SetSize(const CY& value) { SetProperty(2, VT_CY, &value); }

int kexOleFont::GetBold() {
  int value = 0;
  GetProperty(3, VT_BOOL, &value);
  return value;
}

void kexOleFont::SetBold(int value) { SetProperty(3, VT_BOOL, value); }

int kexOleFont::GetItalic() {
  int value = 0;
  GetProperty(4, VT_BOOL, &value);
  return value;
}

void kexOleFont::SetItalic(int value) { SetProperty(4, VT_BOOL, value); }

int kexOleFont::GetUnderline() {
  int value = 0;
  GetProperty(5, VT_BOOL, &value);
  return value;
}

void kexOleFont::SetUnderline(int value) { SetProperty(5, VT_BOOL, value); }

int kexOleFont::GetStrikethrough() {
  int value = 0;
  GetProperty(6, VT_BOOL, &value);
  return value;
}

void kexOleFont::SetStrikethrough(int value) { SetProperty(6, VT_BOOL, value); }

short kexOleFont::GetWeight() {
  short value = 0;
  GetProperty(7, VT_I2, &value);
  return value;
}

void kexOleFont::SetWeight(short value) { SetProperty(7, VT_I2, value); }

short kexOleFont::GetCharset() {
  short value = 0;
  GetProperty(8, VT_I2, &value);
  return value;
}

void kexOleFont::SetCharset(short value) { SetProperty(8, VT_I2, value); }
