#include <kexlib/text/test_object_id.h>

#include <support/variant_copy.h>
#include <support/widened.h>

using namespace kexlib;

namespace {

void copy(VARIANT& target, const VARIANT& source) {
  const HRESULT result = copy_variant(target, source);
  if (SUCCEEDED(result)) return;
  target.vt = VT_ERROR;
  target.scode = result;
  AtlThrow(result);
}

}  // namespace

kexTestObjectID::kexTestObjectID() : kexTestObjectID(nullptr) {}

kexTestObjectID::kexTestObjectID(const char* text) : id{}, special(widened(text).Detach()) {}

kexTestObjectID::~kexTestObjectID() {
  SysFreeString(special);
  VariantClear(&id);
}

long kexTestObjectID::put_id(VARIANT value) {
  copy(id, value);
  return S_OK;
}

long kexTestObjectID::get_id(VARIANT* out) const {
  if (!out) return E_POINTER;
  const HRESULT cleared = VariantClear(out);
  if (FAILED(cleared)) return cleared;
  copy(*out, id);
  return S_OK;
}

bool kexTestObjectID::is_configured() const { return id.vt != VT_EMPTY; }

bool kexTestObjectID::is_special_value() const {
  if (id.vt != VT_BSTR || !SysStringLen(id.bstrVal)) return false;
  return VarBstrCmp(id.bstrVal, special, LOCALE_USER_DEFAULT, 0) == static_cast<HRESULT>(VARCMP_EQ);
}
