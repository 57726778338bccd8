#include <kexlib/controls/numeric_formatting.h>

#include <support/bench.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int texts = 100000;

class Formatting : public kexNumberFormatting {
 public:
  Formatting() : kexNumberFormatting(3, 3, KRV_Inches, KRV_Inches) {}
  CStringA text(double value) { return format_double(value); }
};

// Uses values as controls show them.
template <class Work>
double nanoseconds_a_value(int count, Work work) {
  int i = 0;
  return bench::nanoseconds_each(count, [&] { work((++i % 200000 - 100000) * 0.0377); });
}

void measure_number_text() {
  static char buffer[512];
  bench::Comparison format("a number as text, three digits");
  format.add("snprintf", [] {
    return nanoseconds_a_value(texts, [](double value) { std::snprintf(buffer, sizeof buffer, "%.*f", 3, value); });
  });
  format.add("putValue, no control", [] {
    return nanoseconds_a_value(texts, [](double value) { kexNumericFormatting::putValue(nullptr, value, ",", 3); });
  });
  format.add("format_double", [] {
    static Formatting formatting;
    return nanoseconds_a_value(texts, [](double value) { formatting.text(value); });
  });
  format.run();
  bench::at_most(1.2, format.ratio("putValue, no control", "snprintf"),
                 {.name = "a number as text, with a separator",
                  .compared = "putValue without a control, of the time of one snprintf",
                  .reason = "snprintf makes such a text, still with the decimal point of the process"});
  bench::at_most(1.2, format.ratio("format_double", "snprintf"),
                 {.name = "a number as text, rounded",
                  .compared = "format_double, of the time of one snprintf",
                  .reason = "snprintf makes such a text, but rounds ties by the binary value"});

  // The function accepts only a control. The time to get and set its text is measured separately.
  constexpr int reads = 2000;
  const HWND window =
      bench::made(CreateWindowA("EDIT", "1234.5678", WS_POPUP, 0, 0, 100, 20, nullptr, nullptr, nullptr, nullptr));
  static WTL::CEditT<CWindow> edit(window);
  const auto line = [] {
    edit.GetLine(0, buffer, 260);
    return 0.0;
  };
  bench::Comparison read("a number read from a control");
  read.add("line, locale, _strtod_l, locale freed", [=] {
    return bench::nanoseconds_each(reads, [=] {
      line();
      const _locale_t neutral = _create_locale(LC_NUMERIC, "C");
      _strtod_l(buffer, nullptr, neutral);
      _free_locale(neutral);
    });
  });
  read.add("getValue",
           [] { return bench::nanoseconds_each(reads, [] { kexNumericFormatting::getValue(&edit, "."); }); });
  read.run();
  bench::at_most(1.05, read.ratio("getValue", "line, locale, _strtod_l, locale freed"),
                 {.name = "a number read from a control",
                  .compared = "getValue, of the time of GetLine, a \"C\" locale, _strtod_l",
                  .reason = "a text is read without the user's locale by these calls",
                  .wanted = "0.95. It makes the same calls: each reading has a locale of its own"});

  bench::Comparison write("a number written to a control");
  write.add("SetWindowTextA",
            [=] { return nanoseconds_a_value(reads, [=](double) { SetWindowTextA(window, "1.234"); }); });
  write.add("putValue", [] {
    return nanoseconds_a_value(reads, [](double) { kexNumericFormatting::putValue(&edit, 1.234, ".", 3); });
  });
  write.run();
  bench::at_most(1.02, write.ratio("putValue", "SetWindowTextA"),
                 {.name = "a number written to a control",
                  .compared = "putValue, of the time of SetWindowTextA with the ready text",
                  .reason = "the control's own work, which nobody can save"});
  DestroyWindow(window);
}

const bench::Benchmark number_text_benchmark("number text", measure_number_text);

}  // namespace
