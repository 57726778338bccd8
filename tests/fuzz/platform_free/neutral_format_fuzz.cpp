// Formatting without a locale, against the run-time library in the "C" locale.
#include <fuzz/core.h>
#include <neutralfmt/vsprintf.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <memory>

namespace {

struct Written {
  int length;
  std::string text;
};

Written neutral(std::size_t size, const char* format, ...) {
  const auto buffer = std::make_unique<char[]>(size);  // of its exact size, for the sanitizer
  std::va_list arguments;
  va_start(arguments, format);
  const int length = NEUTRAL_FMT::vsprintf(buffer.get(), size, format, arguments);
  va_end(arguments);
  if (size == 0) return {length, {}};
  return {length, std::string(buffer.get(), length < 0 ? 0 : static_cast<std::size_t>(length))};
}

// One conversion between two texts.
class Format {
 public:
  explicit Format(fuzz::Input& input) : input_(input) {
    size_ = input.flag() ? 1 + input.below(32) : 700;
    before_ = std::string(input.text(input.below(4)));
    std::erase_if(before_, [](char each) { return each == '%' || each == '\0'; });
    format_ = before_ + '%';
    for (unsigned left = input.below(4); left > 0; --left) format_ += "-+ #0"[input.below(5)];
  }

  void check() {
    constexpr char types[] = "fFeEgGaAdiouxXcsp%";
    const char type = types[input_.below(sizeof types - 1)];
    const bool with_width = input_.flag(), with_precision = type != 'c' && type != 'p' && input_.flag();
    const int width = number(with_width, ""), precision = number(with_precision, ".");
    switch (type) {
      case 'd':
      case 'i':
      case 'o':
      case 'u':
      case 'x':
      case 'X':
        return integer(type, width, precision);
      case 'c':
        return compare("c", width, precision, 1 + static_cast<int>(input_.below(127)));
      case 's': {
        std::string text(input_.text(input_.below(40)));
        std::erase(text, '\0');
        return compare("s", width, precision, text.c_str());
      }
      case 'p':
        return;  // printed otherwise everywhere
      case '%':
        return fuzz::expect_same(neutral(700, "%%").text, std::string("%"));
      default:
        return real(type, width, precision);
    }
  }

 private:
  // Half of the numbers stand in the format, half come by "*". Gives the one that comes so, or one that is not used.
  int number(bool given, const char* lead) {
    if (!given) return unused;
    const int value = input_.flag() ? static_cast<int>(input_.below(20)) : input_.number<std::int16_t>() % 400;
    format_ += lead;
    if (input_.flag()) {
      format_ += '*';
      return value;
    }
    format_ += std::to_string(std::max(value, 0));
    return unused;
  }

  void integer(char type, int width, int precision) {
    const std::string end(1, type);
    switch (input_.below(7)) {
      case 0:
        return compare("l" + end, width, precision, input_.number<long>());
      case 1:
        return compare("ll" + end, width, precision, input_.number<long long>());
      case 2:
        return compare("h" + end, width, precision, input_.number<int>());
      case 3:
        return compare("hh" + end, width, precision, input_.number<int>());
      case 4:
        return compare("z" + end, width, precision, input_.number<std::size_t>());
      case 5:
        return compare("j" + end, width, precision, input_.number<std::intmax_t>());
      default:
        return compare(end, width, precision, input_.number<int>());
    }
  }

  void real(char type, int width, int precision) {
    const std::string end(1, type);
    double value = input_.real();
    if (std::isnan(value)) value = std::fabs(value);  // printed without a sign
    if (!rounds_ties_to_even()) value = std::nextafter(value, 2 * value);
    if (input_.flag()) return compare("L" + end, width, precision, static_cast<long double>(value));
    return compare((input_.flag() ? "l" : "") + end, width, precision, value);
  }

  template <class Value>
  void compare(const std::string& conversion, int width, int precision, Value value) {
    format_ += conversion + "|";
    // A negative precision is none. The reference is not asked for it: not each C library knows that.
    std::string definition = format_;
    if (precision != unused && precision < 0) definition.erase(definition.rfind(".*"), 2);
    const Written expected = with(width, [&](auto... widths) {
      return with(precision < 0 ? unused : precision,
                  [&](auto... precisions) { return printed(definition.c_str(), widths..., precisions..., value); });
    });
    if (expected.length < 0) return;
    const Written ours = with(width, [&](auto... widths) {
      return with(precision,
                  [&](auto... precisions) { return neutral(size_, format_.c_str(), widths..., precisions..., value); });
    });
    const std::string text = expected.text.substr(0, size_ - 1);
    fuzz::expect_same(ours.text, text, format_);
    fuzz::expect_same(ours.length, static_cast<int>(text.size()), format_);
  }

  // By the standard of C, printf does. Not each library does.
  static bool rounds_ties_to_even() {
    static const bool does = printed("%.0f", 2.5).text == "2";
    return does;
  }

  // Calls with the number that comes by "*", or with none.
  template <class Call>
  static Written with(int number, const Call& call) {
    return number == unused ? call() : call(number);
  }

  // A negative length: the text is too long to be compared.
  template <class... Values>
  static Written printed(const char* format, Values... values) {
    char text[700];
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
#endif
    const int length = std::snprintf(text, sizeof text, format, values...);
#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif
    if (length >= static_cast<int>(sizeof text)) return {-1, {}};
    return {length, length < 0 ? "" : text};
  }

  static constexpr int unused = -1000000;

  fuzz::Input& input_;
  std::size_t size_;
  std::string before_, format_;
};

// Any text at all: it is formatted within its room, or refused and empty. The arguments are zeros.
void expect_text_or_refusal(fuzz::Input& input) {
  const std::size_t size = 1 + input.below(64);
  std::string format(input.text(60));
  for (char& each : format)
    if (each == 's') each = 'd';  // a text would be read through a null pointer
  if (std::count(format.begin(), format.end(), '%') > 5 || std::count(format.begin(), format.end(), '*') > 5) return;
  const long long z = 0;
  const Written written = neutral(size, format.c_str(), z, z, z, z, z, z, z, z, z, z, z, z, z, z, z, z, z, z, z, z);
  fuzz::expect_same(written.length >= -1 && written.length < static_cast<int>(size), true, format, written.length);
}

const fuzz::Core core("neutral_format", [](fuzz::Input& input) {
  if (input.below(4) == 3) return expect_text_or_refusal(input);
  Format(input).check();
});

}  // namespace
