#include <kexlib/text/apply_to_files.h>

#include <windows.h>
#include <winternl.h>

#include <support/bench.h>
#include <support/files.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

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

// An empty file, made by the system's function below CreateFile, case-sensitive: for the other one Wine reads the whole
// folder, to find the name in another spelling, and a hundred thousand files would take hours.
void make_file(const fs::path& path) {
  std::wstring name = LR"(\??\)" + path.wstring();
  UNICODE_STRING string{static_cast<USHORT>(name.size() * 2), static_cast<USHORT>(name.size() * 2), name.data()};
  OBJECT_ATTRIBUTES attributes{};
  attributes.Length = sizeof attributes;
  attributes.ObjectName = &string;
  IO_STATUS_BLOCK result{};
  HANDLE file;
  if (NtCreateFile(&file, GENERIC_WRITE | SYNCHRONIZE, &attributes, &result, nullptr, FILE_ATTRIBUTE_NORMAL, 0,
                   FILE_CREATE, FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0) < 0)
    throw bench::CannotRun{"a file cannot be made"};
  NtClose(file);
}

// Ten files in each of fifty folders or fewer, one in the other; a path has 260 characters at most.
void make_deep_tree(fs::path folder, std::size_t files) {
  const std::size_t levels = std::min<std::size_t>(50, files / 10);
  for (std::size_t level = 0; level < levels; ++level) {
    for (std::size_t i = level; i < files; i += levels) make_file(folder / (std::to_string(i) + ".cpp"));
    folder /= "d";
    fs::create_directory(folder);
  }
}

void make_flat_tree(fs::path folder, std::size_t files) {
  for (std::size_t i = 0; i < files; ++i) make_file(folder / (std::to_string(i) + ".cpp"));
}

double nanoseconds_a_file_of(void (*make)(fs::path folder, std::size_t files), std::size_t files) {
  TemporaryFolder folder;
  make(folder.path(), files);
  const std::string root = folder.path().string();
  const auto walk = [&] { Count().Apply(root.c_str(), "*.cpp", 0); };
  walk();
  const int repeats = static_cast<int>(std::max<std::size_t>(1, 1000 / files));
  return bench::nanoseconds_each(repeats, walk) / static_cast<double>(files);
}

void grow_folders() {
  const std::vector<std::size_t> sizes = {100, 1000, 10000, 100000};
  bench::grow({.name = "all in one folder",
               .x = "files",
               .y = "nanoseconds a file",
               .sizes = sizes,
               .own_exponent = 0,
               .explained = "",
               .measure = [](std::size_t files) { return nanoseconds_a_file_of(make_flat_tree, files); },
               .rounds = 1});
  bench::grow({.name = "in up to 50 folders, one in the other",
               .x = "files",
               .y = "nanoseconds a file",
               .sizes = sizes,
               .own_exponent = 0,
               .explained = "",
               .measure = [](std::size_t files) { return nanoseconds_a_file_of(make_deep_tree, files); },
               .rounds = 1});
}

const bench::Growth folders_growth("folders", grow_folders);
const bench::Benchmark walk_benchmark("walk", measure_walk);

}  // namespace
