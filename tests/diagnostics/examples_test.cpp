// The examples of the guide's page.
#include <gtest/gtest.h>

#include <kexlib/diagnostics/problem_alert.h>
#include <kexlib/testing.h>

#include <support/debugger_output.h>
#include <support/desktop_folder.h>
#include <support/files.h>
#include <support/message_pump.h>

#include <regex>
#include <string>
#include <thread>
#include <vector>

int sum_of_all(const std::vector<int>& numbers, const std::string& record);
std::string trace_a_start(int files, const char* folder);
void end_tracing();
std::thread check_sizes(std::vector<int> sizes, CProblemAlert& alert);

namespace {

TEST(DiagnosticsExamples, ProfileASum) {
  const TemporaryFolder folder;
  EXPECT_EQ(sum_of_all({12, 345}, "sums.js"), 15);
  const std::string times = std::regex_replace(read_file("sums.js"), std::regex("[0-9.e-]+(?=[,}])"), "N");
  EXPECT_NE(times.find("name: 'sum of digits',\r\n          time: [{b: N, e: N},{b: N, e: N},]"), std::string::npos)
      << times;
  EXPECT_NE(times.find("name: 'all',"), std::string::npos);
}

TEST(DiagnosticsExamplesOnDesktop, TraceAStart) {
  const TemporaryFolder folder;
  const DesktopFolder desktop(folder.path());
  const DebuggerOutput debugger;
  const std::string path = trace_a_start(3, "C:\\parts");
  EXPECT_EQ(path, (folder.path() / files_in(folder.path()).at(0)).string());
  EXPECT_EQ(read_file(path), "3 files in C:\\parts\r\n");
  EXPECT_EQ(debugger.texts(), std::vector<std::string>{"3 files in C:\\parts\n"});
  end_tracing();
  EXPECT_NE(read_file(path).find("\r\n\r\nFile closed at "), std::string::npos);
}

TEST(DiagnosticsExamples, RaiseAnAlert) {
  CProblemAlert alert;
  const auto boxes = [] { return kexlib::testing::dialogs_of_process().size(); };
  check_sizes({2, 5}, alert).join();
  check_sizes({2, 0, 5}, alert).join();
  EXPECT_TRUE(pump_until([&] { return boxes() == 1; }));
  EXPECT_TRUE(pump_until([&] {
    for (const HWND box : kexlib::testing::dialogs_of_process()) PostMessageA(box, WM_COMMAND, IDOK, 0);
    return boxes() == 0;
  }));
}

}  // namespace
