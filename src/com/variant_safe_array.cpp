#include <kexlib/com/variant_safe_array.h>

#include <atldef.h>

#include <climits>
#include <utility>

kexComVariant::kexComVariant() : VARIANT{} { VariantInit(this); }

kexComVariant::kexComVariant(const kexComVariant& other) : kexComVariant() { *this = other; }

kexComVariant& kexComVariant::operator=(const kexComVariant& other) {
  if (this == &other) return *this;
  const HRESULT result = VariantCopy(this, const_cast<kexComVariant*>(&other));
  if (FAILED(result)) {
    VariantClear(this);
    AtlThrow(result);
  }
  return *this;
}

kexComVariant::~kexComVariant() { VariantClear(this); }

QuickVariantSafeArray::QuickVariantSafeArray() : array(nullptr), data(nullptr), owned(0) {}

namespace {

// Not every system checks whether the bytes can be counted.
SAFEARRAY* create(int size) {
  constexpr int most = static_cast<int>(UINT_MAX / sizeof(VARIANT));
  return size < 0 || size > most ? nullptr : SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(size));
}

}  // namespace

QuickVariantSafeArray::QuickVariantSafeArray(int size) : array(create(size)), data(nullptr), owned(1) {}

QuickVariantSafeArray::QuickVariantSafeArray(SAFEARRAY* psa) : QuickVariantSafeArray() { Attach(psa); }

QuickVariantSafeArray::~QuickVariantSafeArray() {
  if (array && owned) SafeArrayDestroy(array);
}

long QuickVariantSafeArray::Attach(SAFEARRAY* psa) {
  VARTYPE type;
  if (SUCCEEDED(SafeArrayGetVartype(psa, &type)) && type != VT_VARIANT) return E_FAIL;
  if (SafeArrayGetDim(psa) != 1) return E_FAIL;
  array = psa;  // what it was before is not destroyed: that is meant
  owned = 0;
  return S_OK;
}

SAFEARRAY* QuickVariantSafeArray::Detach() { return std::exchange(array, nullptr); }

int QuickVariantSafeArray::GetSize() { return static_cast<int>(array->rgsabound[0].cElements); }

LONG QuickVariantSafeArray::place_of(int index) const {
  LONG first = 0;
  SafeArrayGetLBound(array, 1, &first);
  // An index that goes round is outside the array, and refused as such.
  return static_cast<LONG>(static_cast<ULONG>(first) + static_cast<ULONG>(index));
}

kexComVariant QuickVariantSafeArray::GetAt(int index) {
  kexComVariant element;
  // An array that does not know its element type may have elements of another size.
  if (!array || array->cbElements != sizeof(VARIANT)) return element;
  LONG place = place_of(index);
  SafeArrayGetElement(array, &place, &element);
  return element;
}

kexComVariant QuickVariantSafeArray::operator[](int index) { return GetAt(index); }

long QuickVariantSafeArray::PutAt(int index, VARIANT& value) {
  // Besides the reference that the copy takes: that is meant.
  const bool holds_object = value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN;
  if (holds_object && value.punkVal) value.punkVal->AddRef();
  LONG place = place_of(index);
  return SafeArrayPutElement(array, &place, &value);
}

VARIANT* QuickVariantSafeArray::AccessData() {
  void* elements = nullptr;
  if (FAILED(SafeArrayAccessData(array, &elements))) elements = nullptr;
  data = static_cast<VARIANT*>(elements);
  return data;
}

void QuickVariantSafeArray::UnaccessData() {
  SafeArrayUnaccessData(array);
  data = nullptr;
}

QuickVariantSafeArray::operator VARIANT() {
  VARIANT value = {};
  value.vt = VT_ARRAY | VT_VARIANT;
  value.parray = array;
  return value;
}

QuickVariantSafeArray::operator SAFEARRAY*() { return array; }
