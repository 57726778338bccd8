#include <kexlib/text/apply_to_files.h>

#include <windows.h>

#include <support/bench.h>
#include <support/files.h>

#include <algorithm>
#include <cstdlib>
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

// A folder of FORM_FILES that scripts/bench has made: Wine takes a time for each new file that grows with its folder.
std::string made_tree(const char* form, std::size_t files) {
  const char* const trees = std::getenv("KEX_BENCH_TREES");
  if (!trees) throw bench::CannotRun{"scripts/bench has made no folders of files"};
  return trees + ("\\" + std::string(form)) + "_" + std::to_string(files);
}

double nanoseconds_a_file_of(const char* form, std::size_t files) {
  const std::string root = made_tree(form, files);
  found = 0;
  const auto walk = [&] { Count().Apply(root.c_str(), "*.cpp", 0); };
  walk();
  if (static_cast<std::size_t>(found) != files)
    throw bench::CannotRun{"there are not " + std::to_string(files) + " files in " + root};
  const int repeats = static_cast<int>(std::max<std::size_t>(1, 1000 / files));
  return bench::nanoseconds_each(repeats, walk) / static_cast<double>(files);
}

void grow_folders() {
  const auto grow = [](const char* name, const char* form) {
    bench::grow({.name = name,
                 .x = "files",
                 .y = "nanoseconds a file",
                 .sizes = {100, 1000, 10000, 100000},
                 .own_exponent = 0,
                 .explained = "",
                 .measure = [=](std::size_t files) { return nanoseconds_a_file_of(form, files); },
                 .rounds = 3});
  };
  grow("all in one folder", "flat");
  grow("in up to 50 folders, one in the other", "deep");
}

const bench::Growth folders_growth("folders", grow_folders);
const bench::Benchmark walk_benchmark("walk", measure_walk);

}  // namespace
