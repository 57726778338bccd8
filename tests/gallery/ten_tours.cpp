// Goes ten times through the gallery's pages of the family that the argument names, in one process, and counts the
// resources that are left. The exit code is 0, or 1 if there are too many.
#include <gallery/application.h>
#include <gallery/page.h>
#include <gallery/tour.h>
#include <support/crash_report.h>
#include <support/resource_counts.h>

#include <cstdio>
#include <string>

namespace {

constexpr int rounds = 10, first_counted = 3;  // what is created once has been created by then

// What a round may leave behind. Each capture of the screen leaks a device context by design; message boxes sometimes
// keep a block of the heap; the system opens and closes handles of its own.
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

std::string family;

bool stays_flat(HWND frame) {
  Counts before{};
  bool flat = true;
  for (int round = 1; round <= rounds; ++round) {
    gallery::Tour tour(frame);
    tour.run("", family);  // whether its checks hold is the subject of another test
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
           // Wine's static controls keep a block for each font that is set; headings set two.
           now.heap_blocks <= before.heap_blocks + counted * (heap_blocks_of_a_round + texts + headings);
  }
  return flat;
}

}  // namespace

int main(int argc, char** argv) {
  report_crashes();
  if (argc != 2) return 2;
  family = argv[1];
  return gallery::run(stays_flat);
}
