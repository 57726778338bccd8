#include <kexlib/com/registration_free.h>

#include <atlbase.h>

#include <support/bench.h>
#include <support/files.h>
#include <support/type_library.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const GUID wanted = {0x7E57AB1E, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};

// Type libraries in twenty folders; every second one contains the interface.
std::vector<fs::path> make_libraries(const fs::path& root, std::size_t count) {
  std::vector<fs::path> paths;
  for (unsigned i = 0; i < count; ++i) {
    const fs::path folder = root / std::to_string(i % 20);
    fs::create_directories(folder);
    paths.push_back(folder / ("library" + std::to_string(i) + ".tlb"));
    const GUID clsid = {i, 0, 0, {1}};
    GUID iid = wanted;
    iid.Data2 = static_cast<unsigned short>(iid.Data2 + i % 2);
    make_type_library(paths.back(), clsid, iid);
  }
  return paths;
}

void measure_type_library_scan() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  {
    TemporaryFolder folder;
    constexpr int count = 200;
    const std::vector<fs::path> paths = make_libraries(folder.path(), count);
    const std::string root = folder.path().string();
    std::size_t found = 0;
    const auto nanoseconds_a_library = [](auto work) {
      return [=] { return bench::nanoseconds_each(3, work) / count; };
    };

    bench::Comparison scan("a walk over 200 type libraries, each library");
    scan.add("LoadTypeLib alone", nanoseconds_a_library([&] {
               for (const fs::path& path : paths) {
                 CComPtr<ITypeLib> library;
                 if (SUCCEEDED(LoadTypeLib(path.c_str(), &library))) ++found;
               }
             }));
    scan.add("reg_free_list_classes",
             nanoseconds_a_library([&] { found += reg_free_list_classes(wanted, root.c_str(), "*.tlb").size(); }));
    scan.add("reg_free_find_tlb",
             nanoseconds_a_library([&] { found += reg_free_find_tlb(wanted, root.c_str(), "*.tlb").size(); }));
    scan.run();
    const char* const reason =
        "whoever searches type libraries must load each, and paths known beforehand save the walk";
    bench::at_most(1.2, scan.ratio("reg_free_list_classes", "LoadTypeLib alone"),
                   {.name = "the classes of 200 type libraries",
                    .compared = "reg_free_list_classes, of the time of LoadTypeLib on each",
                    .reason = reason});
    bench::at_most(1.2, scan.ratio("reg_free_find_tlb", "LoadTypeLib alone"),
                   {.name = "an interface in 200 type libraries",
                    .compared = "reg_free_find_tlb, of the time of LoadTypeLib on each",
                    .reason = reason});
  }
  CoUninitialize();
}

void grow_type_libraries() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  bench::grow({.name = "reg_free_list_classes",
               .x = "type libraries",
               .y = "nanoseconds a library",
               .sizes = {1, 5, 20, 100, 500},
               .own_exponent = 0,
               .explained = "",
               .measure =
                   [](std::size_t count) {
                     TemporaryFolder folder;
                     make_libraries(folder.path(), count);
                     const std::string root = folder.path().string();
                     const auto scan = [&] { reg_free_list_classes(wanted, root.c_str(), "*.tlb"); };
                     scan();
                     const int repeats = static_cast<int>(std::max<std::size_t>(1, 20 / count));
                     return bench::nanoseconds_each(repeats, scan) / static_cast<double>(count);
                   },
               .rounds = 3});
  CoUninitialize();
}

const bench::Growth type_library_growth("type libraries", grow_type_libraries);
const bench::Benchmark type_library_scan_benchmark("type libraries", measure_type_library_scan);

}  // namespace
