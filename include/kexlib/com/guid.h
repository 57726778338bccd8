// GUID value: a GUID that is generated when it is first read, and its text forms.
//
//     kexGUID id;                                // not assigned yet
//     CString text = id.get_str();               // now it is: "6B29FC40-CA47-1067-B31D-00AA00C7A1E8"
//     kexGUID same(text);                        // same == id
//     std::set<GUID, kexLessGUID> classes;       // in the order of the bytes
//
// Texts have 36 characters, or 38 with braces, in upper case; either form and either case is read.
//
// Errors. Invalid text is not reported: the value is then what IIDFromString leaves, which is the previous value, or
// the digits up to the first invalid one. Running out of memory throws MFC's memory exception.
//
// Threads. Reading an unassigned value writes it: use an object on one thread at a time.
#ifndef KEXLIB_COM_GUID_H
#define KEXLIB_COM_GUID_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

/// Selects the constructor for the form with braces. The value is ignored.
enum kexGUIDBraced : int { kexWithBraces };

/// A GUID and the form of its text. All zeros mean "not assigned yet".
class KEXLIB_API kexGUID {
 public:
  /// Not assigned; texts without braces.
  kexGUID();

  /// This value; texts without braces.
  kexGUID(const GUID& value);

  /// set_str(text); texts without braces.
  kexGUID(const CString& text);

  /// set_BSTR(text); texts without braces.
  kexGUID(wchar_t* text);

  /// Not assigned; texts with braces.
  kexGUID(kexGUIDBraced);

  /// Copies the value and the form. Nothing is generated: copies of an unassigned object get different values.
  kexGUID(const kexGUID& other) = default;

  /// As the copy constructor.
  kexGUID& operator=(const kexGUID& other) = default;

  /// Whether the values are equal; the forms are ignored. Two unassigned objects are equal.
  bool operator==(const kexGUID& other) const;

  /// Whether the values differ.
  bool operator!=(const kexGUID& other) const;

  /// The order of kexLessGUID.
  bool operator<(const kexGUID& other) const;

  /// Whether no value is assigned yet. Never assigns one.
  bool is_null() const;

  /// The value. An unassigned object gets a new one (CoCreateGuid) and keeps it, even if the object is const.
  GUID get_GUID() const;

  /// The value as text, with braces or without. Assigns one like get_GUID.
  CString get_str() const;

  /// The same as a BSTR.
  ATL::CComBSTR get_BSTR() const;

  /// The same in `*out`; the caller frees it (SysFreeString). The previous content of `*out` is not freed. Not null.
  void get_BSTR(wchar_t** out) const;

  /// A new GUID as text without braces.
  static CString make_new();

  /// Makes the object unassigned; the form stays.
  void reset();

  /// Sets the value; the form stays.
  void set_GUID(const GUID& value);

  /// Reads the value from text with or without braces; the form stays. A text that begins with a brace is used as it
  /// is, so it must end in one too. Widened in the calling thread's code page.
  void set_str(const CString& text);

  /// The same from a terminated wide text; not null.
  void set_BSTR(wchar_t* text);

 private:
  void assign_if_null() const;

  mutable GUID guid;
  bool braced;
};

/// Orders GUIDs by their sixteen bytes as they lie in memory, as memcmp does. That is not the order of their texts: the
/// first three groups are stored with the lowest byte first.
class KEXLIB_API kexLessGUID {
 public:
  /// Whether `a` comes before `b`.
  bool operator()(const GUID& a, const GUID& b) const {
    // Eight bytes at a time: the most significant byte of a number is the last in memory.
    std::uint64_t left, right;
    std::memcpy(&left, &a, sizeof left);
    std::memcpy(&right, &b, sizeof right);
    if (left == right) {
      std::memcpy(&left, &a.Data4, sizeof left);
      std::memcpy(&right, &b.Data4, sizeof right);
    }
#ifdef __GNUC__
    return __builtin_bswap64(left) < __builtin_bswap64(right);
#else
    return _byteswap_uint64(left) < _byteswap_uint64(right);
#endif
  }
};

#endif
