// The parts of a DLL with COM classes besides the classes: factories, and a count of objects and locks.
//
//     class Lamp : public Counted<ILamp> { ... };       // the class implements QueryInterface
//     HRESULT WINAPI DllGetClassObject(REFCLSID id, REFIID wanted, void** object) {
//       return id == __uuidof(Lamp) ? in_process::give<in_process::Factory<LampObject>>(wanted, object) : ...;
//     }
#ifndef EXAMPLES_COMPONENTS_IN_PROCESS_SERVER_H
#define EXAMPLES_COMPONENTS_IN_PROCESS_SERVER_H

#include <windows.h>
#include <unknwn.h>

#include <atomic>
#include <new>

namespace in_process {

// Objects and locks that keep the DLL loaded.
inline std::atomic<long> in_use;

// An object that counts its references, initially one.
template <class... Interfaces>
class Counted : public Interfaces... {
 public:
  Counted() { ++in_use; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  virtual ~Counted() { --in_use; }

  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  std::atomic<ULONG> references_ = 1;
};

// Returns an interface of a new object. No exception may leave a COM method.
template <class Object>
HRESULT give(REFIID wanted, void** result) try {
  auto* const object = new Object;
  const HRESULT found = object->QueryInterface(wanted, result);
  object->Release();
  return found;
} catch (const std::bad_alloc&) {
  *result = nullptr;
  return E_OUTOFMEMORY;
} catch (...) {
  *result = nullptr;
  return E_FAIL;
}

template <class Object>
class Factory : public Counted<IClassFactory> {
 public:
  STDMETHODIMP QueryInterface(REFIID wanted, void** object) override {
    *object = wanted == IID_IUnknown || wanted == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
    if (!*object) return E_NOINTERFACE;
    this->AddRef();
    return S_OK;
  }
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID wanted, void** object) override {
    *object = nullptr;
    return outer ? CLASS_E_NOAGGREGATION : give<Object>(wanted, object);
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    in_use += lock ? 1 : -1;
    return S_OK;
  }
};

}  // namespace in_process

#endif
