#include <kexlib/com/activex.h>

#include <objidl.h>
#include <oleidl.h>

EXTERN_C const CLSID CLSID_GlobalOptions;  // not every toolchain's headers have it

namespace {

// The rectangle of a dialog's control in the dialog's client area; empty if there is no such control.
RECT place_of(HWND control, HWND dialog) {
  RECT place = {};
  if (!GetWindowRect(control, &place)) return {};
  // Corner by corner, the second one only after the first.
  auto* const corners = reinterpret_cast<POINT*>(&place);
  if (ScreenToClient(dialog, &corners[0])) ScreenToClient(dialog, &corners[1]);
  return place;
}

// A natural size in pixels.
SIZE in_pixels(const SIZEL& himetric) {
  constexpr int himetric_an_inch = 2540;
  const HDC screen = GetDC(nullptr);
  const SIZE size = {MulDiv(GetDeviceCaps(screen, LOGPIXELSX), himetric.cx, himetric_an_inch),
                     MulDiv(GetDeviceCaps(screen, LOGPIXELSY), himetric.cy, himetric_an_inch)};
  ReleaseDC(nullptr, screen);
  return size;
}

}  // namespace

CComPtr<IUnknown> CreateControl(HWND dialog, CAxWindowT<CWindow>* host, UINT placeholderId, const char* control) {
  if (!IsWindow(dialog) || !host) return {};
  const HWND placeholder = GetDlgItem(dialog, static_cast<int>(placeholderId));
  ShowWindow(placeholder, SW_HIDE);
  const RECT place = place_of(placeholder, dialog);
  *host = CreateWindowExA(0, CAxWindowT<CWindow>::GetWndClassName(), control, WS_CHILD | WS_VISIBLE, place.left,
                          place.top, place.right - place.left, place.bottom - place.top, dialog, nullptr,
                          _AtlBaseModule.GetModuleInstance(), nullptr);

  CComPtr<IUnknown> made;
  if (FAILED(host->QueryControl(&made))) return {};
  CComPtr<IOleObject> object;
  SIZEL natural = {};
  if (SUCCEEDED(made.QueryInterface(&object)) && SUCCEEDED(object->GetExtent(DVASPECT_CONTENT, &natural))) {
    const SIZE size = in_pixels(natural);
    host->SetWindowPos(nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
  }
  return made;
}

long kexDisableComExceptionHandler() {
  const HRESULT secured = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, 0, 0, nullptr, EOAC_APPID, nullptr);
  if (FAILED(secured) && secured != RPC_E_TOO_LATE) return secured;
  CComPtr<IGlobalOptions> options;
  const HRESULT created = CoCreateInstance(CLSID_GlobalOptions, nullptr, CLSCTX_ALL, IID_IGlobalOptions,
                                           reinterpret_cast<void**>(&options));
  if (FAILED(created)) return created;
  return options->Set(COMGLB_EXCEPTION_HANDLING, COMGLB_EXCEPTION_DONOT_HANDLE);
}
