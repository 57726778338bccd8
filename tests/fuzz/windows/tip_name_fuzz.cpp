// The line that names an object, part by part.
#include <kexlib/text/tip_name.h>

#include <fuzz/core.h>
#include <fuzz/windows/numeric_locale.h>

namespace {

std::string narrowed(const CComBSTR& wide) {
  if (!wide) return {};
  char text[1000];
  WideCharToMultiByte(CP_THREAD_ACP, 0, wide, -1, text, sizeof text, nullptr, nullptr);
  return text;
}

// The library keeps the first text of each number for the life of the process: "-0.0" for 0, too, if that came first.
std::string cached(double number) {
  static std::vector<std::pair<double, std::string>> known;
  for (const auto& [key, text] : known)
    if (key == number) return text;
  return known.emplace_back(number, fuzz::printed(number, 1)).second;
}

CComBSTR text(fuzz::Input& input) {
  const unsigned kind = input.below(8);
  if (kind == 0) return {};
  const std::string_view bytes = input.text(input.below(24));
  CComBSTR wide;
  wide.Attach(SysAllocStringLen(nullptr, static_cast<UINT>(bytes.size())));
  // Plain characters, and in one text of four any others.
  for (std::size_t i = 0; i < bytes.size(); ++i)
    wide.m_str[i] = static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) * (kind < 2 ? 37u : 1u));
  return wide;
}

const fuzz::Core core("tip_name", [](fuzz::Input& input) {
  const unsigned parts = input.below(16);
  const bool ab = parts & 1, d = parts & 2, names = parts & 4, number = parts & 8;
  CComBSTR name = text(input), sub_name = text(input), unit = text(input);
  const auto index = input.number<std::int32_t>();
  // Few numbers, so that they come again.
  const double a = input.number<std::int8_t>() / 16.0, b = input.flag() ? -0.0 : input.below(100) / 20.0;
  const double value = input.real();

  std::string expected;
  if (names) {
    if (name.Length() > 0) expected = narrowed(name);
    if (sub_name.Length() > 0) expected += (name.Length() > 0 ? " - " : "") + narrowed(sub_name);
  }
  if (number) expected += " - " + std::to_string(index);
  expected += " ";
  if (ab) {  // A is looked up first
    expected += "[ A=" + cached(a);
    expected += " B=" + cached(b) + " ]";
  }
  if (d) expected += " [ D " + fuzz::printed(value, 4) + " " + (!unit ? "(null)" : narrowed(unit)) + " ]";

  const CStringA ours = atl_smart_tip_name_from_parts(name, index, sub_name, a, b, unit, value, ab, d, names, number);
  fuzz::expect_same(std::string(ours, static_cast<std::size_t>(ours.GetLength())), expected);
});

}  // namespace
