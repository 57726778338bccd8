// A COM object that records the calls of its IDispatch and returns what the test sets.
#ifndef TESTS_SUPPORT_RECORDING_DISPATCH_H
#define TESTS_SUPPORT_RECORDING_DISPATCH_H

#include <atlbase.h>

#include <functional>
#include <vector>

// One call of IDispatch::Invoke.
struct DispatchCall {
  DISPID id;
  WORD flags;
  std::vector<CComVariant> arguments;  // the first one first
  std::vector<DISPID> named;
  bool wants_result;
};

// COM objects are deleted by Release only.
class RecordingDispatch : public IDispatch {
 public:
  RecordingDispatch() { ++alive; }
  RecordingDispatch(const RecordingDispatch&) = delete;
  RecordingDispatch& operator=(const RecordingDispatch&) = delete;
  virtual ~RecordingDispatch() { --alive; }

  std::vector<DispatchCall> calls;
  // What the calls return: the result, the return value, and what a test does to the exception information.
  CComVariant answer;
  HRESULT returned = S_OK;
  std::function<void(EXCEPINFO*)> raise;

  ULONG references() const { return references_; }
  // The number of objects.
  inline static int alive = 0;

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (id != IID_IUnknown && id != IID_IDispatch) {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* sent, VARIANT* result, EXCEPINFO* information,
                      UINT*) override {
    DispatchCall call{id, flags, {}, {}, result != nullptr};
    for (UINT i = sent->cArgs; i > 0; --i) call.arguments.emplace_back(sent->rgvarg[i - 1]);
    call.named.assign(sent->rgdispidNamedArgs, sent->rgdispidNamedArgs + sent->cNamedArgs);
    calls.push_back(call);
    if (raise) raise(information);
    return result && SUCCEEDED(returned) ? VariantCopy(result, &answer) : returned;
  }

 private:
  ULONG references_ = 1;
};

#endif
