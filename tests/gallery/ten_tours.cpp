// Goes ten times through the gallery's pages of the family that the argument names, in one process, and counts the
// resources that are left. A second argument takes the pages with this text in their title only: it tells which page
// leaves something behind. The exit code is 0, or 1 if there is too much.
#include <gallery/application.h>
#include <gallery/page.h>
#include <gallery/tour.h>
#include <support/crash_report.h>
#include <support/resource_counts.h>

#include <cstdio>
#include <string>

namespace {

constexpr int rounds = 10, first_counted = 3;  // what is created once has been created by then

// The system opens and closes some objects of its own; a leak would be one in each round.
constexpr int gdi_objects_at_all = 3, kernel_handles_at_all = 3, heap_blocks_at_all = 5;

// The blocks of memory that stay behind in each round, beside the one that Wine's static controls keep for each text
// with a font of its own.
int blocks_kept_by(const std::string& family) {
  if (family == "com") return 17;      // a scan keeps the attributes of each type that it looks at
  if (family == "dialogs") return 10;  // the texts in the dialogs, and what the system keeps of each property sheet
  // The text of a message box, what the system keeps of its window, and the three texts of the page that its own tour
  // closes: they are gone when the texts are counted.
  if (family == "messageloop") return 5;
  if (family == "diagnostics") return 1;  // the text of a message box
  return 0;
}

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

std::string family, part_of_title;

bool stays_flat(HWND frame) {
  Counts before{};
  bool flat = true;
  for (int round = 1; round <= rounds; ++round) {
    gallery::Tour tour(frame);
    tour.run(part_of_title, family);  // whether its checks hold is the subject of another test
    const int texts = count_windows(frame, "Static");
    if (!tour.close_pages()) return false;
    const Counts now{count_windows(frame), count_gdi_objects(), count_kernel_handles(), count_heap_blocks()};
    std::printf("round %d: %d windows, %d GDI objects, %d kernel handles, %d heap blocks, %d texts\n\n", round,
                now.windows, now.gdi_objects, now.kernel_handles, now.heap_blocks, texts);
    std::fflush(stdout);
    if (round <= first_counted) before = now;
    const int counted = round - first_counted;
    flat = now.windows <= before.windows && now.gdi_objects <= before.gdi_objects + gdi_objects_at_all &&
           now.kernel_handles <= before.kernel_handles + kernel_handles_at_all &&
           now.heap_blocks <= before.heap_blocks + counted * (blocks_kept_by(family) + texts) + heap_blocks_at_all;
  }
  return flat;
}

}  // namespace

int main(int argc, char** argv) {
  report_crashes();
  if (argc < 2) return 2;
  family = argv[1];
  if (argc > 2) part_of_title = argv[2];
  return gallery::run(stays_flat);
}
