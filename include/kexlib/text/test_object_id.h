// Test object identifier: the name by which an object presents itself to automated tests.
//
//     kexTestObjectID id("auto");
//     id.put_id(CComVariant(L"auto"));
//     if (id.is_configured() && !id.is_special_value()) ...
//
// Failures of copies are thrown as AtlThrow throws them: MFC's memory exception, or its OLE exception with the code.
// Threads: an object belongs to one thread at a time.
#ifndef KEXLIB_TEXT_TEST_OBJECT_ID_H
#define KEXLIB_TEXT_TEST_OBJECT_ID_H

#include <atlbase.h>

#include <kexlib/export.h>

/// An identifier of any automation type, not set at first, and a text with a meaning of its own to compare it with.
/// What that text stands for is the host's business.
class KEXLIB_API kexTestObjectID {
 public:
  /// Not set, without a special text.
  kexTestObjectID();

  /// Not set; `special` is widened in the calling thread's code page, and null is none. Throws where there is no
  /// memory.
  explicit kexTestObjectID(const char* special);

  kexTestObjectID(const kexTestObjectID&) = delete;
  kexTestObjectID& operator=(const kexTestObjectID&) = delete;

  /// Frees both.
  ~kexTestObjectID();

  /// Sets the identifier to a copy (VariantCopy); an empty one makes it "not set" again. Returns S_OK. A copy that
  /// fails leaves VT_ERROR with its code as the identifier, and is thrown.
  long put_id(VARIANT value);

  /// Clears `*out` (VariantClear), which has to hold a valid VARIANT, and sets it to a copy of the identifier. S_OK;
  /// E_POINTER for null; the failure of clearing, and then `*out` is as that left it. A copy that fails leaves VT_ERROR
  /// with its code in `*out`, and is thrown.
  long get_id(VARIANT* out) const;

  /// Whether an identifier is set.
  bool is_configured() const;

  /// Whether the identifier is a text (VT_BSTR), not empty, and equal to the special one: by the user's language,
  /// letter case counting (VarBstrCmp).
  bool is_special_value() const;

 private:
  VARIANT id;
  BSTR special;
};

#endif
