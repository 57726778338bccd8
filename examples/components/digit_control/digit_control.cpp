#include <digit_control/digit_control.h>
#include <digit_control/state.h>

#include <algorithm>
#include <climits>
#include <new>

namespace {

constexpr DWORD state_begins = 0x31474944;  // "DIG1"
constexpr UINT_PTR flash_timer = 1;
constexpr UINT flash_time = 500;
constexpr int smallest_digit = 6, largest_digit = 1000;  // pixels

const wchar_t* const no_line = L"There is no such line.";
const wchar_t* const not_shown = L"This value cannot be shown.";

// Stores a text in the thread's error object and returns the result.
HRESULT refuse(HRESULT result, const wchar_t* why) {
  CComPtr<ICreateErrorInfo> error;
  if (FAILED(CreateErrorInfo(&error))) return result;
  error->SetGUID(__uuidof(IDigits));
  error->SetSource(const_cast<wchar_t*>(L"DigitControl"));
  error->SetDescription(const_cast<wchar_t*>(why));
  SetErrorInfo(0, CComQIPtr<IErrorInfo>(error));
  return result;
}

int dots_to_the_inch() {
  const HDC screen = GetDC(nullptr);
  const int dots = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return dots;
}

CURRENCY points_of(int pixels) {
  CURRENCY size;
  size.int64 = pixels * 72LL * 10000 / dots_to_the_inch();
  return size;
}

int pixels_of(CURRENCY points) {
  const double pixels = static_cast<double>(points.int64) * dots_to_the_inch() / 720000;
  return static_cast<int>(std::clamp(pixels + 0.5, double{smallest_digit}, double{largest_digit}));
}

SIZE natural_size_with(DigitDisplay display, int digit_height) {
  display.font.lfHeight = -digit_height;
  return display.natural_size();
}

// The largest digits that fit the available size; the smallest digits if none fit.
int largest_digit_in(const DigitDisplay& display, SIZE room) {
  int fits = smallest_digit, too_large = largest_digit + 1;
  while (too_large - fits > 1) {
    const int tried = (fits + too_large) / 2;
    const SIZE size = natural_size_with(display, tried);
    (size.cx <= room.cx && size.cy <= room.cy ? fits : too_large) = tried;
  }
  return fits;
}

int largest_digit_of_height(const DigitDisplay& display, LONG height) {
  return largest_digit_in(display, {LONG_MAX, height});
}

short as_short(LONG length) { return static_cast<short>(std::min<LONG>(length, SHRT_MAX)); }

HRESULT give_text(const std::wstring& text, BSTR* result) {
  if (!result) return E_POINTER;
  *result = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return *result ? S_OK : E_OUTOFMEMORY;
}

SavedFont description_of(IFont* font) {
  SavedFont saved;
  CComBSTR name;
  CURRENCY size = {};
  BOOL italic = FALSE, underline = FALSE, strikethrough = FALSE;
  font->get_Name(&name);
  font->get_Size(&size);
  font->get_Weight(&saved.weight);
  font->get_Charset(&saved.charset);
  font->get_Italic(&italic);
  font->get_Underline(&underline);
  font->get_Strikethrough(&strikethrough);
  saved.name.assign(name ? static_cast<BSTR>(name) : L"");
  saved.size = size.int64;
  saved.italic = italic, saved.underline = underline, saved.strikethrough = strikethrough;
  return saved;
}

CComPtr<IFontDisp> make_font(const SavedFont& saved) {
  FONTDESC wanted = {sizeof wanted,
                     const_cast<wchar_t*>(saved.name.c_str()),
                     {},
                     saved.weight,
                     saved.charset,
                     saved.italic,
                     saved.underline,
                     saved.strikethrough};
  wanted.cySize.int64 = saved.size;
  CComPtr<IFontDisp> font;
  OleCreateFontIndirect(&wanted, IID_IFontDisp, reinterpret_cast<void**>(&font));
  return font;
}

CComPtr<IFontDisp> first_font() {
  SavedFont font;
  font.name = L"Tahoma";
  font.size = 240000;
  return make_font(font);
}

// From the type library in this DLL's resources.
HRESULT describe(ITypeInfo** info) {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(_AtlBaseModule.GetModuleInstance(), path, MAX_PATH);
  if (length == 0 || length == MAX_PATH) return TYPE_E_CANTLOADLIBRARY;
  CComPtr<ITypeLib> library;
  const HRESULT result = LoadTypeLibEx(path, REGKIND_NONE, &library);
  return FAILED(result) ? result : library->GetTypeInfoOfGuid(__uuidof(IDigits), info);
}

}  // namespace

