#include <digit_control/ole_control.h>

namespace {

// Pixels of the screen as hundredths of a millimetre.
SIZEL himetric(SIZE pixels) {
  const HDC screen = GetDC(nullptr);
  const SIZEL size = {MulDiv(pixels.cx, 2540, GetDeviceCaps(screen, LOGPIXELSX)),
                      MulDiv(pixels.cy, 2540, GetDeviceCaps(screen, LOGPIXELSY))};
  ReleaseDC(nullptr, screen);
  return size;
}

}  // namespace

HRESULT OleControl::SetClientSite(IOleClientSite* site) {
  site_ = site;
  return S_OK;
}

HRESULT OleControl::DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND parent, LPCRECT place) {
  if (verb == OLEIVERB_HIDE) return InPlaceDeactivate();
  if (verb > OLEIVERB_PRIMARY || verb < OLEIVERB_INPLACEACTIVATE) return E_NOTIMPL;
  if (window_) return S_OK;
  if (!place) return E_INVALIDARG;
  CComQIPtr<IOleInPlaceSite> in_place(site_);
  if (in_place && in_place->CanInPlaceActivate() == S_FALSE) return E_FAIL;
  RECT rect = *place;
  if (!window_.Create(parent, rect)) return E_FAIL;
  activated();
  if (in_place) in_place->OnInPlaceActivate();
  return S_OK;
}

HRESULT OleControl::SetExtent(DWORD aspect, SIZEL* size) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (!size) return E_POINTER;
  extent_ = *size;
  return S_OK;
}

HRESULT OleControl::GetExtent(DWORD aspect, SIZEL* size) {
  if (!size) return E_POINTER;
  *size = {};
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  *size = keeps_natural_size() || (extent_.cx == 0 && extent_.cy == 0) ? himetric(natural_size()) : extent_;
  return S_OK;
}

HRESULT OleControl::GetMiscStatus(DWORD, DWORD* status) {
  if (!status) return E_POINTER;
  *status = OLEMISC_INSIDEOUT | OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE;
  return S_OK;
}

HRESULT OleControl::GetWindow(HWND* window) {
  if (!window) return E_POINTER;
  *window = window_;
  return *window ? S_OK : E_FAIL;
}

HRESULT OleControl::InPlaceDeactivate() {
  if (!window_) return S_OK;
  window_.DestroyWindow();
  if (CComQIPtr<IOleInPlaceSite> in_place{site_}) in_place->OnInPlaceDeactivate();
  return S_OK;
}

HRESULT OleControl::SetObjectRects(LPCRECT place, LPCRECT) {
  if (!place) return E_POINTER;
  if (window_) window_.MoveWindow(place);
  return S_OK;
}

HRESULT OleControl::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC dc, LPCRECTL bounds, LPCRECTL,
                         BOOL(CALLBACK*)(ULONG_PTR), ULONG_PTR) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (!bounds) return E_POINTER;
  paint(dc, {bounds->left, bounds->top, bounds->right, bounds->bottom});
  return S_OK;
}

LRESULT OleControl::Window::on_paint(UINT, WPARAM, LPARAM, BOOL&) {
  PAINTSTRUCT painting;
  const HDC dc = BeginPaint(&painting);
  RECT place;
  GetClientRect(&place);
  owner_.paint(dc, place);
  EndPaint(&painting);
  return 0;
}

LRESULT OleControl::Window::on_timer(UINT, WPARAM, LPARAM, BOOL&) {
  owner_.tick();
  return 0;
}
