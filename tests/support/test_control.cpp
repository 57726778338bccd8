#include <support/test_control.h>

#include <new>

namespace {

// The rest of the stream.
std::string rest_of(IStream* stream) {
  std::string text;
  char buffer[100];
  ULONG count = 0;
  while (SUCCEEDED(stream->Read(buffer, sizeof buffer, &count)) && count) text.append(buffer, count);
  return text;
}

}  // namespace

TestControl::~TestControl() { TestControl::InPlaceDeactivate(); }

HRESULT TestControl::QueryInterface(REFIID id, void** object) {
  *object = nullptr;
  if (id == IID_IUnknown || (id == IID_IOleObject && is_ole_object)) *object = static_cast<IOleObject*>(this);
  if (id == IID_IDispatch && has_dispatch) *object = static_cast<IDispatch*>(this);
  if (id == IID_IOleWindow || id == IID_IOleInPlaceObject) *object = static_cast<IOleInPlaceObject*>(this);
  if (id == IID_IPersist || id == IID_IPersistStreamInit) *object = static_cast<IPersistStreamInit*>(this);
  if (id == IID_IPersistStorage) *object = static_cast<IPersistStorage*>(this);
  if (!*object) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

HRESULT TestControl::SetClientSite(IOleClientSite* site) {
  site_ = site;
  return S_OK;
}

HRESULT TestControl::Close(DWORD) {
  closed = true;
  return InPlaceDeactivate();
}

HRESULT TestControl::DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND parent, LPCRECT place) {
  if (verb != OLEIVERB_INPLACEACTIVATE || window) return S_OK;
  window = CreateWindowA("STATIC", "control", WS_CHILD | WS_VISIBLE, place->left, place->top,
                         place->right - place->left, place->bottom - place->top, parent, nullptr, nullptr, nullptr);
  return window ? S_OK : E_FAIL;
}

HRESULT TestControl::SetExtent(DWORD, SIZEL* size) {
  size_ = *size;
  return S_OK;
}

HRESULT TestControl::GetExtent(DWORD, SIZEL* size) {
  *size = natural_size ? *natural_size : size_;
  return S_OK;
}

HRESULT TestControl::GetMiscStatus(DWORD, DWORD* status) {
  *status = OLEMISC_INSIDEOUT | OLEMISC_ACTIVATEWHENVISIBLE;
  return S_OK;
}

HRESULT TestControl::GetWindow(HWND* result) {
  *result = window;
  return window ? S_OK : E_FAIL;
}

HRESULT TestControl::InPlaceDeactivate() {
  if (window) DestroyWindow(window);
  window = nullptr;
  return S_OK;
}

HRESULT TestControl::SetObjectRects(LPCRECT place, LPCRECT) {
  if (window) MoveWindow(window, place->left, place->top, place->right - place->left, place->bottom - place->top, TRUE);
  return S_OK;
}

HRESULT TestControl::GetClassID(CLSID* id) {
  *id = TestControlClass::id;
  return S_OK;
}

HRESULT TestControl::Load(IStream* stream) {
  if (refuses_state) return E_FAIL;
  state = rest_of(stream);
  return S_OK;
}

HRESULT TestControl::InitNew() {
  began_anew = true;
  return refuses_state ? E_FAIL : S_OK;
}

HRESULT TestControl::Load(IStorage* storage) {
  CComPtr<IStream> stream;
  HRESULT result = storage->OpenStream(L"state", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, &stream);
  if (SUCCEEDED(result)) state = rest_of(stream);
  return result;
}

const CLSID TestControlClass::id = {0x9f4f3a70, 0x6b1d, 0x4c5e, {0x8a, 0x11, 0x52, 0x0e, 0x77, 0x3c, 0x01, 0x02}};

TestControlClass::TestControlClass(const CLSID& as) {
  OleInitialize(nullptr);
  CoRegisterClassObject(as, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_);
}

TestControlClass::~TestControlClass() {
  CoRevokeClassObject(registration_);
  OleUninitialize();
}

HRESULT TestControlClass::QueryInterface(REFIID wanted, void** object) {
  bool known = wanted == IID_IUnknown || wanted == IID_IClassFactory || wanted == IID_IClassFactory2;
  *object = known ? this : nullptr;
  return known ? S_OK : E_NOINTERFACE;
}

HRESULT TestControlClass::CreateInstance(IUnknown* outer, REFIID wanted, void** object) {
  *object = nullptr;
  return license ? CLASS_E_NOTLICENSED : CreateInstanceLic(outer, nullptr, wanted, nullptr, object);
}

HRESULT TestControlClass::CreateInstanceLic(IUnknown* outer, IUnknown*, REFIID wanted, BSTR key, void** object) {
  *object = nullptr;
  if (outer) return CLASS_E_NOAGGREGATION;
  if (license && (!key || wcscmp(license, key) != 0)) return CLASS_E_NOTLICENSED;
  made = new (std::nothrow) TestControl;
  if (!made) return E_OUTOFMEMORY;
  if (prepare) prepare(made);
  HRESULT result = made->QueryInterface(wanted, object);
  made->Release();
  return result;
}
