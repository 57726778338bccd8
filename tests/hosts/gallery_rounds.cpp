// Goes through the whole gallery ten times in one process, and looks at what stays behind. The exit code is 0, or 1.
#include <application.h>
#include <tour.h>

#include <support/crash_report.h>
#include <support/resource_counts.h>

#include <cstdio>

namespace {

constexpr int rounds = 10, first_counted = 3;  // by then everything that is made once has been made

int count_all_windows(HWND frame) {
  const auto count = [](HWND, LPARAM number) -> BOOL {
    ++*reinterpret_cast<int*>(number);
    return TRUE;
  };
  int number = 0;
  EnumThreadWindows(GetWindowThreadProcessId(frame, nullptr), count, reinterpret_cast<LPARAM>(&number));
  EnumChildWindows(frame, count, reinterpret_cast<LPARAM>(&number));
  return number;
}

struct Counts {
  int windows, gdi_objects, kernel_handles, heap_blocks;
};

bool stays_flat(HWND frame) {
  Counts before{};
  bool flat = true;
  for (int round = 1; round <= rounds; ++round) {
    if (!gallery::Tour(frame).run("")) return false;
    const Counts now{count_all_windows(frame), count_gdi_objects(), count_kernel_handles(), count_heap_blocks()};
    std::printf("round %d: %d windows, %d GDI objects, %d kernel handles, %d heap blocks\n\n", round, now.windows,
                now.gdi_objects, now.kernel_handles, now.heap_blocks);
    if (round == first_counted) before = now;
    flat = round < rounds || (now.windows <= before.windows && now.gdi_objects <= before.gdi_objects &&
                              now.kernel_handles <= before.kernel_handles && now.heap_blocks <= before.heap_blocks);
  }
  return flat;
}

}  // namespace

int main() {
  report_crashes();
  return gallery::run(stays_flat);
}
