#include <kexlib/text/tip_name.h>

#include <support/bench.h>

#include <cstdio>

namespace {

constexpr int names = 20000;
const double values[] = {1.26, 2, 3.5, 4.75, 0.1, 12.5, 100, 7.7};

CComBSTR name(L"Left wing"), sub_name(L"Upper edge"), unit(L"mm");

// The hand-written alternative.
CStringA compose(double a, double b, double d, bool show_d) {
  char text[300];
  int length = std::snprintf(text, sizeof text, "%s - %s - %ld [ A=%.1f B=%.1f ]", static_cast<const char*>(CW2A(name)),
                             static_cast<const char*>(CW2A(sub_name)), 3L, a, b);
  if (show_d)
    length += std::snprintf(text + length, sizeof text - static_cast<std::size_t>(length), " [ D %.4f %s ]", d,
                            static_cast<const char*>(CW2A(unit)));
  return CStringA(text, length);
}

template <class Compose>
double nanoseconds_a_name(Compose compose_one) {
  unsigned i = 0;
  return bench::nanoseconds_each(names, [&] {
    ++i;
    compose_one(values[i % 8], values[i / 8 % 8], i * 0.001);
  });
}

void measure_tip_name() {
  bench::Comparison tips("a tip name whose A and B were seen before");
  tips.add("snprintf",
           [] { return nanoseconds_a_name([](double a, double b, double d) { compose(a, b, d, false); }); });
  tips.add("library", [] {
    return nanoseconds_a_name([](double a, double b, double d) {
      atl_smart_tip_name_from_parts(name, 3, sub_name, a, b, unit, d, true, false, true, true);
    });
  });
  tips.add("snprintf, with D",
           [] { return nanoseconds_a_name([](double a, double b, double d) { compose(a, b, d, true); }); });
  tips.add("library, with D", [] {
    return nanoseconds_a_name([](double a, double b, double d) {
      atl_smart_tip_name_from_parts(name, 3, sub_name, a, b, unit, d, true, true, true, true);
    });
  });
  tips.run();
  bench::at_least(
      3, tips.ratio("snprintf", "library"),
      {.name = "a tip's name",
       .compared = "atl_smart_tip_name_from_parts, times as fast as snprintf and conversions of the strings",
       .reason = "one snprintf makes the same text"});
}

const bench::Benchmark tip_name_benchmark("tip name", measure_tip_name);

}  // namespace