DigitControlObject::DigitControlObject() : watch_([this] { font_changed(); }) { use(first_font()); }

HRESULT DigitControlObject::QueryInterface(REFIID wanted, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (wanted == IID_IUnknown || wanted == IID_IDispatch || wanted == __uuidof(IDigits))
    *object = static_cast<IDigits*>(this);
  if (wanted == IID_IOleObject) *object = static_cast<IOleObject*>(this);
  if (wanted == IID_IOleWindow || wanted == IID_IOleInPlaceObject) *object = static_cast<IOleInPlaceObject*>(this);
  if (wanted == IID_IViewObject || wanted == IID_IViewObject2) *object = static_cast<IViewObject2*>(this);
  if (wanted == IID_IPersist || wanted == IID_IPersistStreamInit) *object = static_cast<IPersistStreamInit*>(this);
  if (wanted == IID_ISupportErrorInfo) *object = static_cast<ISupportErrorInfo*>(this);
  if (!*object) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

// IDispatch

HRESULT DigitControlObject::GetTypeInfoCount(UINT* count) {
  if (!count) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT DigitControlObject::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  const HRESULT result = type_ ? S_OK : describe(&type_);
  return FAILED(result) ? result : type_.CopyTo(info);
}

HRESULT DigitControlObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  CComPtr<ITypeInfo> type;
  const HRESULT result = GetTypeInfo(0, 0, &type);
  return FAILED(result) ? result : DispGetIDsOfNames(type, names, count, ids);
}

HRESULT DigitControlObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* sent, VARIANT* answer,
                                   EXCEPINFO* information, UINT* wrong) {
  CComPtr<ITypeInfo> type;
  const HRESULT result = GetTypeInfo(0, 0, &type);
  if (FAILED(result)) return result;
  SetErrorInfo(0, nullptr);
  return DispInvoke(static_cast<IDigits*>(this), type, id, flags, sent, answer, information, wrong);
}

// properties

HRESULT DigitControlObject::adopt(const DigitLook& look) {
  if (!look.is_sound()) return refuse(E_INVALIDARG, not_shown);
  display_.look = look;
  if (window_) window_.EnableWindow(look.is_enabled);
  changed();
  return S_OK;
}

HRESULT DigitControlObject::get_NbLines(short* value) {
  if (!value) return E_POINTER;
  *value = static_cast<short>(display_.lines.size());
  return S_OK;
}

