#include <kexlib/windowtools/hwnd_table.h>

#include <support/bench.h>
#include <support/heap_use.h>
#include <support/import_override.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace {

constexpr int look_ups = 10000;

// The system's queries about a window take the same time in all variants, and are excluded from all.
BOOL WINAPI yes(HWND) { return TRUE; }
HWND WINAPI no_parent(HWND) { return nullptr; }
int WINAPI no_class(HWND, char*, int) { return 0; }

struct SystemLeftOut {
  const ImportOverride one{"kexlib.dll", "USER32.dll", "IsWindow", &yes};
  const ImportOverride two{"kexlib.dll", "USER32.dll", "IsWindowVisible", &yes};
  const ImportOverride three{"kexlib.dll", "USER32.dll", "GetParent", &no_parent};
  const ImportOverride four{"kexlib.dll", "USER32.dll", "GetClassNameA", &no_class};
};

std::string name_of(int i) { return "view " + std::to_string(i); }

class Table : public kexHWNDTable {
 public:
  explicit Table(int windows) {
    for (int i = 0; i < windows; ++i) {
      reg_window(reinterpret_cast<HWND>(static_cast<INT_PTR>(i + 1)), name_of(i).c_str(), 1);
      names.push_back(name_of(i));
    }
  }
  // A look-up, of all names in turn or of the first ones.
  double nanoseconds() const { return nanoseconds_among(names.size()); }
  double nanoseconds_among(std::size_t first) const {
    std::size_t i = 0;
    const auto look_up = [&] {
      i = (i + 7919) % first;
      found += get_handle(names[i].c_str()) != nullptr;
    };
    bench::nanoseconds_each(look_ups, look_up);  // refills the processor's caches after the other variants
    return bench::nanoseconds_each(look_ups, look_up);
  }

  std::vector<std::string> names;
  mutable int found = 0;
};

// The hand-written alternative.
struct Entry {
  std::string name;
  unsigned long idd;
};

double scan(const std::unordered_map<HWND, Entry>& entries, const std::vector<std::string>& names) {
  std::size_t i = 0;
  static volatile int found;
  return bench::nanoseconds_each(look_ups / 10, [&] {
    i = (i + 7919) % names.size();
    for (const auto& [window, entry] : entries)
      if (entry.name == names[i].c_str() && yes(window) && yes(window)) {
        found = found + 1;
        break;
      }
  });
}

void measure_window_by_name() {
  const SystemLeftOut left_out;
  const Table ten(10), thirty_two(32), thousand(1000), ten_thousand(10000);
  std::unordered_map<HWND, Entry> entries;
  for (int i = 0; i < 32; ++i)
    entries.try_emplace(reinterpret_cast<HWND>(static_cast<INT_PTR>(i + 1)), Entry{name_of(i), 1});

  bench::Comparison table("a window by its name, window calls left out", 45);
  table.add("10 windows", [&] { return ten.nanoseconds(); });
  table.add("32 windows", [&] { return thirty_two.nanoseconds(); });
  table.add("32 windows, scan", [&] { return scan(entries, thirty_two.names); });
  table.add("1000 windows", [&] { return thousand.nanoseconds(); });
  table.add("10000 windows", [&] { return ten_thousand.nanoseconds(); });
  table.add("10000 windows, ten names that recur", [&] { return ten_thousand.nanoseconds_among(10); });
  table.run();
  bench::at_most(3, table.ratio("10000 windows", "10 windows"),
                 {.name = "a window by its name among 10,000",
                  .compared = "get_handle without the calls of the system, of the time among 10 windows",
                  .reason = "an index by name would take the same time",
                  .wanted = "1.3. All names in turn exceed the processor's caches, here and in any other index"});
  bench::at_most(1.3, table.ratio("10000 windows, ten names that recur", "10 windows"),
                 {.name = "a window by one of ten names among 10,000",
                  .compared = "the same, where the names that are asked for are few",
                  .reason = "a program asks for its few panes again and again"});
  bench::at_most(1, table.ratio("32 windows", "32 windows, scan"),
                 {.name = "a window by its name among 32",
                  .compared = "get_handle without the calls of the system, of the time of a scan",
                  .reason = "a map by window handle, gone through until the name is found"});
  kexHWNDTable::delete_singleton();
}

void measure_memory() {
  const SystemLeftOut left_out;
  constexpr int windows = 10000;
  const std::int64_t before = heap_use().bytes;
  for (int i = 0; i < windows; ++i)
    kexHWNDTable::singleton().reg_window(reinterpret_cast<HWND>(static_cast<INT_PTR>(i + 1)), name_of(i).c_str(), 1);
  bench::at_most(256, static_cast<double>(heap_use().bytes - before) / windows,
                 {.name = "memory of a named window",
                  .compared = "bytes of the heap, among 10,000 with short names",
                  .reason = "a map by handle and an index by name, each with a node of some 100 bytes"});
  kexHWNDTable::delete_singleton();
}

void grow_windows() {
  {
    const SystemLeftOut left_out;
    bench::grow({.name = "a search by name, window calls left out",
                 .x = "windows",
                 .y = "nanoseconds",
                 .sizes = {10, 100, 1000, 10000},
                 .own_exponent = 0,
                 .explained = "from 1,000 names on, the index exceeds the processor's first caches",
                 .measure = [](std::size_t windows) { return Table(static_cast<int>(windows)).nanoseconds(); },
                 .rounds = 9});
    kexHWNDTable::delete_singleton();
  }
  bench::grow({.name = "created with a name, and destroyed",
               .x = "windows",
               .y = "nanoseconds a window",
               .sizes = {10, 100, 1000, 10000},
               .own_exponent = 0,
               .explained = "",
               .measure =
                   [](std::size_t count) {
                     std::vector<HWND> windows(count);
                     kexHWNDTable& table = kexHWNDTable::singleton();
                     const double time = bench::nanoseconds_each(1, [&] {
                       for (std::size_t i = 0; i < count; ++i) {
                         windows[i] = bench::made(
                             CreateWindowA("STATIC", "", 0, 0, 0, 9, 9, HWND_MESSAGE, nullptr, nullptr, nullptr));
                         table.reg_window(windows[i], name_of(static_cast<int>(i)).c_str(), 1);
                       }
                       for (const HWND window : windows) DestroyWindow(window);
                     });
                     kexHWNDTable::delete_singleton();
                     return time / static_cast<double>(count);
                   },
               .rounds = 3});
}

const bench::Benchmark memory_benchmark("memory of named windows", measure_memory);
const bench::Growth windows_growth("windows", grow_windows);
const bench::Benchmark window_by_name_benchmark("window by name", measure_window_by_name);

}  // namespace
