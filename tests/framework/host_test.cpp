// An application written on the framework as its developer writes one, from its first window to its last line.
#include <gtest/gtest.h>

#include <support/child_process.h>
#include <support/files.h>

namespace {

TEST(FrameworkHostInChildProcess, DoesWhatItsDeveloperExpects) {
  TemporaryFolder folder;
  EXPECT_EQ(run_program("framework_host.exe", ""), 0U);
  EXPECT_EQ(read_file("transcript.txt"),
            "the application is there\n"
            "typed 1x2 3: 123\n"
            "lamp clicked: On\n"
            "lamp clicked: Off\n"
            "size page left with 'big': refused\n"
            "size page left with '42'\n"
            "settings closed with 1: name Ann, size 42\n"
            "main dialog closed with 1\n"
            "method 7 failed: code 1003, printer says 'out of paper'\n"
            "method 8 failed: 80020003\n"
            "stored bytes: 17\n"
            "loaded: 3 2.5 -1 abc\n"
            "writing while loading: cause 2\n"
            "reading on: cause 3\n");
}

}  // namespace
