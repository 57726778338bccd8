// Variant safe array: a list of VARIANTs as automation passes it, a SAFEARRAY of one dimension.
//
//     QuickVariantSafeArray list(2);
//     CComVariant first(L"first"), second(2);
//     list.PutAt(0, first);
//     list.PutAt(1, second);
//     object->SetItems(list);                          // operator VARIANT: no copy, list keeps the array
//
//     QuickVariantSafeArray items(V_ARRAY(&value));    // a view of an array that value owns
//     for (int i = 0; i < items.GetSize(); ++i) use(items[i]);
//
// Indices count from 0, whatever the lower bound of the array is.
//
// Errors. Attach and PutAt return an HRESULT; everything else returns an empty or null result. Threads: use an array on
// one thread at a time.
#ifndef KEXLIB_COM_VARIANT_SAFE_ARRAY_H
#define KEXLIB_COM_VARIANT_SAFE_ARRAY_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <oleauto.h>

/// A VARIANT that clears itself. It adds nothing to the VARIANT, and can be used wherever one is expected.
class KEXLIB_API kexComVariant : public VARIANT {
 public:
  /// Empty (VT_EMPTY), all bytes zero.
  kexComVariant();

  /// A deep copy (VariantCopy). A failing copy throws as AtlThrow does: MFC's memory exception, or its OLE exception
  /// with the code.
  kexComVariant(const kexComVariant& other);

  /// Replaces the value by a deep copy. A failing copy throws as above and leaves this object empty.
  kexComVariant& operator=(const kexComVariant& other);

  /// VariantClear.
  ~kexComVariant();
};

/// Owns a safe array of VARIANTs, or views one. Derived objects may be deleted through this class.
class KEXLIB_API QuickVariantSafeArray {
 public:
  /// Without an array.
  QuickVariantSafeArray();

  /// Creates and owns an array of `size` empty elements (SafeArrayCreateVector, lower bound 0). If that fails, the
  /// object has no array.
  QuickVariantSafeArray(int size);

  /// Views an array as Attach does. If Attach refuses it, the object has no array.
  QuickVariantSafeArray(SAFEARRAY* psa);

  QuickVariantSafeArray(const QuickVariantSafeArray&) = delete;
  QuickVariantSafeArray& operator=(const QuickVariantSafeArray&) = delete;

  /// Destroys an owned array (SafeArrayDestroy). The system does not destroy an array whose data is accessed: call
  /// UnaccessData first, otherwise the array leaks.
  virtual ~QuickVariantSafeArray();

  /// Views an array; the caller keeps it. Returns E_FAIL and changes nothing if the element type is not VT_VARIANT, the
  /// array has other than one dimension, or `psa` is null. An array without an element type (SafeArrayGetVartype fails)
  /// is accepted. The previous array is detached, not destroyed, even if it was owned.
  long Attach(SAFEARRAY* psa);

  /// Detaches the array and returns it. The caller then owns an array that this object owned.
  SAFEARRAY* Detach();

  /// The number of elements. The object must have an array.
  int GetSize();

  /// A copy of the element (SafeArrayGetElement). Empty if the index is out of bounds, the copy fails, or the elements
  /// of an array without an element type do not have the size of a VARIANT.
  kexComVariant GetAt(int index);

  /// GetAt(index).
  kexComVariant operator[](int index);

  /// Stores a copy of the value (SafeArrayPutElement) and returns its HRESULT: DISP_E_BADINDEX if the index is out of
  /// bounds, E_INVALIDARG if there is no array. Also E_INVALIDARG, without a call, if the elements of an array without
  /// an element type do not have the size of a VARIANT. An object in the value (VT_DISPATCH, VT_UNKNOWN) gets one
  /// reference more than the copy adds, even if the store fails: the caller releases it, or passes its own reference
  /// on.
  long PutAt(int index, VARIANT& value);

  /// The first element of the array's data, which stays locked until UnaccessData (SafeArrayAccessData). Null, and
  /// nothing is locked, if there is no array or its elements do not have the size of a VARIANT.
  VARIANT* AccessData();

  /// Ends AccessData (SafeArrayUnaccessData). The pointer is invalid afterwards. Does nothing if AccessData returns
  /// null.
  void UnaccessData();

  /// The array in a VARIANT (VT_ARRAY | VT_VARIANT), not a copy: do not clear it while this object owns the array.
  operator VARIANT();

  /// The array, which this object keeps.
  operator SAFEARRAY*();

 private:
  bool holds_variants() const;
  LONG place_of(int index) const;

  SAFEARRAY* array;
  VARIANT* data;
  int owned;
};

#endif
