#include <kexlib/controls/step_manager.h>

#include <support/bench.h>

namespace {

constexpr unsigned controls = 1000;
constexpr int rounds = 2;  // disable and enable

void measure_control_groups() {
  const HWND parent = bench::made(
      CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 100, 100, 100, 40, nullptr, nullptr, nullptr, nullptr));
  atlControlGroup group(parent);
  for (unsigned id = 1; id <= controls; ++id) {
    CreateWindowA("STATIC", "", WS_CHILD, 0, 0, 10, 10, parent, reinterpret_cast<HMENU>(UINT_PTR{id}), nullptr,
                  nullptr);
    group.add_control(id);
  }

  bench::Comparison work("1000 controls enabled or disabled", 9);
  work.add("EnableWindow, GetDlgItem", [=] {
    int round = 0;
    return bench::nanoseconds_each(rounds, [&] {
      const BOOL enable = ++round % 2 == 0;
      for (unsigned id = 1; id <= controls; ++id) EnableWindow(GetDlgItem(parent, static_cast<int>(id)), enable);
    });
  });
  work.add("set_enabled", [&] {
    int round = 0;
    return bench::nanoseconds_each(rounds, [&] { group.set_enabled(++round % 2 == 0); });
  });
  work.run();
  bench::at_most(1.1, work.ratio("set_enabled", "EnableWindow, GetDlgItem"),
                 {.name = "1000 controls enabled or disabled",
                  .compared = "set_enabled, of the time of EnableWindow and GetDlgItem for each",
                  .reason = "a dialog that enables controls by their ids calls these two"});
  DestroyWindow(parent);
}

const bench::Benchmark control_groups_benchmark("control groups", measure_control_groups);

}  // namespace
