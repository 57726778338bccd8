#ifndef KEXLIB_DIAGNOSTICS_SIX_DIGITS_H
#define KEXLIB_DIAGNOSTICS_SIX_DIGITS_H

#include <cstddef>

namespace kexlib {

// The longest text is "-1.23457e+308" of 13 characters.
constexpr std::size_t six_digits_size = 16;

// Writes the text of a std::ostream with the classic locale and its default format: six significant digits, "0",
// "12.3457", "1.23457e+06". Returns the end of the text; `out` has room for six_digits_size.
char* write_six_digits(char* out, double value);

}  // namespace kexlib

#endif
