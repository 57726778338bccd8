// CStringT: the text functions of CString, for narrow and wide characters.
#ifndef FRAMEWORK_CSTRINGT_H
#define FRAMEWORK_CSTRINGT_H

#include <atlconv.h>
#include <atlsimpstr.h>
#include <mbstring.h>

#include <cctype>
#include <compare>
#include <cstdarg>
#include <cstdio>
#include <cwctype>

namespace ATL {

// Character functions of the run-time library. Narrow text may be in a double-byte code page, in which the second byte
// of a character can equal a letter or a backslash: searches go by whole characters.
template <typename CharType>
class ChTraitsCRT;

template <>
class ChTraitsCRT<char> {
 public:
  using OtherChar = wchar_t;
  static int StringCompare(const char* a, const char* b) { return _mbscmp(bytes(a), bytes(b)); }
  static int StringCompareIgnore(const char* a, const char* b) { return _mbsicmp(bytes(a), bytes(b)); }
  static const char* StringFindString(const char* text, const char* part) {
    const char* found = std::strstr(text, part);
    // A match that starts at the second byte of a character does not count.
    for (; found && !is_at_character(text, found); found = std::strstr(found + 1, part)) {
    }
    return found;
  }
  static const char* StringFindChar(const char* text, char character) {
    return reinterpret_cast<const char*>(_mbschr(bytes(text), static_cast<unsigned char>(character)));
  }
  // Formats by the C standard: exact digits, ties to even, "inf" and "nan". Negative if the format is invalid.
  static int Format(char* buffer, int room, const char* format, va_list arguments) {
    return vsnprintf(buffer, static_cast<size_t>(room), format, arguments);
  }
  static int ConvertedLength(const wchar_t* text, int length) {
    return WideCharToMultiByte(_AtlGetConversionACP(), 0, text, length, nullptr, 0, nullptr, nullptr);
  }
  static void Convert(char* to, int room, const wchar_t* text, int length) {
    WideCharToMultiByte(_AtlGetConversionACP(), 0, text, length, to, room, nullptr, nullptr);
  }

 private:
  static bool is_at_character(const char* text, const char* place) {
    const unsigned char* at = bytes(text);
    while (at < bytes(place)) at = _mbsinc(at);
    return at == bytes(place);
  }
  static const unsigned char* bytes(const char* text) { return reinterpret_cast<const unsigned char*>(text); }
};

template <>
class ChTraitsCRT<wchar_t> {
 public:
  using OtherChar = char;
  static int StringCompare(const wchar_t* a, const wchar_t* b) { return std::wcscmp(a, b); }
  static int StringCompareIgnore(const wchar_t* a, const wchar_t* b) { return _wcsicmp(a, b); }
  static const wchar_t* StringFindString(const wchar_t* text, const wchar_t* part) { return std::wcsstr(text, part); }
  static const wchar_t* StringFindChar(const wchar_t* text, wchar_t character) { return std::wcschr(text, character); }
  // Formats by the rules of the system's run-time library, in which %s is wide.
  static int Format(wchar_t* buffer, int room, const wchar_t* format, va_list arguments) {
    if (!buffer) return _vscwprintf(format, arguments);
    return _vsnwprintf(buffer, static_cast<size_t>(room), format, arguments);
  }
  static int ConvertedLength(const char* text, int length) {
    return MultiByteToWideChar(_AtlGetConversionACP(), 0, text, length, nullptr, 0);
  }
  static void Convert(wchar_t* to, int room, const char* text, int length) {
    MultiByteToWideChar(_AtlGetConversionACP(), 0, text, length, to, room);
  }
};

// A string that shares its buffer with its copies until one of them is modified. Text of the other character type is
// converted in the code page of the calling thread.
//
// StringTraits derives from ChTraitsCRT and finds the module for LoadString(UINT).
template <typename BaseType, class StringTraits>
class CStringT : public CSimpleStringT<BaseType> {
  using Base = CSimpleStringT<BaseType>;

 public:
  using XCHAR = BaseType;
  using YCHAR = typename StringTraits::OtherChar;
  using PCXSTR = const XCHAR*;
  using PCYSTR = const YCHAR*;

