// Characters that file names must not have, in code pages of one byte and of two.
#include <kexlib/text/text_helpers.h>

#include <mbctype.h>

#include <fuzz/core.h>

namespace {

// The first bytes of double-byte characters, as the code pages define them.
bool is_lead_byte(int code_page, unsigned char byte) {
  switch (code_page) {
    case 932:
      return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    case 936:
    case 949:
    case 950:
      return byte >= 0x81 && byte <= 0xFE;
    default:
      return false;
  }
}

std::string without(const std::string& text, std::string_view forbidden, char replacement, int code_page) {
  std::string result = text;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (is_lead_byte(code_page, static_cast<unsigned char>(text[i])))
      ++i;  // and the byte behind it belongs to it
    else if (forbidden.find(text[i]) != forbidden.npos)
      result[i] = replacement;
  }
  return result;
}

class CodePage {
 public:
  explicit CodePage(int code_page) {
    if (_setmbcp(code_page) != 0) throw fuzz::Difference("there is no code page " + std::to_string(code_page));
  }
  ~CodePage() { _setmbcp(_MB_CP_ANSI); }
  CodePage(const CodePage&) = delete;
  CodePage& operator=(const CodePage&) = delete;
};

const fuzz::Core core("file_names", [](fuzz::Input& input) {
  constexpr int code_pages[] = {1252, 932, 936, 949, 950, 1251};
  const int code_page = code_pages[input.below(std::size(code_pages))];
  const char replacement = input.flag() ? '_' : input.number<char>();
  const bool strict = input.flag();
  const std::string text(input.text());
  const CodePage set(code_page);
  const CString copy(text.data(), static_cast<int>(text.size()));
  CString ours(copy);
  if (strict)
    kex_replace_forbidden_symbols_strict(ours, replacement);
  else
    kex_replace_forbidden_symbols(ours, replacement);
  fuzz::expect_same(std::string(ours, static_cast<std::size_t>(ours.GetLength())),
                    without(text, strict ? "*?\"<>|/\\:" : "*?\"<>|", replacement, code_page), text, code_page,
                    replacement);
  fuzz::expect_same(std::string(copy, static_cast<std::size_t>(copy.GetLength())), text, "a copy");
});

}  // namespace
