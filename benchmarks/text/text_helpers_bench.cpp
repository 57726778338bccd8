#include <kexlib/text/text_helpers.h>

#include <support/bench.h>

#include <random>
#include <string>

namespace {

constexpr int length = 100000;

// `share` percent of the characters are forbidden.
CString text_with(unsigned share) {
  std::mt19937 random(1);
  CString text;
  char* const characters = text.GetBufferSetLength(length);
  for (int i = 0; i < length; ++i)
    characters[i] = random() % 100 < share ? "*?\"<>|/\\:"[random() % 9] : static_cast<char>('a' + random() % 26);
  return text;
}

// Not inlined, like a function of a library.
[[gnu::noinline]] void replace_one(char* text, int count, char character, char replacement) {
  for (int i = 0; i < count; ++i)
    if (text[i] == character) text[i] = replacement;
}

double pass_per_character(const CString& original) {
  CString text(original);
  text.GetBuffer();
  return bench::nanoseconds_each(1, [&] {
    for (const char each : {'*', '?', '"', '<', '>', '|', '/', '\\', ':'})
      replace_one(text.GetBuffer(), length, each, '_');
  });
}

double library(const CString& original) {
  CString text(original);
  text.GetBuffer();
  return bench::nanoseconds_each(1, [&] { kex_replace_forbidden_symbols_strict(text, '_'); });
}

void measure_forbidden_symbols() {
  static const CString clean = text_with(0), usual = text_with(2), dense = text_with(50);
  bench::Comparison replace("forbidden characters in 100 000", 51);
  replace.add("a pass per character, none", [] { return pass_per_character(clean); });
  replace.add("library, none", [] { return library(clean); });
  replace.add("a pass per character, 2 %", [] { return pass_per_character(usual); });
  replace.add("library, 2 %", [] { return library(usual); });
  replace.add("library, 50 %", [] { return library(dense); });
  replace.run();
  bench::at_least(5, replace.ratio("a pass per character, none", "library, none"),
                  {.name = "forbidden characters, none there",
                   .compared = "kex_replace_forbidden_symbols_strict, times as fast as a pass for each character",
                   .reason = "nine calls of CString::Replace, without their allocations"});
  bench::at_least(5, replace.ratio("a pass per character, 2 %", "library, 2 %"),
                  {.name = "forbidden characters, 2 % of all",
                   .compared = "kex_replace_forbidden_symbols_strict, times as fast as a pass for each character",
                   .reason = "nine calls of CString::Replace, without their allocations"});
}

const bench::Benchmark forbidden_symbols_benchmark("forbidden characters", measure_forbidden_symbols);

}  // namespace
