// Goes through the whole gallery ten times in one process, and looks at what stays behind. The exit code is 0, or 1.
#include <application.h>
#include <page.h>
#include <tour.h>

#include <support/crash_report.h>
#include <support/resource_counts.h>

#include <cstdio>

namespace {

constexpr int rounds = 10, first_counted = 3;  // by then everything that is made once has been made

// What a round may leave behind. The capture of the screen loses a device context each time, on purpose; message boxes
// keep a block of the heap now and then; handles of the system's come and go.
constexpr int gdi_objects_of_a_round = 6, heap_blocks_of_a_round = 5, kernel_handles_at_all = 3;

int count_windows(HWND frame, const char* of_class = nullptr) {
  struct Search {
    const char* of_class;
    int found;
  } search{of_class, 0};
  const auto count = [](HWND window, LPARAM parameter) -> BOOL {
    auto& counted = *reinterpret_cast<Search*>(parameter);
    char name[64];
    GetClassNameA(window, name, sizeof name);
    if (!counted.of_class || lstrcmpiA(name, counted.of_class) == 0) ++counted.found;
    return TRUE;
  };
  EnumThreadWindows(GetWindowThreadProcessId(frame, nullptr), count, reinterpret_cast<LPARAM>(&search));
  EnumChildWindows(frame, count, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

struct Counts {
  int windows, gdi_objects, kernel_handles, heap_blocks;
};

bool stays_flat(HWND frame) {
  Counts before{};
  bool flat = true;
  for (int round = 1; round <= rounds; ++round) {
    gallery::Tour tour(frame);
    tour.run("");  // what it sees is another test's affair
    const int texts = count_windows(frame, "Static"), headings = static_cast<int>(gallery::pages().size());
    if (!tour.close_pages()) return false;
    const Counts now{count_windows(frame), count_gdi_objects(), count_kernel_handles(), count_heap_blocks()};
    std::printf("round %d: %d windows, %d GDI objects, %d kernel handles, %d heap blocks, %d texts\n\n", round,
                now.windows, now.gdi_objects, now.kernel_handles, now.heap_blocks, texts);
    std::fflush(stdout);
    if (round <= first_counted) before = now;
    const int counted = round - first_counted;
    flat = now.windows <= before.windows && now.gdi_objects <= before.gdi_objects + counted * gdi_objects_of_a_round &&
           now.kernel_handles <= before.kernel_handles + kernel_handles_at_all &&
           // Wine's static controls keep a block each time that they are given a font; headings are given two.
           now.heap_blocks <= before.heap_blocks + counted * (heap_blocks_of_a_round + texts + headings);
  }
  return flat;
}

}  // namespace

int main() {
  report_crashes();
  return gallery::run(stays_flat);
}
