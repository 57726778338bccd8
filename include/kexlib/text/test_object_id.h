// Test object identifier: the name by which an object presents itself to automated tests.
//
//     kexTestObjectID id = "auto";
//     id.put_id(CComVariant(L"auto"));
//     if (id.is_configured() && !id.is_special_value()) ...
//
// A failing copy throws as AtlThrow does: MFC's memory exception, or its OLE exception with the code.
// Threads: use an object on one thread at a time.
#ifndef KEXLIB_TEXT_TEST_OBJECT_ID_H
#define KEXLIB_TEXT_TEST_OBJECT_ID_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <atlbase.h>

/// An identifier of any automation type, initially not set, and a special text to compare it with. The host defines
/// what the special text means.
class KEXLIB_API kexTestObjectID {
 public:
  /// Not set, without a special text.
  kexTestObjectID();

  /// Not set. `special` is widened in the calling thread's code page; null means no special text. Throws MFC's memory
  /// exception if memory runs out.
  kexTestObjectID(const char* special);

  kexTestObjectID(const kexTestObjectID&) = delete;
  kexTestObjectID& operator=(const kexTestObjectID&) = delete;

  /// Frees the identifier and the special text.
  ~kexTestObjectID();

  /// Sets the identifier to a copy of the value (VariantCopy) and returns S_OK. An empty value makes it "not set". A
  /// failing copy is thrown; the identifier is then VT_ERROR with the code, and the value is unchanged.
  long put_id(VARIANT value);

  /// Clears `*out` (VariantClear) and sets it to a copy of the identifier. `*out` must hold a valid VARIANT; what it
  /// owns is freed. Returns S_OK, E_POINTER if `out` is null, or the failure of VariantClear, which fills in nothing. A
  /// failing copy is thrown; `*out` is then VT_ERROR with the code.
  long get_id(VARIANT* out) const;

  /// Whether the identifier is set, that is, not VT_EMPTY.
  bool is_configured() const;

  /// Whether the identifier is a text (VT_BSTR) that is not empty and equals the special text. The comparison follows
  /// the user's default locale and is case-sensitive (VarBstrCmp).
  bool is_special_value() const;

 private:
  VARIANT id;
  BSTR special;
};

#endif
