#ifndef KEXLIB_SUPPORT_VARIANT_COPY_H
#define KEXLIB_SUPPORT_VARIANT_COPY_H

#include <kexlib/windows.h>

#include <oleauto.h>

namespace kexlib {

// Makes `target` a copy of `source` (VariantCopy). On failure `target` is empty.
//
// A failing VariantCopy may leave a shallow copy in the target. Clearing it would release the contents of the source.
inline HRESULT copy_variant(VARIANT& target, const VARIANT& source) {
  VARIANT copy;
  VariantInit(&copy);
  const HRESULT result = VariantCopy(&copy, const_cast<VARIANT*>(&source));
  if (FAILED(result)) VariantInit(&copy);
  VariantClear(&target);
  target = copy;
  return result;
}

}  // namespace kexlib

#endif
