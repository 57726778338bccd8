#include <neutralfmt/vsprintf.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <limits>
#include <string_view>

namespace {

// Writes to the buffer and truncates at its end.
class Text {
 public:
  Text(char* buffer, std::size_t size) : next_(buffer), end_(buffer + size - 1), begin_(buffer) {}

  void put(std::string_view text) {
    text = text.substr(0, room());
    std::memcpy(next_, text.data(), text.size());
    next_ += text.size();
  }

  void put(std::ptrdiff_t count, char character) {
    if (count <= 0) return;
    const std::size_t fitting = std::min(static_cast<std::size_t>(count), room());
    std::memset(next_, character, fitting);
    next_ += fitting;
  }

  // Prints one conversion with the run-time library. Returns false if that fails.
  template <typename... Values>
  bool print(const char* format, Values... values) {
    const int length = std::snprintf(next_, room() + 1, format, values...);
    if (length < 0) return false;
    next_ += std::min(static_cast<std::size_t>(length), room());
    return true;
  }

  char* next() { return next_; }
  std::size_t room() const { return static_cast<std::size_t>(end_ - next_); }

  int ended() {
    *next_ = '\0';
    return static_cast<int>(next_ - begin_);
  }

 private:
  char* next_;
  char* end_;  // the last character, reserved for the terminator
  char* begin_;
};

struct Arguments {
  std::va_list list;
};

// One conversion: "%", flags, width, precision, length and type.
struct Conversion {
  std::string_view flags;
  int width = 0;       // negative: left-aligned, as the flag "-"
  int precision = -1;  // negative: not given
  std::string_view length;
  char type = '\0';

