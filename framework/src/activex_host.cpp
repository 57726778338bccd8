#include <afx.h>
#include <atlhost.h>

#include <framework/system_library.h>

namespace ATL {

namespace {

// The system's own host for ActiveX controls.
struct Host {
  HRESULT(WINAPI* create_control)(LPCOLESTR name, HWND window, IStream* stream, IUnknown** container);
  HRESULT(WINAPI* attach_control)(IUnknown* control, HWND window, IUnknown** container);
  HRESULT(WINAPI* get_control)(HWND window, IUnknown** control);
  bool there;

  Host() {
    framework::SystemLibrary library("atl.dll");
    there = library.find(create_control, "AtlAxCreateControl") && library.find(attach_control, "AtlAxAttachControl") &&
            library.find(get_control, "AtlAxGetControl");
  }
};

const Host& host() {
  static const Host found;
  return found;
}

UINT get_control_message() {
  static const UINT message = RegisterWindowMessageA("WM_ATLGETCONTROL");
  return message;
}

// An object without IOleObject has no window and no site. The system's library refuses it, so the host only holds a
// reference.
constexpr char plain_object[] = "kexframework.PlainObject";

IUnknown* plain_object_of(HWND window) { return static_cast<IUnknown*>(GetPropA(window, plain_object)); }

bool keep_plain_object(HWND window, LPCWSTR name) {
  CLSID id;
  if (FAILED(CLSIDFromString(name, &id))) return false;
  CComPtr<IUnknown> object;
  if (FAILED(object.CoCreateInstance(id, nullptr, CLSCTX_ALL)) || CComQIPtr<IOleObject>(object)) return false;
  if (!SetPropA(window, plain_object, object)) return false;
  object.Detach();
  return true;
}

void release_plain_object(HWND window) {
  if (auto* object = static_cast<IUnknown*>(RemovePropA(window, plain_object))) object->Release();
}

// Whether the window has the control that its text names. True if the text names none.
bool has_its_control(HWND window, LPCSTR name) {
  if (!name || !*name) return true;
  const CA2W wide(name);
  CComPtr<IUnknown> container;
  return host().there &&
         (SUCCEEDED(host().create_control(wide, window, nullptr, &container)) || keep_plain_object(window, wide));
}

// The library subclasses the window when it creates the control. Messages that it does not handle arrive here.
LRESULT CALLBACK host_procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CREATE) {
    try {
      return has_its_control(window, reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpszName) ? 0 : -1;
    } catch (CException* exception) {  // the text cannot be converted
      exception->Delete();
      return -1;
    }
  }
  if (message == WM_NCDESTROY) release_plain_object(window);
  if (message == get_control_message()) {
    IUnknown* object = plain_object_of(window);
    if (object)
      object->AddRef();
    else if (FAILED(host().get_control(window, &object)))
      object = nullptr;
    return reinterpret_cast<LRESULT>(object);
  }
  return DefWindowProc(window, message, wParam, lParam);
}

}  // namespace

BOOL AtlAxWinInit() {
  if (!host().there) return FALSE;
  // A global class (CS_GLOBALCLASS): each module creates windows of it with its own instance.
  static CWndClassInfo info = {{sizeof(WNDCLASSEX), CS_GLOBALCLASS | CS_DBLCLKS, host_procedure, 0, 0, nullptr, nullptr,
                                nullptr, reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1), nullptr, ATLAXWIN_CLASS, nullptr},
                               nullptr};
  WNDPROC none;
  return info.Register(&none) != 0;
}

HRESULT AtlAxAttachControl(IUnknown* control, HWND window, IUnknown** container) {
  return host().there ? host().attach_control(control, window, container) : E_FAIL;
}

HRESULT AtlAxGetControl(HWND window, IUnknown** control) {
  if (!control) return E_POINTER;
  *control = reinterpret_cast<IUnknown*>(SendMessage(window, get_control_message(), 0, 0));
  return *control ? S_OK : E_FAIL;
}

}  // namespace ATL