HRESULT DigitControlObject::put_NbLines(short value) try {
  if (value < 1 || value > DigitLook::most_lines) return refuse(E_INVALIDARG, not_shown);
  display_.lines.resize(static_cast<size_t>(value));
  changed();
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT DigitControlObject::set_text(std::wstring& text, BSTR value) try {
  if (SysStringLen(value) > longest_text) return refuse(E_INVALIDARG, not_shown);
  text.assign(value ? value : L"", SysStringLen(value));
  changed();
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT DigitControlObject::get_Text(BSTR* value) { return give_text(display_.text, value); }

HRESULT DigitControlObject::put_Text(BSTR value) { return set_text(display_.text, value); }

HRESULT DigitControlObject::get_Font(IDispatch** font) {
  if (!font) return E_POINTER;
  *font = nullptr;
  return font_ ? font_.QueryInterface(font) : S_OK;
}

// The font is shared with the caller: later changes to it are visible here.
HRESULT DigitControlObject::putref_Font(IDispatch* font) {
  CComQIPtr<IFontDisp> shared(font);
  if (!shared || FAILED(use(shared))) return refuse(E_INVALIDARG, L"This is no font.");
  changed();
  return S_OK;
}

HRESULT DigitControlObject::get_Value(short line, double* value) {
  if (!value) return E_POINTER;
  *value = 0;
  if (!has(line)) return refuse(DISP_E_BADINDEX, no_line);
  *value = display_.lines[static_cast<size_t>(line)].value;
  return S_OK;
}

HRESULT DigitControlObject::put_Value(short line, double value) {
  if (!has(line)) return refuse(DISP_E_BADINDEX, no_line);
  display_.lines[static_cast<size_t>(line)].value = value;
  changed();
  return S_OK;
}

HRESULT DigitControlObject::get_Title(short line, BSTR* title) {
  if (!title) return E_POINTER;
  *title = nullptr;
  return has(line) ? give_text(display_.lines[static_cast<size_t>(line)].title, title)
                   : refuse(DISP_E_BADINDEX, no_line);
}

HRESULT DigitControlObject::put_Title(short line, BSTR title) {
  return has(line) ? set_text(display_.lines[static_cast<size_t>(line)].title, title)
                   : refuse(DISP_E_BADINDEX, no_line);
}

// methods

HRESULT DigitControlObject::AboutBox() {
  MessageBoxW(window_, L"A sample control that shows numbers as digits.", L"Digit control", MB_OK);
  return S_OK;
}

HRESULT DigitControlObject::SetBounds(double lower, double upper) {
  DigitLook changed_look = display_.look;
  changed_look.lower = lower;
  changed_look.upper = upper;
  return adopt(changed_look);
}

HRESULT DigitControlObject::SetDelta(double x, double y, double z, double length) {
  set_values({x, y, z, length});
  return S_OK;
}

HRESULT DigitControlObject::SetPoint(double x, double y, double z) {
  set_values({x, y, z});
  return S_OK;
}

void DigitControlObject::set_values(std::initializer_list<double> values) {
  auto line = display_.lines.begin();
  for (double value : values)
    if (line != display_.lines.end()) (line++)->value = value;
  changed();
}

HRESULT DigitControlObject::CalculateOptimizeSize() {
  extent_ = {};  // the natural size, until the host sets another one
  if (!window_) return S_OK;
  RECT place;
  window_.GetWindowRect(&place);
  MapWindowPoints(nullptr, window_.GetParent(), reinterpret_cast<POINT*>(&place), 2);
  const SIZE size = natural_size();
  place.right = place.left + size.cx;
  place.bottom = place.top + size.cy;
  // The host decides whether there is room.
  if (CComQIPtr<IOleInPlaceSite> in_place{site_}) in_place->OnPosRectChange(&place);
  return S_OK;
}

HRESULT DigitControlObject::SetFlashing(VARIANT_BOOL flashing) {
  is_flashing_ = flashing != VARIANT_FALSE;
  is_lit_ = true;
  if (window_) activated();
  return S_OK;
}

HRESULT DigitControlObject::CalculateFontSizeToFit() {
  if (!window_) return refuse(E_UNEXPECTED, L"The control is not shown yet.");
  RECT room;
  window_.GetClientRect(&room);
  return font_->put_Size(points_of(largest_digit_in(display_, {room.right, room.bottom})));
}

HRESULT DigitControlObject::GetOptimalWidth(LONG height, short* width) {
  if (!width) return E_POINTER;
  *width = 0;
  if (height <= 0) return refuse(E_INVALIDARG, not_shown);
  *width = as_short(natural_size_with(display_, largest_digit_of_height(display_, height)).cx);
  return S_OK;
}

HRESULT DigitControlObject::GetOptimalFontSize(LONG height, CURRENCY* size) {
  if (!size) return E_POINTER;
  *size = {};
  if (height <= 0) return refuse(E_INVALIDARG, not_shown);
  *size = points_of(largest_digit_of_height(display_, height));
  return S_OK;
}

// For that font size, or for the largest one that fits the height.
HRESULT DigitControlObject::GetOptimalWidth2(short height, CURRENCY size, short* width) {
  if (!width) return E_POINTER;
  *width = 0;
  if (height <= 0 || size.int64 <= 0) return refuse(E_INVALIDARG, not_shown);
  const int digit = std::min(pixels_of(size), largest_digit_of_height(display_, height));
  *width = as_short(natural_size_with(display_, digit).cx);
  return S_OK;
}

// state

HRESULT DigitControlObject::GetClassID(CLSID* id) {
  if (!id) return E_POINTER;
  *id = __uuidof(DigitControl);
  return S_OK;
}

HRESULT DigitControlObject::InitNew() {
  display_ = {};
  const HRESULT result = use(first_font());
  changed();
  is_dirty_ = false;
  return result;
}

HRESULT DigitControlObject::Save(IStream* stream, BOOL clear_dirty) try {
  if (!stream) return E_POINTER;
  if (!font_) return E_UNEXPECTED;
  StateWriter writer(stream);
  DWORD begin = state_begins, count = static_cast<DWORD>(display_.lines.size());
  SavedFont font = description_of(font_);
  writer(begin);
  visit(writer, display_.look);
  visit(writer, font);
  writer(display_.text);
  writer(count);
  for (DigitLine& line : display_.lines) visit(writer, line);
  if (SUCCEEDED(writer.result) && clear_dirty) is_dirty_ = false;
  return writer.result;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

// An invalid state changes nothing.
HRESULT DigitControlObject::Load(IStream* stream) try {
  if (!stream) return E_POINTER;
  StateReader reader(stream);
  DigitDisplay loaded;
  SavedFont font;
  DWORD begin = 0, count = 0;
  reader(begin);
  visit(reader, loaded.look);
  visit(reader, font);
  reader(loaded.text);
  reader(count);
  if (FAILED(reader.result)) return reader.result;
  if (begin != state_begins || count < 1 || count > DigitLook::most_lines || !loaded.look.is_sound()) return E_FAIL;
  loaded.lines.resize(count);
  for (DigitLine& line : loaded.lines) visit(reader, line);
  if (FAILED(reader.result)) return reader.result;
  const HRESULT result = use(make_font(font));
  if (FAILED(result)) return result;
  loaded.font = display_.font;
  display_ = std::move(loaded);
  changed();
  is_dirty_ = false;
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

// the window and the font

void DigitControlObject::activated() {
  window_.EnableWindow(display_.look.is_enabled);
  if (is_flashing_)
    window_.SetTimer(flash_timer, flash_time);
  else
    window_.KillTimer(flash_timer);
  window_.Invalidate(FALSE);
}

void DigitControlObject::tick() {
  is_lit_ = !is_lit_;
  window_.Invalidate(FALSE);
}

HRESULT DigitControlObject::use(IFontDisp* font) {
  CComQIPtr<IFont> usable(font);
  if (!usable) return E_NOINTERFACE;
  font_ = usable;
  watch_.start(font_);
  font_changed();
  return S_OK;
}

void DigitControlObject::font_changed() {
  HFONT font = nullptr;
  LOGFONTW description = {};
  if (FAILED(font_->get_hFont(&font)) || !GetObjectW(font, sizeof description, &description)) return;
  description.lfHeight = -std::clamp(abs(static_cast<int>(description.lfHeight)), smallest_digit, largest_digit);
  description.lfWidth = 0;
  display_.font = description;
  changed();
}

void DigitControlObject::changed() {
  is_dirty_ = true;
  if (window_) window_.Invalidate(FALSE);
}
