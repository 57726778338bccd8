// Variant safe array: a list of VARIANTs as automation passes it, a SAFEARRAY of one dimension.
//
//     QuickVariantSafeArray list(2);
//     CComVariant first(L"first"), second(2);
//     list.PutAt(0, first);
//     list.PutAt(1, second);
//     object->SetItems(list);                          // operator VARIANT: no copy, the array stays list's
//
//     QuickVariantSafeArray items(V_ARRAY(&value));    // looks at an array that somebody else owns
//     for (int i = 0; i < items.GetSize(); ++i) use(items[i]);
//
// Indices count from 0, whatever the lower bound of the array is.
//
// Errors. Attach and PutAt return an HRESULT; everything else gives an empty or null result. Threads: an array belongs
// to one thread at a time.
#ifndef KEXLIB_COM_VARIANT_SAFE_ARRAY_H
#define KEXLIB_COM_VARIANT_SAFE_ARRAY_H

#include <windows.h>

#include <oleauto.h>

#include <kexlib/export.h>

/// A VARIANT that clears itself. It adds nothing to the VARIANT, and can be used wherever one is taken.
class KEXLIB_API kexComVariant : public VARIANT {
 public:
  /// Empty (VT_EMPTY), all bytes zero.
  kexComVariant();

  /// A copy (VariantCopy) of its own. A copy that fails throws as AtlThrow does: MFC's memory exception, or its OLE
  /// exception with the code.
  kexComVariant(const kexComVariant& other);

  /// Clears what it holds and takes a copy. One that fails throws as above and leaves this one empty.
  kexComVariant& operator=(const kexComVariant& other);

  /// VariantClear.
  ~kexComVariant();
};

/// Owns a safe array of VARIANTs, or looks at one. Derived classes are destroyed through it.
class KEXLIB_API QuickVariantSafeArray {
 public:
  /// Without an array.
  QuickVariantSafeArray();

  /// A new array of `size` empty elements (SafeArrayCreateVector, lower bound 0), which this object owns. Where it
  /// cannot be made, there is none.
  QuickVariantSafeArray(int size);

  /// Looks at an array as Attach does; where Attach refuses it, there is none.
  QuickVariantSafeArray(SAFEARRAY* psa);

  QuickVariantSafeArray(const QuickVariantSafeArray&) = delete;
  QuickVariantSafeArray& operator=(const QuickVariantSafeArray&) = delete;

  /// Destroys the array if it owns it (SafeArrayDestroy). One whose data is still accessed cannot be destroyed and is
  /// lost: UnaccessData first.
  virtual ~QuickVariantSafeArray();

  /// Looks at an array that stays the caller's. E_FAIL, and everything as it was, for an array of another element type
  /// than VT_VARIANT, with other than one dimension, or null; an array that does not know its element type
  /// (SafeArrayGetVartype fails) is taken. The array before is let go of, not destroyed, even if it was owned.
  long Attach(SAFEARRAY* psa);

  /// Lets go of the array and returns it; an owned one is the caller's from then on.
  SAFEARRAY* Detach();

  /// The number of elements. There has to be an array.
  int GetSize();

  /// A copy of the element (SafeArrayGetElement); empty where there is none at this index.
  kexComVariant GetAt(int index);

  /// GetAt(index).
  kexComVariant operator[](int index);

  /// Stores a copy of the value (SafeArrayPutElement, whose failure is returned: DISP_E_BADINDEX, E_INVALIDARG where
  /// there is no array...). An object in it (VT_DISPATCH, VT_UNKNOWN) gets a second reference besides that of the copy,
  /// also where the store fails: the caller releases it, or hands its own over.
  long PutAt(int index, VARIANT& value);

  /// The elements in a row, locked until UnaccessData (SafeArrayAccessData); null where there are none.
  VARIANT* AccessData();

  /// Ends AccessData. The pointer is not to be used any more.
  void UnaccessData();

  /// The array in a VARIANT (VT_ARRAY | VT_VARIANT), not a copy: not to be cleared while this object owns the array.
  operator VARIANT();

  /// The array; it stays this object's.
  operator SAFEARRAY*();

 private:
  LONG place_of(int index) const;

  SAFEARRAY* array;
  VARIANT* data;
  int owned;
};

#endif
