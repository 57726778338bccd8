// Owners of COM values: interface pointers, strings and variants.
#ifndef FRAMEWORK_ATLCOMCLI_H
#define FRAMEWORK_ATLCOMCLI_H

#include <atlconv.h>

#include <type_traits>
#include <utility>

namespace ATL {

// What CComPtr shows of an interface: AddRef and Release are the pointer's own affair.
template <class T>
class _NoAddRefReleaseOnCComPtr : public T {
 private:
  STDMETHOD_(ULONG, AddRef)() = 0;
  STDMETHOD_(ULONG, Release)() = 0;
};

// A counted pointer to an interface.
//
//     CComPtr<IDispatch> dispatch;
//     HRESULT result = unknown->QueryInterface(&dispatch);    // the pointer must be empty
template <class T>
class CComPtr {
 public:
  CComPtr() noexcept = default;
  CComPtr(std::nullptr_t) noexcept {}
  CComPtr(T* object) noexcept : p(object) {
    if (p) p->AddRef();
  }
  CComPtr(const CComPtr& other) noexcept : CComPtr(other.p) {}
  CComPtr(CComPtr&& other) noexcept : p(other.Detach()) {}
  ~CComPtr() {
    if (p) p->Release();
  }

  CComPtr& operator=(T* object) noexcept {
    CComPtr(object).swap(*this);
    return *this;
  }
  CComPtr& operator=(const CComPtr& other) noexcept { return *this = other.p; }
  CComPtr& operator=(CComPtr&& other) noexcept {
    CComPtr(std::move(other)).swap(*this);
    return *this;
  }

  operator T*() const noexcept { return p; }
  T& operator*() const {
    ATLASSERT(p);
    return *p;
  }
  _NoAddRefReleaseOnCComPtr<T>* operator->() const {
    ATLASSERT(p);
    return static_cast<_NoAddRefReleaseOnCComPtr<T>*>(p);
  }
  // For out-parameters. Asserts that the pointer is empty: its reference would leak.
  T** operator&() {
    ATLASSERT(!p);
    return &p;
  }

  void Release() noexcept {
    if (T* object = Detach()) object->Release();
  }
  // Attach takes over the caller's reference; Detach returns the pointer with its reference.
  void Attach(T* object) noexcept {
    Release();
    p = object;
  }
  T* Detach() noexcept { return std::exchange(p, nullptr); }
  HRESULT CopyTo(T** target) const noexcept {
    ATLASSERT(target);
    if (!target) return E_POINTER;
    *target = p;
    if (p) p->AddRef();
    return S_OK;
  }

  HRESULT CoCreateInstance(REFCLSID classId, IUnknown* outer = nullptr, DWORD context = CLSCTX_ALL) {
    ATLASSERT(!p);
    return ::CoCreateInstance(classId, outer, context, __uuidof(T), reinterpret_cast<void**>(&p));
  }
  template <class Q>
  HRESULT QueryInterface(Q** target) const {
    ATLASSERT(p && target);
    return p->QueryInterface(__uuidof(Q), reinterpret_cast<void**>(target));
  }

  T* p = nullptr;

 protected:
  void swap(CComPtr& other) noexcept { std::swap(p, other.p); }
};

// A CComPtr that queries the given object for its interface. It is empty if the object does not have the interface.
template <class T>
class CComQIPtr : public CComPtr<T> {
 public:
  CComQIPtr() noexcept = default;
  CComQIPtr(T* object) noexcept : CComPtr<T>(object) {}
  CComQIPtr(IUnknown* object) noexcept requires(!std::is_same_v<T, IUnknown>) {
    if (object) object->QueryInterface(__uuidof(T), reinterpret_cast<void**>(&this->p));
  }
  CComQIPtr& operator=(T* object) noexcept {
    CComPtr<T>::operator=(object);
    return *this;
  }
  CComQIPtr& operator=(IUnknown* object) noexcept requires(!std::is_same_v<T, IUnknown>) {
    CComQIPtr(object).swap(*this);
    return *this;
  }
};

// Owns a BSTR. Null is an empty text. Throws E_OUTOFMEMORY when no memory is left (AtlThrow).
class CComBSTR {
 public:
  CComBSTR() noexcept = default;
  CComBSTR(LPCOLESTR text) : m_str(text ? allocated(SysAllocString(text)) : nullptr) {}
  // Without a BSTR for a length of 0.
  CComBSTR(int length, LPCOLESTR text)
      : m_str(length ? allocated(SysAllocStringLen(text, static_cast<UINT>(length))) : nullptr) {}
  // Converted in the code page of the calling thread.
  CComBSTR(LPCSTR text) : m_str(text ? allocated(SysAllocString(CA2W(text))) : nullptr) {}
  CComBSTR(const CComBSTR& other) : m_str(other.Copy()) {
    if (other.m_str) allocated(m_str);
  }
  CComBSTR(CComBSTR&& other) noexcept : m_str(other.Detach()) {}
  ~CComBSTR() { SysFreeString(m_str); }

