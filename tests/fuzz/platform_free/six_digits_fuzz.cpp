// Times with six digits are what a stream with the classic locale prints.
#include <diagnostics/six_digits.h>
#include <fuzz/core.h>

#include <cmath>
#include <locale>
#include <memory>

namespace {

const fuzz::Core core("six_digits", [](fuzz::Input& input) {
  do {
    const double value = input.real();
    if (std::isnan(value)) continue;  // no time is; run-time libraries differ in its sign
    const auto text = std::make_unique<char[]>(kexlib::six_digits_size);  // of its exact size, for the sanitizer
    char* const end = kexlib::write_six_digits(text.get(), value);

    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << value;
    fuzz::expect_same(std::string(text.get(), end), stream.str(), value);
  } while (!input.empty());
});

}  // namespace
