// The example count_sources, on a small tree.
#include <gtest/gtest.h>

#include <windows.h>

#include <support/child_process.h>
#include <support/desktop_folder.h>
#include <support/files.h>

#include <string>

namespace fs = std::filesystem;

namespace {

class CountSourcesInChildProcess : public testing::Test {
 protected:
  TemporaryFolder folder_;
  DesktopFolder desktop_{folder_.path()};
};

TEST_F(CountSourcesInChildProcess, CountsProfilesAndTraces) {
  fs::create_directories("tree/sub/build");
  write_file("tree/a.cpp", "1\n2\n");
  write_file("tree/sub/b.h", "1\n");
  write_file("tree/sub/c.txt", "1\n2\n3\n");
  write_file("tree/sub/picture.png", "1\n");     // no source
  write_file("tree/sub/build/made.cpp", "1\n");  // not a source: build folders are skipped
  EXPECT_EQ(run_program("count_sources.exe", "tree"), 0u);

  std::string trace;
  for (const std::string& name : files_in(folder_.path()))
    if (name.starts_with("QZFileTrace_")) trace = read_file(name);
  EXPECT_EQ(trace.substr(0, trace.find("\r\n\r\n")), ".: 1 files, 2 lines\r\nsub: 2 files, 4 lines");

  for (const char* const record : {"counting.js", "profiler.js"}) {
    const std::string text = read_file(record);
    for (const char* const name : {"count", ".", "a.cpp", "sub", "b.h", "c.txt", "read"})
      EXPECT_NE(text.find(std::string("name: '") + name + "',\r\n"), std::string::npos) << record << " " << name;
    EXPECT_EQ(text.find("made.cpp"), std::string::npos);
  }
}

TEST_F(CountSourcesInChildProcess, RefusesAFolderThatIsNotThere) {
  EXPECT_EQ(run_program("count_sources.exe", "no_such_folder"), 2u);
  EXPECT_EQ(run_program("count_sources.exe", ""), 2u);
}

}  // namespace