  CComBSTR& operator=(CComBSTR other) noexcept {
    std::swap(m_str, other.m_str);
    return *this;
  }

  operator BSTR() const noexcept { return m_str; }
  // For out-parameters. Asserts that the string is empty: its text would leak.
  BSTR* operator&() {
    ATLASSERT(!m_str);
    return &m_str;
  }
  // True if there is no BSTR.
  bool operator!() const noexcept { return !m_str; }

  unsigned Length() const noexcept { return SysStringLen(m_str); }
  // Returns a new BSTR with the same bytes, embedded zeros included; null if there is no text or no memory.
  BSTR Copy() const noexcept {
    return m_str ? SysAllocStringByteLen(reinterpret_cast<LPCSTR>(m_str), SysStringByteLen(m_str)) : nullptr;
  }
  // Takes ownership. Asserts that the string is empty: its text would leak.
  void Attach(BSTR text) noexcept {
    ATLASSERT(!m_str);
    m_str = text;
  }
  BSTR Detach() noexcept { return std::exchange(m_str, nullptr); }

  // Compares by the user's language, case-sensitively; null equals empty.
  friend bool operator==(const CComBSTR& a, const CComBSTR& b) {
    return VarBstrCmp(a.m_str, b.m_str, LOCALE_USER_DEFAULT, 0) == static_cast<HRESULT>(VARCMP_EQ);
  }

  BSTR m_str = nullptr;

 private:
  static BSTR allocated(BSTR text) {
    if (!text) AtlThrow(E_OUTOFMEMORY);
    return text;
  }
};

// A VARIANT that is cleared by the destructor. If a copy fails the value becomes VT_ERROR with the error code, and the
// error is thrown (AtlThrow).
class CComVariant : public VARIANT {
 public:
  CComVariant() noexcept { VariantInit(this); }
  CComVariant(const VARIANT& value) : CComVariant() { copied(Copy(&value)); }
  CComVariant(const CComVariant& value) : CComVariant(static_cast<const VARIANT&>(value)) {}
  CComVariant(LPCOLESTR text) : CComVariant() {
    bstrVal = CComBSTR(text).Detach();  // may throw; the variant is still empty then
    vt = VT_BSTR;
  }
  CComVariant(LPCSTR text) : CComVariant() {
    bstrVal = CComBSTR(text).Detach();
    vt = VT_BSTR;
  }
  CComVariant(bool value) noexcept : CComVariant() {
    vt = VT_BOOL;
    boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  }
  CComVariant(short value) noexcept : CComVariant() {
    vt = VT_I2;
    iVal = value;
  }
  CComVariant(int value) noexcept : CComVariant() {
    vt = VT_I4;
    lVal = value;
  }
  CComVariant(long value) noexcept : CComVariant() {
    vt = VT_I4;
    lVal = value;
  }
  // The real class has more types, each with its own VARTYPE. They would convert here.
  template <typename Number>
  CComVariant(Number value) requires std::is_arithmetic_v<Number>
  = delete;
  CComVariant(double value) noexcept : CComVariant() {
    vt = VT_R8;
    dblVal = value;
  }
  CComVariant(IDispatch* object) noexcept : CComVariant() {
    vt = VT_DISPATCH;
    pdispVal = object;
    if (object) object->AddRef();
  }
  CComVariant(IUnknown* object) noexcept : CComVariant() {
    vt = VT_UNKNOWN;
    punkVal = object;
    if (object) object->AddRef();
  }
  ~CComVariant() { Clear(); }

  CComVariant& operator=(const VARIANT& value) {
    if (this != &value) copied(Copy(&value));
    return *this;
  }
  CComVariant& operator=(const CComVariant& value) { return *this = static_cast<const VARIANT&>(value); }

  HRESULT Clear() noexcept { return VariantClear(this); }
  // On failure the value is empty, or what VariantClear leaves. VariantCopy may leave a shallow copy then, which must
  // not be cleared: it would take the source's contents.
  HRESULT Copy(const VARIANT* value) noexcept {
    if (value == this) return S_OK;
    HRESULT result = Clear();
    if (FAILED(result)) return result;
    result = VariantCopy(this, const_cast<VARIANT*>(value));
    if (FAILED(result)) VariantInit(this);
    return result;
  }
  HRESULT ChangeType(VARTYPE type, const VARIANT* source = nullptr) noexcept {
    return VariantChangeType(this, source ? const_cast<VARIANT*>(source) : this, 0, type);
  }

 private:
  void copied(HRESULT result) {
    if (SUCCEEDED(result)) return;
    vt = VT_ERROR;
    scode = result;
    AtlThrow(result);
  }
};

}  // namespace ATL

#endif
