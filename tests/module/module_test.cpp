// Loading and unloading the library in processes of their own.
#include <gtest/gtest.h>

#include <windows.h>

#include <kexlib/version.h>
#include <support/child_process.h>
#include <support/crash_report.h>
#include <support/desktop_folder.h>
#include <support/files.h>

#include <regex>
#include <string>
#include <vector>

namespace {

TEST(Module, TellsItsVersionInItsResource) {
  const std::string path = (program_folder() / "kexlib.dll").string();
  std::vector<char> data(GetFileVersionInfoSizeA(path.c_str(), nullptr));
  ASSERT_FALSE(data.empty());
  ASSERT_TRUE(GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(data.size()), data.data()));
  void* value;
  UINT size;
  ASSERT_TRUE(VerQueryValueA(data.data(), "\\", &value, &size));
  const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(value);
  EXPECT_EQ(info.dwFileVersionMS, MAKELONG(KEXLIB_VERSION_MINOR, KEXLIB_VERSION_MAJOR));
  EXPECT_EQ(info.dwFileVersionLS, MAKELONG(0, KEXLIB_VERSION_PATCH));
  ASSERT_TRUE(VerQueryValueA(data.data(), "\\StringFileInfo\\040904b0\\FileVersion", &value, &size));
  EXPECT_EQ(std::string(static_cast<const char*>(value)), std::to_string(KEXLIB_VERSION_MAJOR) + "." +
                                                              std::to_string(KEXLIB_VERSION_MINOR) + "." +
                                                              std::to_string(KEXLIB_VERSION_PATCH));
}

TEST(Programs, AllButOneAskForVersion6OfTheCommonControls) {
  int programs = 0;
  for (const std::string& name : files_in(program_folder())) {
    if (!name.ends_with(".exe")) continue;
    HMODULE program = LoadLibraryExA((program_folder() / name).string().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_TRUE(program) << name;
    HRSRC manifest = FindResourceA(program, MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(24));
    if (name == "host_without_manifest.exe") {
      EXPECT_EQ(manifest, nullptr) << name;
      FreeLibrary(program);
      continue;
    }
    ASSERT_TRUE(manifest) << name;
    const std::string text(static_cast<const char*>(LockResource(LoadResource(program, manifest))),
                           SizeofResource(program, manifest));
    EXPECT_NE(text.find("Microsoft.Windows.Common-Controls\" version=\"6.0.0.0\""), std::string::npos) << name;
    FreeLibrary(program);
    ++programs;
  }
  EXPECT_GE(programs, 5);
}

// The programs trace into `folder_` too: they are started with it as the desktop.
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
    EXPECT_EQ(run_program("kexlib_host.exe", ending), exit_code);
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
  EXPECT_EQ(run_program("kexlib_host.exe", "silent"), exit_code);
  EXPECT_EQ(files(), std::vector<std::string>{});
}

TEST_F(UnloadInChildProcess, WritesNoRecordWhenProfilingWasStopped) {
  EXPECT_EQ(run_program("kexlib_host.exe", "stopped"), exit_code);
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
  EXPECT_EQ(run_program("kexlib_host.exe", "TerminateProcess"), exit_code);
  EXPECT_EQ(files(), std::vector<std::string>{"trace"});
  EXPECT_EQ(trace(), "TerminateProcess\r\n");  // complete up to the last line, without a footer
}

// The other thread is killed at a different place each time, within an insertion at many of them.
TEST_F(UnloadInChildProcess, WritesAWholeRecordWhileAnotherThreadIsInsideTheProfiler) {
  for (int round = 0; round < 20; ++round) {
    ASSERT_EQ(run_program("kexlib_host.exe", "busy_thread"), exit_code) << round;
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
}

// What every test here stands on: a crash is no success.
TEST_F(UnloadInChildProcess, TellsACrashByItsExitCode) {
  EXPECT_EQ(run_program("kexlib_host.exe", "crash"), crash_exit_code);
}

}  // namespace
