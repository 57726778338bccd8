#include <kexlib/com/guid.h>

#include <support/widened.h>

#include <cstdint>
#include <cstring>

using namespace kexlib;

namespace {

// The bytes of a GUID in two numbers.
struct Halves {
  explicit Halves(const GUID& guid) { std::memcpy(this, &guid, sizeof guid); }
  bool operator==(const Halves&) const = default;

  std::uint64_t first;
  std::uint64_t second;
};
static_assert(sizeof(Halves) == sizeof(GUID));

}  // namespace

kexGUID::kexGUID() : guid(GUID_NULL), braced(false) {}

kexGUID::kexGUID(const GUID& value) : guid(value), braced(false) {}

kexGUID::kexGUID(const CString& text) : kexGUID() { set_str(text); }

kexGUID::kexGUID(wchar_t* text) : kexGUID() { set_BSTR(text); }

kexGUID::kexGUID(kexGUIDBraced) : guid(GUID_NULL), braced(true) {}

bool kexGUID::operator==(const kexGUID& other) const { return Halves(guid) == Halves(other.guid); }

bool kexGUID::operator!=(const kexGUID& other) const { return !(*this == other); }

bool kexGUID::operator<(const kexGUID& other) const { return kexLessGUID()(guid, other.guid); }

bool kexGUID::is_null() const { return Halves(guid) == Halves(GUID_NULL); }

// If CoCreateGuid fails, the value stays null: there is no way to report it.
void kexGUID::assign_if_null() const {
  if (is_null()) CoCreateGuid(&guid);
}

GUID kexGUID::get_GUID() const {
  assign_if_null();
  return guid;
}

CString kexGUID::get_str() const {
  assign_if_null();
  constexpr int size = 39;  // with braces and a zero
  wchar_t text[size];
  StringFromGUID2(guid, text, size);
  if (braced) return CString(text);
  text[size - 2] = L'\0';
  return CString(text + 1);
}

CComBSTR kexGUID::get_BSTR() const {
  CComBSTR text;
  get_BSTR(&text);
  return text;
}

void kexGUID::get_BSTR(wchar_t** out) const { *out = widened(get_str()).Detach(); }

CString kexGUID::make_new() { return kexGUID().get_str(); }

void kexGUID::reset() { guid = GUID_NULL; }

void kexGUID::set_GUID(const GUID& value) { guid = value; }

// By design a failure is not reported: callers pass any text, and rely on the value that IIDFromString leaves.
void kexGUID::set_str(const CString& text) {
  const CComBSTR wide = widened(text[0] == '{' ? text : "{" + text + "}");
  IIDFromString(wide, &guid);
}

void kexGUID::set_BSTR(wchar_t* text) {
  IIDFromString(text[0] == L'{' ? CStringW(text) : L"{" + CStringW(text) + L"}", &guid);
}
