// The library's unload in separate processes: at FreeLibrary, and at each kind of process end.
#include <gtest/gtest.h>

#include <windows.h>

#include <support/child_process.h>
#include <support/crash_report.h>
#include <support/desktop_folder.h>
#include <support/files.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

namespace {

// The programs write their trace files to `folder_` too: it is their desktop folder.
class UnloadInChildProcess : public testing::Test {
 protected:
  static constexpr unsigned exit_code = 7;

  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (std::string name : files_in(folder_.path()))
      names.push_back(name.starts_with("QZFileTrace_") ? "trace" : std::move(name));
    std::sort(names.begin(), names.end());
    return names;
  }

  std::string trace() const {
    for (const std::string& name : files_in(folder_.path()))
      if (name.starts_with("QZFileTrace_")) return read_file(folder_.path() / name);
    return "none";
  }

  static std::string normalised(const std::string& bytes) {
    return std::regex_replace(
        std::regex_replace(without_carriage_returns(bytes), std::regex("Thread \\d+"), "Thread ID"),
        std::regex("e: (?!0\\})[0-9.e+-]+|b: (?!0,)[0-9.e+-]+"), "#");
  }

  void expect_written_at_unload(const std::string& ending) {
    EXPECT_EQ(run_program("endings.exe", ending), exit_code);
    EXPECT_EQ(files(), (std::vector<std::string>{"profiler.js", "trace"}));
    EXPECT_TRUE(std::regex_match(trace(), std::regex(ending + "\r\n\r\n\r\nFile closed at .{19}"))) << trace();
    EXPECT_EQ(normalised(read_file("profiler.js")),
              "var threads = [\n"
              "{\n"
              "  blocks: [\n"
              "    {\n"
              "      name: 'closed',\n"
              "      time: [{b: 0, #},]\n"
              "    },\n"
              "    {\n"
              "      name: 'open',\n"
              "      time: [{#, e: 0},]\n"
              "    },\n"
              "  ],\n"
              "  name: 'Thread ID'\n"
              "},\n"
              "]\n");
  }

  TemporaryFolder folder_;
  DesktopFolder desktop_{folder_.path()};
};

TEST_F(UnloadInChildProcess, WritesNothingWhenNothingIsOn) {
  EXPECT_EQ(run_program("endings.exe", "silent"), exit_code);
  EXPECT_EQ(files(), std::vector<std::string>{});
}

TEST_F(UnloadInChildProcess, WritesNoRecordWhenProfilingWasStopped) {
  EXPECT_EQ(run_program("endings.exe", "stopped"), exit_code);
  EXPECT_EQ(files(), (std::vector<std::string>{"stopped.js", "trace"}));
}

TEST_F(UnloadInChildProcess, FinishesRecordAndTraceAtReturnFromMain) { expect_written_at_unload("return"); }

TEST_F(UnloadInChildProcess, FinishesRecordAndTraceAtExit) { expect_written_at_unload("exit"); }

TEST_F(UnloadInChildProcess, FinishesRecordAndTraceAtQuickExit) { expect_written_at_unload("quick_exit"); }

TEST_F(UnloadInChildProcess, FinishesRecordAndTraceAtExitProcess) { expect_written_at_unload("ExitProcess"); }

TEST_F(UnloadInChildProcess, FinishesRecordAndTraceAtExitProcessOnAnotherThread) {
  expect_written_at_unload("ExitProcess_on_thread");
}

TEST_F(UnloadInChildProcess, DoesNotRunAtTerminateProcess) {
  EXPECT_EQ(run_program("endings.exe", "TerminateProcess"), exit_code);
  EXPECT_EQ(files(), std::vector<std::string>{"trace"});
  EXPECT_EQ(trace(), "TerminateProcess\r\n");  // complete up to the last line, without a footer
}

TEST_F(UnloadInChildProcess, LeavesAWholeTraceWhenTheProgramIsKilled) {
  std::string command = "\"" + (program_folder() / "endings.exe").string() + "\" killed";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION program;
  ASSERT_TRUE(
      CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &program));
  while (trace() != "killed\r\n" && WaitForSingleObject(program.hProcess, 10) == WAIT_TIMEOUT) {
  }
  EXPECT_TRUE(TerminateProcess(program.hProcess, exit_code));
  EXPECT_EQ(WaitForSingleObject(program.hProcess, INFINITE), DWORD{WAIT_OBJECT_0});
  CloseHandle(program.hThread);
  CloseHandle(program.hProcess);
  EXPECT_EQ(files(), std::vector<std::string>{"trace"});
  EXPECT_EQ(trace(), "killed\r\n");
}

