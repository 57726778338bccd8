#include <kexlib/controls/step_manager.h>

#include <support/bench.h>
#include <support/heap_use.h>

namespace {

constexpr int rounds = 2;  // disable and enable

HWND make_parent() {
  return bench::made(
      CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 100, 100, 100, 40, nullptr, nullptr, nullptr, nullptr));
}

void add_controls(atlControlGroup& group, unsigned controls) {
  for (unsigned id = 1; id <= controls; ++id) {
    CreateWindowA("STATIC", "", WS_CHILD, 0, 0, 10, 10, group.parent(), reinterpret_cast<HMENU>(UINT_PTR{id}), nullptr,
                  nullptr);
    group.add_control(id);
  }
}

void measure_control_groups() {
  constexpr unsigned controls = 1000;
  const HWND parent = make_parent();
  atlControlGroup group(parent);
  add_controls(group, controls);

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

void grow_steps() {
  bench::grow({.name = "set_enabled",
               .x = "controls of a step",
               .y = "nanoseconds a control",
               .sizes = {10, 100, 1000, 10000},
               .own_exponent = 0,
               .explained = "GetDlgItem goes through the children of the window until it finds the identifier",
               .measure =
                   [](std::size_t controls) {
                     const HWND parent = make_parent();
                     atlControlGroup group(parent);
                     add_controls(group, static_cast<unsigned>(controls));
                     int round = 0;
                     const double time = bench::nanoseconds_each(rounds, [&] { group.set_enabled(++round % 2 == 0); });
                     DestroyWindow(parent);
                     return time / static_cast<double>(controls);
                   },
               .rounds = 1});
}

void measure_memory() {
  constexpr int count = 10000;
  const std::int64_t before = heap_use().bytes;
  atlStepManager steps;
  for (unsigned i = 0; i < count; ++i) steps.create_step()->add_control(i);
  bench::at_most(256, static_cast<double>(heap_use().bytes - before) / count,
                 {.name = "memory of a step",
                  .compared = "bytes of the heap, of one of 10,000 steps with a control each",
                  .reason = "an object of its own for each, and a std::set of identifiers"});
}

const bench::Benchmark memory_benchmark("memory of steps", measure_memory);
const bench::Growth steps_growth("steps", grow_steps);
const bench::Benchmark control_groups_benchmark("control groups", measure_control_groups);

}  // namespace
