// An unregistered COM server for tests: a few shapes, described by the type library in its resources.
#include <in_process_server.h>
#include <oleauto.h>
#include <shapes.h>

using in_process::Counted;

namespace {

// Returns an interface that the object implements, with a new reference; null for other interfaces.
template <class Wanted, class Object>
bool offer(Object* object, REFIID wanted, void** result) {
  if (wanted != __uuidof(Wanted)) return false;
  *result = static_cast<Wanted*>(object);
  object->AddRef();
  return true;
}

// IArea, whose IDispatch is implemented by the type library.
template <class... More>
class WithArea : public Counted<IArea, More...> {
 public:
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    wchar_t path[MAX_PATH];
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&in_process::in_use), &self);
    GetModuleFileNameW(self, path, MAX_PATH);
    ITypeLib* library = nullptr;
    HRESULT result = LoadTypeLibEx(path, REGKIND_NONE, &library);
    if (FAILED(result)) return result;
    result = library->GetTypeInfoOfGuid(__uuidof(IArea), info);
    library->Release();
    return result;
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    ITypeInfo* info = nullptr;
    HRESULT result = GetTypeInfo(0, 0, &info);
    if (FAILED(result)) return result;
    result = DispGetIDsOfNames(info, names, count, ids);
    info->Release();
    return result;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* sent, VARIANT* answer, EXCEPINFO* information,
                      UINT* wrong) override {
    ITypeInfo* info = nullptr;
    HRESULT result = GetTypeInfo(0, 0, &info);
    if (FAILED(result)) return result;
    result = DispInvoke(static_cast<IArea*>(this), info, id, flags, sent, answer, information, wrong);
    info->Release();
    return result;
  }
};

class CircleObject : public WithArea<> {
 public:
  STDMETHODIMP QueryInterface(REFIID wanted, void** object) override {
    *object = nullptr;
    return offer<IUnknown>(this, wanted, object) || offer<IDispatch>(this, wanted, object) ||
                   offer<IArea>(this, wanted, object)
               ? S_OK
               : E_NOINTERFACE;
  }
  STDMETHODIMP get_Area(double* area) override {
    *area = 3.25;
    return S_OK;
  }
};

class SquareObject : public WithArea<INamed> {
 public:
  STDMETHODIMP QueryInterface(REFIID wanted, void** object) override {
    *object = nullptr;
    if (wanted == IID_IUnknown) return QueryInterface(__uuidof(INamed), object);
    return offer<IDispatch>(static_cast<IArea*>(this), wanted, object) || offer<IArea>(this, wanted, object) ||
                   offer<INamed>(this, wanted, object)
               ? S_OK
               : E_NOINTERFACE;
  }
  STDMETHODIMP get_Area(double* area) override {
    *area = 4;
    return S_OK;
  }
  STDMETHODIMP Name(BSTR* name) override {
    *name = SysAllocString(L"square");
    return S_OK;
  }
};

class FrameObject : public Counted<INamed> {
 public:
  STDMETHODIMP QueryInterface(REFIID wanted, void** object) override {
    *object = nullptr;
    return offer<IUnknown>(this, wanted, object) || offer<INamed>(this, wanted, object) ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP Name(BSTR* name) override {
    *name = SysAllocString(L"frame");
    return S_OK;
  }
};

}  // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID wanted, void** object) {
  *object = nullptr;
  if (id == __uuidof(Circle)) return in_process::give<in_process::Factory<CircleObject>>(wanted, object);
  if (id == __uuidof(Square)) return in_process::give<in_process::Factory<SquareObject>>(wanted, object);
  if (id == __uuidof(Frame)) return in_process::give<in_process::Factory<FrameObject>>(wanted, object);
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return in_process::in_use == 0 ? S_OK : S_FALSE; }
