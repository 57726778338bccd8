// CWnd as the host of an ActiveX control.
#include <afxdisp.h>
#include <afxwin.h>
#include <atlhost.h>

#include <framework/dispatch.h>

#include <climits>
#include <new>
#include <vector>

namespace {

CComPtr<IUnknown> control_of(HWND window) {
  CComPtr<IUnknown> control;
  AtlAxGetControl(window, &control);
  return control;
}

// Empty if there is no control.
CComPtr<IDispatch> dispatch_of(HWND window) {
  CComPtr<IDispatch> dispatch;
  if (CComPtr<IUnknown> control = control_of(window)) {
    HRESULT result = control.QueryInterface(&dispatch);
    if (FAILED(result)) AfxThrowOleException(result);
  }
  return dispatch;
}

HRESULT make(REFCLSID clsid, BSTR licenseKey, IUnknown** control) {
  constexpr DWORD context = CLSCTX_INPROC_SERVER;  // controls draw and take input in this process
  if (!licenseKey) return CoCreateInstance(clsid, nullptr, context, IID_IUnknown, reinterpret_cast<void**>(control));
  CComPtr<IClassFactory2> factory;
  HRESULT result = CoGetClassObject(clsid, context, nullptr, IID_IClassFactory2, reinterpret_cast<void**>(&factory));
  if (FAILED(result)) return result;
  return factory->CreateInstanceLic(nullptr, nullptr, IID_IUnknown, licenseKey, reinterpret_cast<void**>(control));
}

HRESULT begin_anew(IUnknown* control) {
  CComQIPtr<IPersistStreamInit> state(control);
  HRESULT result = state ? state->InitNew() : S_OK;
  return result == E_NOTIMPL ? S_OK : result;  // E_NOTIMPL: nothing to initialise
}

HRESULT load_stream(IUnknown* control, const std::vector<BYTE>& bytes) {
  CComQIPtr<IPersistStreamInit> state(control);
  if (!state) return E_NOINTERFACE;
  CComPtr<IStream> stream;
  HRESULT result = CreateStreamOnHGlobal(nullptr, TRUE, &stream);
  if (SUCCEEDED(result)) result = stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
  if (SUCCEEDED(result)) result = stream->Seek({}, STREAM_SEEK_SET, nullptr);
  return SUCCEEDED(result) ? state->Load(stream) : result;
}

HRESULT load_storage(IUnknown* control, const std::vector<BYTE>& bytes) {
  CComQIPtr<IPersistStorage> state(control);
  if (!state) return E_NOINTERFACE;
  CComPtr<ILockBytes> file;
  ULONG written = 0;
  HRESULT result = CreateILockBytesOnHGlobal(nullptr, TRUE, &file);
  if (SUCCEEDED(result)) result = file->WriteAt({}, bytes.data(), static_cast<ULONG>(bytes.size()), &written);
  CComPtr<IStorage> storage;
  if (SUCCEEDED(result))
    result = StgOpenStorageOnILockBytes(file, nullptr, STGM_READWRITE | STGM_SHARE_EXCLUSIVE, nullptr, 0, &storage);
  return SUCCEEDED(result) ? state->Load(storage) : result;
}

HRESULT load(IUnknown* control, CFile* file, BOOL storage) try {
  ULONGLONG length = file->GetLength(), position = file->GetPosition();
  ULONGLONG count = length > position ? length - position : 0;
  if (count > INT_MAX) return E_OUTOFMEMORY;
  std::vector<BYTE> bytes(static_cast<size_t>(count));
  bytes.resize(file->Read(bytes.data(), static_cast<UINT>(count)));
  return storage ? load_storage(control, bytes) : load_stream(control, bytes);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

// Returns false if the control rejects the text.
bool set_text(CWnd* window, DISPID property, LPCSTR text) {
  try {
    window->SetProperty(property, VT_BSTR, text);
    return true;
  } catch (COleException* exception) {
    exception->Delete();
  } catch (COleDispatchException* exception) {
    exception->Delete();
  }
  return false;
}

}  // namespace

void AfxEnableControlContainer() { AfxGetModuleState()->hosts_controls = true; }

BOOL CWnd::CreateControl(LPCTSTR className, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                         CFile* persist, BOOL storage, BSTR licenseKey) {
  CLSID clsid;
  if (FAILED(CLSIDFromString(CA2W(className), &clsid))) return FALSE;
  return CreateControl(clsid, windowName, style, rect, parent, id, persist, storage, licenseKey);
}

BOOL CWnd::CreateControl(REFCLSID clsid, LPCTSTR windowName, DWORD style, const POINT* place, const SIZE* size,
                         CWnd* parent, UINT id, CFile* persist, BOOL storage, BSTR licenseKey) {
  return CreateControl(clsid, windowName, style, CRect(*place, *size), parent, id, persist, storage, licenseKey);
}

BOOL CWnd::CreateControl(REFCLSID clsid, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                         CFile* persist, BOOL storage, BSTR licenseKey) {
  if (!AfxGetModuleState()->hosts_controls || ::IsWindow(m_hWnd) || !parent || !parent->m_hWnd) return FALSE;
  CComPtr<IUnknown> control;
  if (FAILED(make(clsid, licenseKey, &control))) return FALSE;
  if (FAILED(persist ? load(control, persist, storage) : begin_anew(control))) return FALSE;
  // Not the virtual Create: the class of a control overrides it to call CreateControl. A window text would name another
  // control.
  if (!AtlAxWinInit() || !CWnd::Create(ATLAXWIN_CLASS, "", style | WS_CLIPCHILDREN, rect, parent, id)) return FALSE;
  CComPtr<IUnknown> container;
  if (FAILED(AtlAxAttachControl(control, m_hWnd, &container))) {
    DestroyWindow();
    return FALSE;
  }
  if (windowName && !set_text(this, DISPID_CAPTION, windowName)) set_text(this, DISPID_TEXT, windowName);
  return TRUE;
}

LPUNKNOWN CWnd::GetControlUnknown() { return control_of(m_hWnd); }

void CWnd::InvokeHelper(DISPID id, WORD flags, VARTYPE resultType, void* result, const BYTE* parameters, ...) {
  va_list arguments;
  va_start(arguments, parameters);
  framework::invoke(dispatch_of(m_hWnd), id, flags, resultType, result, framework::packed(parameters, arguments));
  va_end(arguments);
}

void CWnd::SetProperty(DISPID id, VARTYPE type, ...) {
  va_list argument;
  va_start(argument, type);
  framework::set_property(dispatch_of(m_hWnd), id, type, argument);
  va_end(argument);
}

void CWnd::GetProperty(DISPID id, VARTYPE type, void* value) const {
  framework::get_property(dispatch_of(m_hWnd), id, type, value);
}
