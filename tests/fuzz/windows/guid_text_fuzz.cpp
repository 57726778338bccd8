// GUIDs read from text and written again. What is no GUID gives what the system leaves.
#include <kexlib/com/guid.h>

#include <fuzz/core.h>

#include <cstdio>
#include <cstring>
#include <optional>

namespace {

std::string text_of(const GUID& guid, bool braced) {
  char text[40];
  const unsigned char* const d = guid.Data4;
  std::snprintf(text, sizeof text, "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X",
                static_cast<unsigned>(guid.Data1), unsigned{guid.Data2}, unsigned{guid.Data3}, unsigned{d[0]},
                unsigned{d[1]}, unsigned{d[2]}, unsigned{d[3]}, unsigned{d[4]}, unsigned{d[5]}, unsigned{d[6]},
                unsigned{d[7]});
  return braced ? "{" + std::string(text) + "}" : text;
}

std::optional<unsigned> hexadecimal(std::string_view digits) {
  unsigned number = 0;
  for (const char each : digits) {
    const std::size_t digit =
        std::string_view("0123456789abcdef").find(each >= 'A' && each <= 'F' ? char(each + 32) : each);
    if (digit == std::string_view::npos) return std::nullopt;
    number = number * 16 + static_cast<unsigned>(digit);
  }
  return number;
}

// Nothing if the text is no GUID in braces.
std::optional<GUID> read(std::string_view text) {
  if (text.size() != 38 || text[0] != '{' || text[37] != '}') return std::nullopt;
  for (const std::size_t dash : {9u, 14u, 19u, 24u})
    if (text[dash] != '-') return std::nullopt;
  const auto first = hexadecimal(text.substr(1, 8)), second = hexadecimal(text.substr(10, 4)),
             third = hexadecimal(text.substr(15, 4));
  if (!first || !second || !third) return std::nullopt;
  GUID guid{*first, static_cast<unsigned short>(*second), static_cast<unsigned short>(*third), {}};
  constexpr std::size_t places[] = {20, 22, 25, 27, 29, 31, 33, 35};
  for (std::size_t i = 0; i < 8; ++i) {
    const auto byte = hexadecimal(text.substr(places[i], 2));
    if (!byte) return std::nullopt;
    guid.Data4[i] = static_cast<unsigned char>(*byte);
  }
  return guid;
}

// A GUID's text, changed here and there, or any text.
std::string text_from(fuzz::Input& input) {
  if (input.below(4) == 3) return std::string(input.text());
  std::string text = text_of(input.number<GUID>(), input.flag());
  if (input.flag())
    for (char& each : text) each = each >= 'A' && each <= 'F' ? static_cast<char>(each + 32) : each;
  for (unsigned left = input.below(3); left > 0 && !text.empty(); --left) {
    const std::size_t at = input.below(256) % text.size();
    if (input.flag())
      text[at] = input.number<char>();
    else
      text.erase(at, 1 + input.below(2));
  }
  return text;
}

const fuzz::Core core("guid_text", [](fuzz::Input& input) {
  const GUID before = input.number<GUID>();
  const bool wide = input.flag();
  const std::string text = text_from(input);
  const std::string wrapped = text.c_str()[0] == '{' ? text : "{" + text + "}";
  const std::string terminated = wrapped.c_str();  // up to a zero

  // Wide texts have characters outside every code page too.
  std::wstring wide_text;
  if (wide) {
    for (const char each : text) wide_text += each < 0 ? static_cast<wchar_t>(each * 257) : static_cast<wchar_t>(each);
  }
  std::wstring seen(500, L'\0');
  const int length = MultiByteToWideChar(CP_THREAD_ACP, 0, terminated.c_str(), -1, seen.data(), 500);
  seen.resize(static_cast<std::size_t>(length > 0 ? length - 1 : 0));
  if (length == 0) return;  // longer than the room
  if (wide)
    seen = (wide_text.c_str()[0] == L'{' ? std::wstring(wide_text.c_str())
                                         : L"{" + std::wstring(wide_text.c_str()) + L"}");

  kexGUID ours(kexWithBraces);
  ours.set_GUID(before);
  if (wide)
    ours.set_BSTR(wide_text.data());
  else
    ours.set_str(CString(text.data(), static_cast<int>(text.size())));

  std::string narrow;
  for (const wchar_t each : seen) narrow += each < 0x80 ? static_cast<char>(each) : '?';
  GUID expected = before;
  if (const auto guid = read(narrow))
    expected = *guid;
  else
    IIDFromString(seen.c_str(), &expected);

  const bool is_null = std::memcmp(&expected, &GUID_NULL, sizeof expected) == 0;
  fuzz::expect_same(ours.is_null(), is_null, text);
  if (is_null) return;  // reading it would make a new one
  fuzz::expect_same(std::string(ours.get_str()), text_of(expected, true), text);
  fuzz::expect_same(std::string(kexGUID(expected).get_str()), text_of(expected, false));
  fuzz::expect_same(kexGUID(before) < ours, std::memcmp(&before, &expected, sizeof expected) < 0, text);
  fuzz::expect_same(kexGUID(before) == ours, std::memcmp(&before, &expected, sizeof expected) == 0, text);
});

}  // namespace
