// The control: the members that automation calls, its font and its state.
#ifndef EXAMPLES_COMPONENTS_DIGIT_CONTROL_DIGIT_CONTROL_H
#define EXAMPLES_COMPONENTS_DIGIT_CONTROL_DIGIT_CONTROL_H

#include <digits.h>
#include <in_process_server.h>

#include <digit_control/digit_display.h>
#include <digit_control/font_watch.h>
#include <digit_control/ole_control.h>

// Members fail with E_INVALIDARG for values that cannot be shown and with DISP_E_BADINDEX for lines that do not exist.
// They store the reason in the thread's error object and change nothing.
class DigitControlObject final
    : public in_process::Counted<IDigits, IPersistStreamInit, ISupportErrorInfo, OleControl> {
 public:
  DigitControlObject();

  STDMETHODIMP QueryInterface(REFIID wanted, void** object) override;

  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* sent, VARIANT* answer, EXCEPINFO* information,
                      UINT* wrong) override;
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override { return id == __uuidof(IDigits) ? S_OK : S_FALSE; }

  STDMETHODIMP get_Appearance(short* value) override { return get(&DigitLook::appearance, value); }
  STDMETHODIMP put_Appearance(short value) override { return put(&DigitLook::appearance, value); }
  STDMETHODIMP get_BackColor(LONG* value) override { return get(&DigitLook::back, value); }
  STDMETHODIMP put_BackColor(LONG value) override { return put(&DigitLook::back, value); }
  STDMETHODIMP get_BorderStyle(short* value) override { return get(&DigitLook::border_style, value); }
  STDMETHODIMP put_BorderStyle(short value) override { return put(&DigitLook::border_style, value); }
  STDMETHODIMP get_DimAuto(VARIANT_BOOL* value) override { return get(&DigitLook::finds_own_size, value); }
  STDMETHODIMP put_DimAuto(VARIANT_BOOL value) override { return put(&DigitLook::finds_own_size, value); }
  STDMETHODIMP get_Display(VARIANT_BOOL* value) override { return get(&DigitLook::shows_digits, value); }
  STDMETHODIMP put_Display(VARIANT_BOOL value) override { return put(&DigitLook::shows_digits, value); }
  STDMETHODIMP get_DisplayMask(VARIANT_BOOL* value) override { return get(&DigitLook::shows_mask, value); }
  STDMETHODIMP put_DisplayMask(VARIANT_BOOL value) override { return put(&DigitLook::shows_mask, value); }
  STDMETHODIMP get_DisplayTitles(VARIANT_BOOL* value) override { return get(&DigitLook::shows_titles, value); }
  STDMETHODIMP put_DisplayTitles(VARIANT_BOOL value) override { return put(&DigitLook::shows_titles, value); }
  STDMETHODIMP get_Enabled(VARIANT_BOOL* value) override { return get(&DigitLook::is_enabled, value); }
  STDMETHODIMP put_Enabled(VARIANT_BOOL value) override { return put(&DigitLook::is_enabled, value); }
  STDMETHODIMP get_ForeColor(LONG* value) override { return get(&DigitLook::fore, value); }
  STDMETHODIMP put_ForeColor(LONG value) override { return put(&DigitLook::fore, value); }
  STDMETHODIMP get_Gap(short* value) override { return get(&DigitLook::gap, value); }
  STDMETHODIMP put_Gap(short value) override { return put(&DigitLook::gap, value); }
  STDMETHODIMP get_Interligne(short* value) override { return get(&DigitLook::line_gap, value); }
  STDMETHODIMP put_Interligne(short value) override { return put(&DigitLook::line_gap, value); }
  STDMETHODIMP get_InternalBorder(VARIANT_BOOL* value) override { return get(&DigitLook::has_line_borders, value); }
  STDMETHODIMP put_InternalBorder(VARIANT_BOOL value) override { return put(&DigitLook::has_line_borders, value); }
  STDMETHODIMP get_MaskColor(LONG* value) override { return get(&DigitLook::mask, value); }
  STDMETHODIMP put_MaskColor(LONG value) override { return put(&DigitLook::mask, value); }
  STDMETHODIMP get_NbDigits(short* value) override { return get(&DigitLook::digits, value); }
  STDMETHODIMP put_NbDigits(short value) override { return put(&DigitLook::digits, value); }
  STDMETHODIMP get_OverflowColor(LONG* value) override { return get(&DigitLook::overflow, value); }
  STDMETHODIMP put_OverflowColor(LONG value) override { return put(&DigitLook::overflow, value); }
  STDMETHODIMP get_Precision(short* value) override { return get(&DigitLook::precision, value); }
  STDMETHODIMP put_Precision(short value) override { return put(&DigitLook::precision, value); }
  STDMETHODIMP get_Type(short* value) override { return get(&DigitLook::type, value); }
  STDMETHODIMP put_Type(short value) override { return put(&DigitLook::type, value); }
  STDMETHODIMP get_UnderflowColor(LONG* value) override { return get(&DigitLook::underflow, value); }
  STDMETHODIMP put_UnderflowColor(LONG value) override { return put(&DigitLook::underflow, value); }
  STDMETHODIMP get_UpperBound(double* value) override { return get(&DigitLook::upper, value); }
  STDMETHODIMP put_UpperBound(double value) override { return put(&DigitLook::upper, value); }
  STDMETHODIMP get_NbLines(short* value) override;
  STDMETHODIMP put_NbLines(short value) override;
  STDMETHODIMP get_Text(BSTR* value) override;
  STDMETHODIMP put_Text(BSTR value) override;
  STDMETHODIMP get_Font(IDispatch** font) override;
  STDMETHODIMP put_Font(IDispatch* font) override { return putref_Font(font); }
  STDMETHODIMP putref_Font(IDispatch* font) override;
  STDMETHODIMP get_Value(short line, double* value) override;
  STDMETHODIMP put_Value(short line, double value) override;
  STDMETHODIMP get_Title(short line, BSTR* title) override;
  STDMETHODIMP put_Title(short line, BSTR title) override;

  STDMETHODIMP AboutBox() override;
  STDMETHODIMP SetBounds(double lower, double upper) override;
  STDMETHODIMP SetDelta(double x, double y, double z, double length) override;
  STDMETHODIMP SetPoint(double x, double y, double z) override;
  STDMETHODIMP CalculateOptimizeSize() override;
  STDMETHODIMP SetFlashing(VARIANT_BOOL flashing) override;
  STDMETHODIMP CalculateFontSizeToFit() override;
  STDMETHODIMP GetOptimalWidth(LONG height, short* width) override;
  STDMETHODIMP GetOptimalFontSize(LONG height, CURRENCY* size) override;
  STDMETHODIMP GetOptimalWidth2(short height, CURRENCY size, short* width) override;

  STDMETHODIMP GetUserClassID(CLSID* id) override { return GetClassID(id); }
  STDMETHODIMP GetClassID(CLSID* id) override;
  STDMETHODIMP IsDirty() override { return is_dirty_ ? S_OK : S_FALSE; }
  STDMETHODIMP Load(IStream* stream) override;
  STDMETHODIMP Save(IStream* stream, BOOL clear_dirty) override;
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER*) override { return E_NOTIMPL; }
  STDMETHODIMP InitNew() override;

 private:
  SIZE natural_size() const override { return display_.natural_size(); }
  bool keeps_natural_size() const override { return display_.look.finds_own_size; }
  void paint(HDC dc, const RECT& place) const override { display_.draw(dc, place, is_lit_); }
  void activated() override;
  void tick() override;

  // Conversions between automation's types and C++ types.
  static void convert(short from, short& to) { to = from; }
  static void convert(double from, double& to) { to = from; }
  static void convert(LONG from, COLORREF& to) { to = static_cast<COLORREF>(from); }
  static void convert(COLORREF from, LONG& to) { to = static_cast<LONG>(from); }
  static void convert(VARIANT_BOOL from, bool& to) { to = from != VARIANT_FALSE; }
  static void convert(bool from, VARIANT_BOOL& to) { to = from ? VARIANT_TRUE : VARIANT_FALSE; }

  template <class Kept, class Sent>
  HRESULT get(Kept DigitLook::*member, Sent* value) const {
    if (!value) return E_POINTER;
    convert(display_.look.*member, *value);
    return S_OK;
  }
  template <class Kept, class Sent>
  HRESULT put(Kept DigitLook::*member, Sent value) {
    DigitLook changed = display_.look;
    convert(value, changed.*member);
    return adopt(changed);
  }
  HRESULT adopt(const DigitLook& look);
  HRESULT set_text(std::wstring& text, BSTR value);
  void set_values(std::initializer_list<double> values);
  bool has(short line) const { return line >= 0 && static_cast<size_t>(line) < display_.lines.size(); }
  HRESULT use(IFontDisp* font);
  void font_changed();
  void changed();

  DigitDisplay display_;
  CComPtr<IFont> font_;
  FontWatch watch_;
  CComPtr<ITypeInfo> type_;
  bool is_dirty_ = false;
  bool is_flashing_ = false;
  bool is_lit_ = true;
};

#endif
