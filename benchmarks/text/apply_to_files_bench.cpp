#include <kexlib/text/apply_to_files.h>

#include <windows.h>

#include <support/bench.h>
#include <support/files.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

int found;

class Count final : public kexApplyToFiles {
 public:
  void apply_to_file(char*) override { ++found; }
};

void walk_bare(const std::string& folder) {
  WIN32_FIND_DATAA entry;
  const HANDLE search = FindFirstFileA((folder + "\\*").c_str(), &entry);
  do {
    if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) continue;
    const std::string name = entry.cFileName;
    if (name != "." && name != "..") walk_bare(folder + "\\" + name);
  } while (FindNextFileA(search, &entry));
  FindClose(search);
}

// A tree similar to the sources of a program: many small folders.
void make_tree(const fs::path& root) {
  for (int i = 0; i < 100; ++i)
    for (int j = 0; j < 9; ++j) {
      const fs::path folder = root / std::to_string(i) / std::to_string(j);
      fs::create_directories(folder);
      for (int k = 0; k < 11; ++k)
        write_file(folder / ("a_source_file_" + std::to_string(k) + (k % 3 ? ".h" : ".cpp")), "");
    }
}

void measure_walk() {
  TemporaryFolder folder;
  make_tree(folder.path());
  const std::string root = folder.path().string();
  const auto nanoseconds_a_file = [](auto work) { return [=] { return bench::nanoseconds_each(1, work) / 9900; }; };

  bench::Comparison walk("a walk over 9900 files in 1001 folders, each file", 9);
  walk.add("FindFirstFile, nothing done", nanoseconds_a_file([=] { walk_bare(root); }));
  walk.add("kexApplyToFiles", nanoseconds_a_file([=] { Count().Apply(root.c_str(), "*.cpp", 0); }));
  walk.add("std::filesystem, is_regular_file", nanoseconds_a_file([=] {
             for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root))
               if (entry.is_regular_file() && entry.path().extension() == ".cpp") ++found;
           }));
  walk.run();
  bench::at_most(1.10, walk.ratio("kexApplyToFiles", "FindFirstFile, nothing done"),
                 {.name = "a walk over files",
                  .compared = "kexApplyToFiles, of the time of a recursive FindFirstFile that does nothing",
                  .reason = "one search for each folder is the least that finds all files"});
  bench::at_least(1.3, walk.ratio("std::filesystem, is_regular_file", "kexApplyToFiles"),
                  {.name = "a walk beside std::filesystem",
                   .compared = "kexApplyToFiles, times as fast as recursive_directory_iterator with is_regular_file",
                   .reason = "the walk of the standard library, as people write it"});
}

const bench::Benchmark walk_benchmark("walk", measure_walk);

}  // namespace
