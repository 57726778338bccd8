#include <kexlib/com/variant_safe_array.h>

#include <support/variant_copy.h>

#include <climits>
#include <utility>

kexComVariant::kexComVariant() : VARIANT{} { VariantInit(this); }

kexComVariant::kexComVariant(const kexComVariant& other) : kexComVariant() { *this = other; }

kexComVariant& kexComVariant::operator=(const kexComVariant& other) {
  if (this == &other) return *this;
  const HRESULT result = kexlib::copy_variant(*this, other);
  if (FAILED(result)) AtlThrow(result);
  return *this;
}

kexComVariant::~kexComVariant() { VariantClear(this); }

QuickVariantSafeArray::QuickVariantSafeArray() : array(nullptr), data(nullptr), owned(0) {}

namespace {

// Not every system checks the size in bytes for overflow.
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
  array = psa;  // by design the previous array is not destroyed: callers may still use it
  owned = 0;
  return S_OK;
}

SAFEARRAY* QuickVariantSafeArray::Detach() { return std::exchange(array, nullptr); }

int QuickVariantSafeArray::GetSize() { return static_cast<int>(array->rgsabound[0].cElements); }

// The system copies as many bytes as an element has, to and from one VARIANT.
bool QuickVariantSafeArray::holds_variants() const { return array && array->cbElements == sizeof(VARIANT); }

LONG QuickVariantSafeArray::place_of(int index) const {
  LONG first = 0;
  SafeArrayGetLBound(array, 1, &first);
  // An index that wraps around is out of bounds, which the system reports.
  return static_cast<LONG>(static_cast<ULONG>(first) + static_cast<ULONG>(index));
}

kexComVariant QuickVariantSafeArray::GetAt(int index) {
  kexComVariant element;
  if (!holds_variants()) return element;
  LONG place = place_of(index);
  // A failure may leave a shallow copy of the element, which must not be cleared.
  if (FAILED(SafeArrayGetElement(array, &place, &element))) VariantInit(&element);
  return element;
}

kexComVariant QuickVariantSafeArray::operator[](int index) { return GetAt(index); }

namespace {

// A record that cannot be copied may leave a shallow copy in the array, which must not be cleared with it.
void drop_shallow_copy(SAFEARRAY* array, LONG place, const VARIANT& value) {
  void* found = nullptr;
  if (value.vt != VT_RECORD || FAILED(SafeArrayPtrOfIndex(array, &place, &found))) return;
  auto* const element = static_cast<VARIANT*>(found);
  if (element->vt == VT_RECORD && element->pvRecord == value.pvRecord) VariantInit(element);
}

}  // namespace

long QuickVariantSafeArray::PutAt(int index, VARIANT& value) {
  // By design one reference more than the copy adds: callers release it, or pass theirs on.
  const bool holds_object = value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN;
  if (holds_object && value.punkVal) value.punkVal->AddRef();
  if (!holds_variants()) return E_INVALIDARG;
  LONG place = place_of(index);
  const HRESULT result = SafeArrayPutElement(array, &place, &value);
  if (FAILED(result)) drop_shallow_copy(array, place, value);
  return result;
}

VARIANT* QuickVariantSafeArray::AccessData() {
  void* elements = nullptr;
  if (!holds_variants() || FAILED(SafeArrayAccessData(array, &elements))) elements = nullptr;
  data = static_cast<VARIANT*>(elements);
  return data;
}

void QuickVariantSafeArray::UnaccessData() {
  if (holds_variants()) SafeArrayUnaccessData(array);
  data = nullptr;
}

QuickVariantSafeArray::operator VARIANT() {
  VARIANT value = {};
  value.vt = VT_ARRAY | VT_VARIANT;
  value.parray = array;
  return value;
}

QuickVariantSafeArray::operator SAFEARRAY*() { return array; }