  CStringT() noexcept = default;
  CStringT(PCXSTR text) { this->SetString(text); }
  CStringT(PCYSTR text) { *this = text; }
  CStringT(PCXSTR text, int length) : Base(text, length) {}
  CStringT(PCYSTR text, int length) {
    Base::check(length >= 0);
    convert(text, length);
  }
  // The character, `count` times.
  explicit CStringT(XCHAR character, int count = 1) {
    Base::check(count >= 0);
    XCHAR* buffer = this->GetBufferSetLength(count);
    for (int i = 0; i < count; ++i) buffer[i] = character;
  }

  CStringT& operator=(PCXSTR text) {
    this->SetString(text);
    return *this;
  }
  CStringT& operator=(PCYSTR text) {
    convert(text, text ? length_of_other(text) : 0);
    return *this;
  }

  using Base::Append;
  void AppendChar(XCHAR character) { this->Append(&character, 1); }
  CStringT& operator+=(const CStringT& text) {
    this->Append(text, text.GetLength());
    return *this;
  }
  CStringT& operator+=(PCXSTR text) {
    this->Append(text);
    return *this;
  }
  CStringT& operator+=(XCHAR character) {
    AppendChar(character);
    return *this;
  }
  friend CStringT operator+(const CStringT& a, const CStringT& b) { return CStringT(a) += b; }
  friend CStringT operator+(const CStringT& a, PCXSTR b) { return CStringT(a) += b; }
  friend CStringT operator+(PCXSTR a, const CStringT& b) { return CStringT(a) += b; }
  friend CStringT operator+(const CStringT& a, XCHAR b) { return CStringT(a) += b; }
  friend CStringT operator+(XCHAR a, const CStringT& b) { return CStringT(a) += b; }

  // Returns less than, equal to or greater than zero, by character code. Null throws E_INVALIDARG.
  int Compare(PCXSTR text) const {
    Base::check(text != nullptr);
    return StringTraits::StringCompare(this->GetString(), text);
  }
  int CompareNoCase(PCXSTR text) const {
    Base::check(text != nullptr);
    return StringTraits::StringCompareIgnore(this->GetString(), text);
  }
  friend bool operator==(const CStringT& a, const CStringT& b) { return a.Compare(b) == 0; }
  friend bool operator==(const CStringT& a, PCXSTR b) { return a.Compare(b) == 0; }
  friend auto operator<=>(const CStringT& a, const CStringT& b) { return a.Compare(b) <=> 0; }
  friend auto operator<=>(const CStringT& a, PCXSTR b) { return a.Compare(b) <=> 0; }

  // Returns the index of the first occurrence at or after `start`, or -1. Null is never found.
  int Find(PCXSTR part, int start = 0) const {
    if (!part) return -1;
    return place(start, [&](PCXSTR from) { return StringTraits::StringFindString(from, part); });
  }
  int Find(XCHAR character, int start = 0) const {
    return place(start, [&](PCXSTR from) { return StringTraits::StringFindChar(from, character); });
  }

  // A part of the text. The range is limited to the text.
  CStringT Mid(int first, int count) const {
    if (first < 0) first = 0;
    if (first > this->GetLength()) first = this->GetLength();
    if (count < 0) count = 0;
    if (count > this->GetLength() - first) count = this->GetLength() - first;
    if (count == this->GetLength()) return *this;
    return CStringT(this->GetString() + first, count);
  }
  CStringT Mid(int first) const { return Mid(first, this->GetLength()); }
  CStringT Left(int count) const { return Mid(0, count); }

  // Removes white space at both ends.
  CStringT& Trim() {
    const auto is_space = [this](int at) {
      if constexpr (sizeof(XCHAR) == sizeof(WCHAR))
        return std::iswspace(this->GetString()[at]) != 0;
      else
        return std::isspace(static_cast<unsigned char>(this->GetString()[at])) != 0;
    };
    int first = 0, end = this->GetLength();
    while (first < end && is_space(first)) ++first;
    while (end > first && is_space(end - 1)) --end;
    if (end - first < this->GetLength()) *this = Mid(first, end - first);
    return *this;
  }

