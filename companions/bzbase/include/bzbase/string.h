// bzString: a narrow text that can be appended to.
//
//     bzString name("Gauge");
//     name << " (64-bit)";
#ifndef BZBASE_STRING_H
#define BZBASE_STRING_H

#include <kexlib/export.h>

#include <string>

// Bytes in any code page; they may contain zeros. Copies are independent. Running out of memory throws std::bad_alloc.
class bzString {
 public:
  // The empty text.
  KEXLIB_API bzString();
  // A copy of a terminated text; null is the empty text. Not explicit: a text can be passed as a bzString.
  KEXLIB_API bzString(const char* text);

  // Appends a text, which may be this one, and returns this one.
  KEXLIB_API bzString& operator<<(const bzString& text);

  // The terminated text, valid until this object is changed.
  KEXLIB_API const char* c_str() const;
  // In bytes.
  KEXLIB_API std::size_t length() const;

 private:
  std::string text_;
};

#endif
