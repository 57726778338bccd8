// A walk through a temporary folder that records its files and folders.
#ifndef TESTS_TEXT_APPLY_TO_FILES_FIXTURE_H
#define TESTS_TEXT_APPLY_TO_FILES_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/text/apply_to_files.h>

#include <support/files.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace apply_to_files {

namespace fs = std::filesystem;
using Paths = std::vector<std::string>;

class Walk final : public kexApplyToFiles {
 public:
  Paths files;    // in the order of the calls
  Paths folders;  // passed to ignore_directory
  std::function<void(Walk&)> on_file = [](Walk&) {};
  std::function<int(Walk&)> veto = [](Walk&) { return 0; };

  void end() { stop = 1; }
  int stopped() const { return stop; }

  void apply_to_file(char* path) override {
    files.emplace_back(path);
    std::fill_n(path, std::char_traits<char>::length(path), '*');  // the callee may change the path
    on_file(*this);
  }

  // The recorded files, relative to the folder, sorted.
  Paths found_below(const fs::path& root) const {
    Paths names;
    for (const std::string& file : files) {
      EXPECT_TRUE(file.starts_with(root.string())) << file;
      names.push_back(file.substr(root.string().size() + 1));
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 protected:
  int ignore_directory(const char* const path) override {
    folders.emplace_back(path);
    return veto(*this);
  }
};

class ApplyToFiles : public testing::Test {
 protected:
  static void make(const fs::path& file) {
    if (file.has_parent_path()) fs::create_directories(file.parent_path());
    write_file(file, "");
  }

  long apply(const char* pattern = "*.*", int shortcuts = 0) {
    return walk_.Apply(root().string().c_str(), pattern, shortcuts);
  }
  const fs::path& root() const { return folder_.path(); }
  Paths found() const { return walk_.found_below(root()); }

  TemporaryFolder folder_;
  Walk walk_;
};

}  // namespace apply_to_files

#endif