  // Replaces every occurrence and returns how many there were. An empty old text replaces nothing; a null new text
  // deletes the old one.
  int Replace(PCXSTR oldText, PCXSTR newText) {
    int oldLength = Base::length_of(oldText);
    if (!oldLength) return 0;
    if (Base::length_of(newText) == oldLength && !this->is_inside(oldText) && !this->is_inside(newText))
      return overwrite(oldText, newText, oldLength);
    int count = 0, done = 0;
    CStringT result;
    for (int at; (at = Find(oldText, done)) >= 0; done = at + oldLength) {
      result.Append(this->GetString() + done, at - done);
      result.Append(newText);
      ++count;
    }
    if (!count) return 0;
    result.Append(this->GetString() + done, this->GetLength() - done);
    *this = std::move(result);
    return count;
  }
  // Replaces a character. The buffer becomes unshared only if the character occurs. The terminator is not a character
  // of the text.
  int Replace(XCHAR oldCharacter, XCHAR newCharacter) {
    if (oldCharacter == newCharacter || !oldCharacter) return 0;
    int count = 0;
    for (int at = -1; (at = Find(oldCharacter, at + 1)) >= 0; ++count) this->GetBuffer()[at] = newCharacter;
    return count;
  }

  // Formats like printf. %s has the string's own character type; a null %s is "(null)". A format that the run-time
  // library rejects throws E_FAIL and leaves the text unchanged.
  void Format(PCXSTR format, ...) {
    va_list arguments;
    va_start(arguments, format);
    format_and_close(format, arguments);
  }
  void FormatV(PCXSTR format, va_list arguments) {
    CStringT text;
    text.append_formatted(format, arguments);
    *this = std::move(text);
  }

  // Loads a string resource. Returns FALSE, and leaves the text unchanged, if the resource does not exist or is empty.
  BOOL LoadString(HINSTANCE instance, UINT id) {
    // With a size of 0 the system returns a pointer to the resource.
    LPCWSTR resource = nullptr;
    int length = ::LoadStringW(instance, id, reinterpret_cast<LPWSTR>(&resource), 0);
    if (length <= 0) return FALSE;
    if constexpr (sizeof(XCHAR) == sizeof(WCHAR))
      this->SetString(resource, length);
    else
      convert(resource, length);
    return TRUE;
  }
  BOOL LoadString(UINT id) {
    HINSTANCE instance = StringTraits::FindStringResourceInstance(id);
    return instance && LoadString(instance, id);
  }

 private:
  static int length_of_other(PCYSTR text) {
    if constexpr (sizeof(YCHAR) == 1)
      return lstrlenA(text);
    else
      return lstrlenW(text);
  }

  template <typename Search>
  int place(int start, Search search) const {
    if (start < 0 || start > this->GetLength()) return -1;
    PCXSTR found = search(this->GetString() + start);
    return found ? static_cast<int>(found - this->GetString()) : -1;
  }

  // For texts of equal length: no second buffer is needed.
  int overwrite(PCXSTR oldText, PCXSTR newText, int length) {
    int count = 0;
    for (int at = 0; (at = Find(oldText, at)) >= 0; at += length, ++count)
      std::memcpy(this->GetBuffer() + at, newText, static_cast<size_t>(length) * sizeof(XCHAR));
    return count;
  }

  void convert(PCYSTR text, int length) {
    if (!length) return this->Empty();
    int room = StringTraits::ConvertedLength(text, length);
    CStringT converted;
    StringTraits::Convert(converted.GetBufferSetLength(room), room, text, length);
    *this = std::move(converted);
  }

  void format_and_close(PCXSTR format, va_list arguments) {
    try {
      FormatV(format, arguments);
    } catch (...) {
      va_end(arguments);
      throw;
    }
    va_end(arguments);
  }

  void append_formatted(PCXSTR format, va_list arguments) {
    Base::check(format != nullptr);
    va_list counted;
    va_copy(counted, arguments);
    int length = StringTraits::Format(nullptr, 0, format, counted);
    va_end(counted);
    if (length < 0) AtlThrow(E_FAIL);
    StringTraits::Format(this->GetBuffer(length), length + 1, format, arguments);
    this->ReleaseBufferSetLength(length);
  }
};

}  // namespace ATL

#endif
