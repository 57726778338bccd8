// An application on the framework, from start to end.
#include <gtest/gtest.h>

#include <support/child_process.h>
#include <support/files.h>

namespace {

TEST(SampleApplicationInChildProcess, DoesWhatItsDeveloperExpects) {
  TemporaryFolder folder;
  EXPECT_EQ(run_program("sample_application.exe", ""), 0U);
  EXPECT_EQ(read_file("transcript.txt"),
            "the application is there\n"
            "typed 1x2 3: 123\n"
            "lamp clicked: On\n"
            "lamp clicked: Off\n"
            "pin at 5, 45: down\n"
            "size page left with 'big': refused\n"
            "size page left with '42'\n"
            "settings closed with 1: name Ann, size 42\n"
            "overview shown\n"
            "main dialog closed with 1\n"
            "method 7 failed: code 1003, printer says 'out of paper'\n"
            "method 8 failed: 80020003\n"
            "stored bytes: 17\n"
            "loaded: 3 2.5 -1 abc\n"
            "writing while loading: cause 2\n"
            "reading on: an unnamed file ended before all of it was read.\n"
            "label of 196 x 36: frame 000000, inside FFFFFF\n"
            "in the middle\n"
            "version found in the library\n"
            "sorted: appepl\n"
            "a pear is a pear\n"
            "no viewer installed\n");
}

}  // namespace
