// "{N}" before a text: the resource with that number, or else the text behind the brace.
#include <kexlib/text/text_helpers.h>

#include <fuzz/core.h>
#include <support/string_table.h>

#include <climits>

namespace {

// What scanf reads with "%d"; -1 if that is nothing. A number that is too large is the largest.
long number_at(const std::string& text, std::size_t at) {
  while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r'))) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
  bool read = false;
  long long number = 0;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at, read = true)
    if (number <= LONG_MAX) number = number * 10 + (text[at] - '0');
  if (!read) return -1;
  if (negative) return number > LONG_MAX ? LONG_MIN : static_cast<long>(-number);
  return number > LONG_MAX ? LONG_MAX : static_cast<long>(number);
}

std::wstring widened(const std::string& text) {
  std::wstring wide(text.size() + 1, L'\0');
  const int length =
      MultiByteToWideChar(CP_THREAD_ACP, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
  return wide.substr(0, length > 0 ? static_cast<std::size_t>(length) - 1 : 0);
}

HINSTANCE strings() {
  static const HINSTANCE module = LoadLibraryA("string_table.dll");
  if (!module) throw fuzz::Difference("there is no string_table.dll");
  return module;
}

const fuzz::Core core("reference", [](fuzz::Input& input) {
  constexpr UINT bases[] = {IDS_BASE, 0, UINT_MAX, IDS_FIFTH};
  const UINT base = input.flag() ? bases[input.below(4)] : IDS_BASE - input.below(16);
  const std::string any(input.text());
  const std::string text = any.c_str();  // up to a zero

  std::wstring expected = widened(text);
  long status = S_FALSE;
  const std::size_t end = text.size() >= 3 && text[0] == '{' ? text.find('}') : text.npos;
  if (end != text.npos) {
    expected = widened(text.substr(end + 1));
    const long offset = number_at(text, 1);
    char loaded[512];
    if (offset >= 0 && LoadStringA(strings(), base + static_cast<UINT>(offset), loaded, sizeof loaded) > 0) {
      expected = widened(loaded);
      status = S_OK;
    }
  }

  CComBSTR ours;
  const long our_status = kexLocalizeString(strings(), base, CComVariant(widened(text).c_str()), &ours);
  fuzz::expect_same(our_status, status, text, base);
  const bool same = std::wstring(ours, ours.Length()) == expected;
  fuzz::expect_same(same, true, text, base);
});

}  // namespace
