// The cache of numbers as text: the first text of a number stays, and a NaN is never found again.
#include <fuzz/core.h>
#include <fuzz/windows/numeric_locale.h>
#include <text/number_texts.h>

#include <utility>

namespace {

const fuzz::Core core("number_texts", [](fuzz::Input& input) {
  kexlib::NumberTexts texts;
  std::vector<std::pair<double, std::string>> known;
  do {
    // With a comma a text that was made before can be told from a new one.
    const fuzz::CommaLocale locale(input.below(4) == 3);
    double number = input.real();
    if (!known.empty() && input.flag()) number = known[input.below(256) % known.size()].first;
    const std::string* expected = nullptr;
    for (const auto& [key, text] : known)
      if (key == number) expected = &text;
    if (!expected) expected = &known.emplace_back(number, fuzz::printed(number, 1)).second;
    fuzz::expect_same(std::string(texts.text(number)), *expected, number);
    fuzz::expect_same(texts.count(), known.size(), number);
  } while (!input.empty());
});

}  // namespace