TEST_F(UnloadInChildProcess, LeavesAWholeTraceWhenAnotherThreadCrashes) {
  EXPECT_EQ(run_program("endings.exe", "crash_on_thread"), crash_exit_code);
  EXPECT_EQ(files(), std::vector<std::string>{"trace"});
  EXPECT_EQ(trace(), "crash_on_thread\r\n");
}

TEST_F(UnloadInChildProcess, FinishesRecordAndTraceUnderABoxThatNobodyCloses) { expect_written_at_unload("box"); }

// The other thread is killed at a different place each time, within an insertion at many of them.
TEST_F(UnloadInChildProcess, WritesAWholeRecordWhileAnotherThreadIsInsideTheProfiler) {
  for (int round = 0; round < 20; ++round) {
    ASSERT_EQ(run_program("endings.exe", "busy_thread"), exit_code) << round;
    const std::string text = without_carriage_returns(read_file("profiler.js"));
    ASSERT_TRUE(text.starts_with("var threads = [\n{\n  blocks: [\n    {\n      name: 'closed',\n"));
    ASSERT_TRUE(text.ends_with("'\n},\n]\n"));
    ASSERT_NE(text.find("      name: 'busy 0',\n      time: [{b: "), std::string::npos);
    std::filesystem::remove("profiler.js");
  }
}

TEST_F(UnloadInChildProcess, FinishesRecordAndTraceAtFreeLibraryTimeAndAgain) {
  EXPECT_EQ(run_program("plugin_host.exe", "three times"), 0u);
  const std::vector<std::string> names = files();
  EXPECT_EQ(names, (std::vector<std::string>{"round 1.js", "round 2.js", "round 3.js", "trace", "trace", "trace"}));
  EXPECT_TRUE(std::regex_match(trace(), std::regex("plug-in\r\n\r\n\r\nFile closed at .{19}"))) << trace();
  for (const char* const name : {"round 1.js", "round 2.js", "round 3.js"})
    EXPECT_NE(read_file(name).find("name: 'plug-in'"), std::string::npos);
}

TEST_F(UnloadInChildProcess, GivesItsMemoryBackAtFreeLibrary) {
  EXPECT_EQ(run_program("plugin_host.exe", "flat profile_much"), 0u);
  EXPECT_EQ(run_program("plugin_host.exe", "flat start_many_timers"), 0u);
  EXPECT_EQ(run_program("plugin_host.exe", "flat show_pictures"), 0u);
  EXPECT_EQ(run_program("plugin_host.exe", "flat register_many_windows"), 0u);
}

TEST_F(UnloadInChildProcess, RemovesTheHookOfTheWindowTableAtFreeLibrary) {
  EXPECT_EQ(run_program("plugin_host.exe", "hook"), 0u);
}

TEST_F(UnloadInChildProcess, TakesItselfFromMfcsExtensionsAtFreeLibrary) {
  EXPECT_EQ(run_program("extension_host.exe", "free"), 0u);
}

TEST_F(UnloadInChildProcess, LeavesMfcsExtensionsAloneAtTheEndOfTheProcess) {
  EXPECT_EQ(run_program("extension_host.exe", "end"), exit_code);
}

// An ended thread may own the lock of the timers.
TEST_F(UnloadInChildProcess, LeavesTheLockOfTheTimersAloneAtTheEndOfTheProcess) {
  EXPECT_EQ(run_program("endings.exe", "in_tick"), exit_code);
}

TEST_F(UnloadInChildProcess, LeavesTheHookOfTheWindowTableToTheSystemAtTheEndOfTheProcess) {
  EXPECT_EQ(run_program("endings.exe", "hwnd_table"), exit_code);
}

TEST_F(UnloadInChildProcess, EndsTheThreadOfAStaticAlert) { EXPECT_EQ(run_program("endings.exe", "alert"), exit_code); }

// All tests here rely on it: a crash is reported as a failure.
TEST_F(UnloadInChildProcess, TellsACrashByItsExitCode) {
  EXPECT_EQ(run_program("endings.exe", "crash"), crash_exit_code);
  EXPECT_EQ(run_program("endings.exe", "crash_in_window_procedure"), crash_exit_code);
}

}  // namespace
