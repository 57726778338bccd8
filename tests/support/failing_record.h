// A record in a VARIANT that the system cannot copy: VariantCopy asks for its size, and that fails.
#ifndef TESTS_SUPPORT_FAILING_RECORD_H
#define TESTS_SUPPORT_FAILING_RECORD_H

#include <windows.h>
#include <oaidl.h>
#include <objbase.h>

// COM objects are deleted by Release alone; this one lies on the stack.
class FailingRecord final : public IRecordInfo {
 public:
  static constexpr HRESULT failure = E_ACCESSDENIED;

  virtual ~FailingRecord() = default;

  // Set to false, the record can be copied.
  bool fails = true;

  // The record; whoever holds this holds one reference.
  VARIANT value() {
    VARIANT value = {};
    value.vt = VT_RECORD;
    value.pvRecord = &data_;
    value.pRecInfo = this;
    return value;
  }

  ULONG references() const { return references_; }
  int clears() const { return clears_; }

  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override { return --references_; }
  STDMETHODIMP RecordInit(void*) override { return S_OK; }
  STDMETHODIMP RecordClear(void*) override {
    ++clears_;
    return S_OK;
  }
  STDMETHODIMP RecordCopy(void*, void*) override { return fails ? failure : S_OK; }
  STDMETHODIMP GetGuid(GUID*) override { return failure; }
  STDMETHODIMP GetName(BSTR*) override { return failure; }
  STDMETHODIMP GetSize(ULONG* size) override {
    *size = sizeof data_;
    return fails ? failure : S_OK;
  }
  STDMETHODIMP GetTypeInfo(ITypeInfo**) override { return failure; }
  STDMETHODIMP GetField(void*, LPCOLESTR, VARIANT*) override { return failure; }
  STDMETHODIMP GetFieldNoCopy(void*, LPCOLESTR, VARIANT*, void**) override { return failure; }
  STDMETHODIMP PutField(ULONG, void*, LPCOLESTR, VARIANT*) override { return failure; }
  STDMETHODIMP PutFieldNoCopy(ULONG, void*, LPCOLESTR, VARIANT*) override { return failure; }
  STDMETHODIMP GetFieldNames(ULONG*, BSTR*) override { return failure; }
  STDMETHODIMP_(BOOL) IsMatchingType(IRecordInfo*) override { return FALSE; }
  STDMETHODIMP_(void*) RecordCreate() override { return fails ? nullptr : CoTaskMemAlloc(sizeof data_); }
  STDMETHODIMP RecordCreateCopy(void*, void** copy) override {
    *copy = RecordCreate();
    return *copy ? S_OK : failure;
  }
  STDMETHODIMP RecordDestroy(void* record) override {
    CoTaskMemFree(record);
    return S_OK;
  }

 private:
  ULONG references_ = 1;
  int clears_ = 0;
  int data_ = 0;
};

#endif