  bool has(char flag) const { return flags.find(flag) != flags.npos; }
  bool is(std::string_view modifier) const { return length == modifier; }
};

// Reads the longest run of characters that `characters` contains.
std::string_view take_any_of(const char*& at, const char* characters) {
  const std::size_t count = std::strspn(at, characters);
  at += count;
  return {at - count, count};
}

int take_number(const char*& at, Arguments& arguments) {
  if (*at == '*') {
    ++at;
    return va_arg(arguments.list, int);
  }
  const std::string_view digits = take_any_of(at, "0123456789");
  int number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

// Reads from the character after the "%" to the type, inclusive.
Conversion take_conversion(const char*& at, Arguments& arguments) {
  Conversion conversion;
  conversion.flags = take_any_of(at, "-+ #0");
  conversion.width = take_number(at, arguments);
  if (*at == '.') {
    ++at;
    // Every negative precision means none. Not every run-time library takes another one than -1.
    conversion.precision = std::max(take_number(at, arguments), -1);
  }
  conversion.length = take_any_of(at, "hljztL");
  conversion.type = *at;
  if (*at) ++at;
  return conversion;
}

// What goes far beyond the room is not seen, but would take the run-time library its time. A long double has fewer
// digits than that.
void limit_to(std::size_t room, Conversion& conversion) {
  constexpr std::size_t beyond = 20000;
  const int most = static_cast<int>(std::min<std::size_t>(room, std::numeric_limits<int>::max() - beyond) + beyond);
  conversion.width = std::clamp(conversion.width, -most, most);
  conversion.precision = std::min(conversion.precision, most);
}

// The same conversion for the run-time library, with width and precision as arguments. Returns false if it is too long.
bool rebuild(const Conversion& conversion, char (&format)[32]) {
  if (conversion.flags.size() + conversion.length.size() > 24) return false;
  char* at = format;
  *at++ = '%';
  at = std::copy(conversion.flags.begin(), conversion.flags.end(), at);
  const std::string_view numbers = conversion.type == 'p' ? "*" : "*.*";  // an address has no precision
  at = std::copy(numbers.begin(), numbers.end(), at);
  at = std::copy(conversion.length.begin(), conversion.length.end(), at);
  *at++ = conversion.type;
  *at = '\0';
  return true;
}

// "%f" by std::to_chars, which does not use the locale and takes a third of the time; and what is no number, in all
// conversions.
void put_fixed(Text& text, const Conversion& conversion, double value) {
  constexpr int most_places = 1074;  // of a double; all further places are zeros
  char digits[309 + 1 + most_places];
  const int precision = conversion.precision < 0 ? 6 : conversion.precision;
  const bool upper = conversion.type < 'a';
  std::string_view number;
  if (std::isnan(value)) {
    number = upper ? "NAN" : "nan";  // without a sign
  } else if (std::isinf(value)) {
    number = upper ? "INF" : "inf";
  } else {
    const auto end = std::to_chars(std::begin(digits), std::end(digits), std::fabs(value), std::chars_format::fixed,
                                   std::min(precision, most_places));
    number = {digits, static_cast<std::size_t>(end.ptr - digits)};
  }

  const bool negative = std::signbit(value) && !std::isnan(value);
  const std::string_view sign = negative ? "-" : conversion.has('+') ? "+" : conversion.has(' ') ? " " : "";
  const std::ptrdiff_t more_zeros = std::isfinite(value) ? std::max(precision - most_places, 0) : 0;
  const std::ptrdiff_t width = conversion.width < 0 ? -std::ptrdiff_t{conversion.width} : conversion.width;
  const std::ptrdiff_t padding =
      width - static_cast<std::ptrdiff_t>(sign.size()) - static_cast<std::ptrdiff_t>(number.size()) - more_zeros;
  const bool left = conversion.has('-') || conversion.width < 0;
  const bool zeros = conversion.has('0') && !left && std::isfinite(value);

  if (!left && !zeros) text.put(padding, ' ');
  text.put(sign);
  if (zeros) text.put(padding, '0');
  text.put(number);
  text.put(more_zeros, '0');
  if (left) text.put(padding, ' ');
}

// The other conversions with a decimal point: by the run-time library, with the locale's decimal point replaced.
template <typename Value>
bool print_with_point(Text& text, const char* format, const Conversion& conversion, Value value) {
  char* const start = text.next();
  if (!text.print(format, conversion.width, conversion.precision, value)) return false;
  std::replace(start, text.next(), *std::localeconv()->decimal_point, '.');
  return true;
}

bool put_number(Text& text, const char* format, const Conversion& conversion, Arguments& arguments) {
  const long double value = conversion.is("L") ? va_arg(arguments.list, long double) : va_arg(arguments.list, double);
  const bool fixed = (conversion.type | 0x20) == 'f' && !conversion.is("L") && !conversion.has('#');
  if (fixed || !std::isfinite(value))
    put_fixed(text, conversion, static_cast<double>(value));
  else if (conversion.is("L"))
    return print_with_point(text, format, conversion, value);
  else
    return print_with_point(text, format, conversion, static_cast<double>(value));
  return true;
}

bool put_conversion(Text& text, Conversion conversion, Arguments& arguments) {
  char format[32];
  limit_to(text.room(), conversion);
  if (!rebuild(conversion, format)) return false;
  const auto print = [&](auto value) {
    if (conversion.type == 'p') return text.print(format, conversion.width, value);
    return text.print(format, conversion.width, conversion.precision, value);
  };

  switch (conversion.type) {
    case '%':
      text.put("%");
      return true;
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
    case 'a':
    case 'A':
      return put_number(text, format, conversion, arguments);
    case 'd':
    case 'i':
    case 'o':
    case 'u':
    case 'x':
    case 'X':
      if (conversion.is("l")) return print(va_arg(arguments.list, long));
      if (conversion.is("ll") || conversion.is("j")) return print(va_arg(arguments.list, long long));
      if (conversion.is("z") || conversion.is("t")) return print(va_arg(arguments.list, std::ptrdiff_t));
      return print(va_arg(arguments.list, int));
    case 'c':
      return print(va_arg(arguments.list, int));
    case 's':
      if (conversion.is("l")) return print(va_arg(arguments.list, const wchar_t*));
      return print(va_arg(arguments.list, const char*));
    case 'p':
      return print(va_arg(arguments.list, void*));
    default:
      return false;
  }
}

}  // namespace

int NEUTRAL_FMT::vsprintf(char* buffer, std::size_t size, const char* format, std::va_list arguments) {
  if (!size) return 0;
  Text text(buffer, size);
  Arguments taken;
  va_copy(taken.list, arguments);
  bool valid = true;
  while (valid && *format) {
    const std::size_t plain = std::strcspn(format, "%");
    text.put({format, plain});
    format += plain;
    if (*format == '%') valid = put_conversion(text, take_conversion(++format, taken), taken);
  }
  va_end(taken.list);
  if (valid) return text.ended();
  *buffer = '\0';
  return -1;
}
