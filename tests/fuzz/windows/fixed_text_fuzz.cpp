// Numbers with a fixed number of places are what printf prints, in the locale that is set.
#include <fuzz/core.h>
#include <fuzz/windows/numeric_locale.h>
#include <support/fixed_text.h>

namespace {

const fuzz::Core core("fixed_text", [](fuzz::Input& input) {
  const fuzz::CommaLocale locale(input.below(4) == 3);
  do {
    const int digits = input.flag() ? static_cast<int>(input.below(8)) : input.number<std::int16_t>() % 1500;
    const double value = input.real();
    const CStringA ours = kexlib::fixed_text(value, digits);
    fuzz::expect_same(std::string(ours, static_cast<std::size_t>(ours.GetLength())), fuzz::printed(value, digits),
                      digits);
  } while (!input.empty());
});

}  // namespace
