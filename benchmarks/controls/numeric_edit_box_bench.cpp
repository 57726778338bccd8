#include <kexlib/controls/numeric_edit_box.h>

#include <support/bench.h>

#include <cstdio>

namespace {

constexpr int values = 2000;

template <class Work>
double nanoseconds_a_value(Work work) {
  int i = 0;
  return bench::nanoseconds_each(values, [&] { work((++i % 20000 - 10000) * 0.0377); });
}

HWND make_edit(HWND parent, int top) {
  return CreateWindowA("EDIT", "", WS_CHILD | WS_VISIBLE, 0, top, 100, 20, parent, nullptr, nullptr, nullptr);
}

void measure_numeric_edit_box() {
  const HWND parent = bench::made(
      CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 100, 100, 100, 40, nullptr, nullptr, nullptr, nullptr));
  const HWND plain = make_edit(parent, 0);
  kexNumericEditBox box;
  box.SubclassWindow(make_edit(parent, 20));

  bench::Comparison work("a number set in an edit control");
  work.add("snprintf, SetWindowTextA", [=] {
    return nanoseconds_a_value([=](double value) {
      char text[300];
      std::snprintf(text, sizeof text, "%.*f", 3, value);
      SetWindowTextA(plain, text);
    });
  });
  work.add("set_value", [&] { return nanoseconds_a_value([&](double value) { box.set_value(value); }); });
  work.run();
  bench::at_most(1.2, work.ratio("set_value", "snprintf, SetWindowTextA"),
                 {.name = "a number set in an edit control",
                  .compared = "set_value, of the time of snprintf and SetWindowTextA",
                  .reason = "these two calls put a number into a control"});
  DestroyWindow(parent);
}

const bench::Benchmark numeric_edit_box_benchmark("edit box", measure_numeric_edit_box);

}  // namespace
