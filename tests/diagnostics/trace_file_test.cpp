#include <gtest/gtest.h>

#include <kexlib/diagnostics/trace_file.h>

#include <windows.h>

#include <diagnostics/full_disk.h>
#include <support/c_library.h>
#include <support/debugger_output.h>
#include <support/desktop_folder.h>
#include <support/files.h>

#include <algorithm>
#include <clocale>
#include <ctime>
#include <filesystem>
#include <limits>
#include <regex>
#include <string>
#include <type_traits>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::string local_time(std::time_t time, const char* pattern) {
  char text[64];
  std::strftime(text, sizeof text, pattern, std::localtime(&time));
  return text;
}

// Whether `text` is one of the results of the pattern for the seconds from `first` until now.
bool is_time_since(std::time_t first, const std::string& text, const char* pattern) {
  for (std::time_t time = first; time <= std::time(nullptr); ++time)
    if (text == local_time(time, pattern)) return true;
  return false;
}

class TraceFileOnDesktop : public testing::Test {
 protected:
  ~TraceFileOnDesktop() override { CTraceToFile::SetTraceMode(CTraceToFile::TraceOff); }

  std::vector<std::string> trace_files() const { return files_in(folder_.path()); }

  std::string only_file() const {
    const std::vector<std::string> files = trace_files();
    EXPECT_EQ(files.size(), 1u);
    return files.empty() ? "" : read_file(folder_.path() / files[0]);
  }

  // The contents of the only file after it was closed, without the footer.
  std::string traced() const {
    g_traceToFile.CloseFile();
    const std::string text = only_file();
    return text.substr(0, text.find("\r\n\r\nFile closed at "));
  }

  const std::time_t start_ = std::time(nullptr);
  TemporaryFolder folder_;
  DesktopFolder desktop_{folder_.path()};
};

TEST_F(TraceFileOnDesktop, IsOffAtFirst) { EXPECT_EQ(CTraceToFile::GetTraceMode(), CTraceToFile::TraceOff); }

TEST_F(TraceFileOnDesktop, TouchesNothingAndFormatsNothingWhenOff) {
  DebuggerOutput debugger;
  // If the text were formatted, "%n" would store the number of characters.
  int formatted = -1;
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
#endif
  g_traceToFile.Trace("text%n", &formatted);
#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif
  EXPECT_EQ(formatted, -1);
  EXPECT_EQ(trace_files().size(), 0u);
  EXPECT_EQ(debugger.texts().size(), 0u);
}

TEST_F(TraceFileOnDesktop, MakesNoFileForTheDebuggerAlone) {
  DebuggerOutput debugger;
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebugger);
  g_traceToFile.Trace("%s %d\n", "text", 7);
  EXPECT_EQ(debugger.texts(), std::vector<std::string>{"text 7\n"});
  EXPECT_EQ(trace_files().size(), 0u);
}

TEST_F(TraceFileOnDesktop, SendsNothingToTheDebuggerForTheFileAlone) {
  DebuggerOutput debugger;
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("text");
  EXPECT_EQ(debugger.texts().size(), 0u);
  EXPECT_EQ(traced(), "text");
}

TEST_F(TraceFileOnDesktop, SendsTheSameTextToBoth) {
  DebuggerOutput debugger;
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebuggerAndFile);
  g_traceToFile.Trace("a\nb");
  EXPECT_EQ(debugger.texts(), std::vector<std::string>{"a\nb"});
  EXPECT_EQ(traced(), "a\r\nb");
}

TEST_F(TraceFileOnDesktop, WritesTheFileBeforeItTellsTheDebugger) {
  std::string in_file;
  DebuggerOutput debugger([&] { in_file = only_file(); });
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebuggerAndFile);
  g_traceToFile.Trace("text");
  EXPECT_EQ(in_file, "text");
}

TEST_F(TraceFileOnDesktop, IsMadeByAnEmptyTextToo) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("%s", "");
  EXPECT_EQ(trace_files().size(), 1u);
  EXPECT_EQ(only_file(), "");
}

// Test machines use universal time, which would hide a wrong choice.
TEST_F(TraceFileOnDesktop, TellsLocalTime) {
  _putenv("TZ=KEX-05:30");
  _tzset();
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("text");
  g_traceToFile.CloseFile();
  const std::string name = trace_files()[0];
  const std::string text = only_file();
  const bool name_is_local = is_time_since(start_, name, "QZFileTrace_%d%m%Y_%H%M%S_0.txt");
  const bool footer_is_local = is_time_since(start_, text.substr(8), "File closed at %d/%m/%Y %H:%M:%S");
  char universal[64];
  std::strftime(universal, sizeof universal, "%H%M", std::gmtime(&start_));
  const std::string local = local_time(start_, "%H%M");
  _putenv("TZ=");
  _tzset();
  ASSERT_NE(local, universal);
  EXPECT_TRUE(name_is_local) << name;
  EXPECT_TRUE(footer_is_local) << text;
}

TEST_F(TraceFileOnDesktop, IsMadeByTheFirstLineWithItsTimeAndACounter) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  EXPECT_EQ(trace_files().size(), 0u);
  g_traceToFile.Trace("text");
  ASSERT_EQ(trace_files().size(), 1u);
  EXPECT_TRUE(is_time_since(start_, trace_files()[0], "QZFileTrace_%d%m%Y_%H%M%S_0.txt")) << trace_files()[0];
}

TEST_F(TraceFileOnDesktop, CountsOnWhereNamesAreTaken) {
  // All names of the next minute, up to _1.
  for (std::time_t time = start_; time < start_ + 60; ++time) {
    write_file(local_time(time, "QZFileTrace_%d%m%Y_%H%M%S_0.txt"), "taken");
    write_file(local_time(time, "QZFileTrace_%d%m%Y_%H%M%S_1.txt"), "taken");
  }
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("text");
  g_traceToFile.CloseFile();
  int found = 0;
  for (const std::string& name : trace_files())
    if (is_time_since(start_, name, "QZFileTrace_%d%m%Y_%H%M%S_2.txt")) ++found;
  EXPECT_EQ(found, 1);
  EXPECT_EQ(trace_files().size(), 121u);
  EXPECT_EQ(read_file(local_time(start_, "QZFileTrace_%d%m%Y_%H%M%S_1.txt")), "taken");
}

TEST_F(TraceFileOnDesktop, GivesTwoFilesOfOneSecondTwoNames) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  // Twenty files within a second or two: some share a second, and none is lost.
  for (int i = 0; i < 20; ++i) {
    g_traceToFile.Trace("text");
    g_traceToFile.CloseFile();
  }
  const std::vector<std::string> files = trace_files();
  EXPECT_EQ(files.size(), 20u);
  const auto ends_in = [&](const std::string& end) {
    return std::count_if(files.begin(), files.end(), [&](const std::string& name) { return name.ends_with(end); });
  };
  EXPECT_GE(ends_in("_0.txt"), 1);
  EXPECT_GE(ends_in("_1.txt"), 1);
}

TEST_F(TraceFileOnDesktop, IsCompleteUpToTheLastLineWhileOpen) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("one\n");
  EXPECT_EQ(only_file(), "one\r\n");
  g_traceToFile.Trace("two");
  EXPECT_EQ(only_file(), "one\r\ntwo");
}

TEST_F(TraceFileOnDesktop, EndsInAFooterWrittenOnce) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("text\n");
  g_traceToFile.CloseFile();
  g_traceToFile.CloseFile();
  const std::string text = only_file();
  ASSERT_EQ(text.substr(0, 10), "text\r\n\r\n\r\n");
  EXPECT_TRUE(is_time_since(start_, text.substr(10), "File closed at %d/%m/%Y %H:%M:%S")) << text;
}

TEST_F(TraceFileOnDesktop, IsNotMadeByClosing) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.CloseFile();
  EXPECT_EQ(trace_files().size(), 0u);
}

TEST_F(TraceFileOnDesktop, IsClosedByAModeWithoutTheFileBitOnly) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebuggerAndFile);
  g_traceToFile.Trace("one");
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  EXPECT_EQ(only_file(), "one");
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebuggerAndFile);
  EXPECT_EQ(only_file(), "one");
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebugger);
  EXPECT_TRUE(std::regex_match(only_file(), std::regex("one\r\n\r\nFile closed at .{19}")));
}

TEST_F(TraceFileOnDesktop, IsAnotherFileAfterAClose) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("one");
  CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  EXPECT_EQ(trace_files().size(), 1u);
  g_traceToFile.Trace("two");
  EXPECT_EQ(trace_files().size(), 2u);
}

TEST_F(TraceFileOnDesktop, TellsThePathOfTheOpenFile) {
  EXPECT_EQ(g_traceToFile.GetFilePath(), "");
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  EXPECT_EQ(g_traceToFile.GetFilePath(), "") << "the first line makes it";
  g_traceToFile.Trace("one");
  EXPECT_EQ(g_traceToFile.GetFilePath(), (folder_.path() / trace_files().at(0)).string());
  EXPECT_EQ(read_file(g_traceToFile.GetFilePath()), "one");
  CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);
  EXPECT_EQ(g_traceToFile.GetFilePath(), "");
}

TEST_F(TraceFileOnDesktop, ReturnsTheModeThatWasSet) {
  for (const auto mode : {CTraceToFile::TraceToDebugger, CTraceToFile::TraceToFile,
                          CTraceToFile::TraceToDebuggerAndFile, CTraceToFile::TraceOff}) {
    CTraceToFile::SetTraceMode(mode);
    EXPECT_EQ(CTraceToFile::GetTraceMode(), mode);
  }
}

TEST_F(TraceFileOnDesktop, CutsATextAt511Characters) {
  for (const std::size_t length : {0u, 1u, 510u, 511u, 512u, 513u, 100000u}) {
    DebuggerOutput debugger;
    CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebugger);
    g_traceToFile.Trace("%s", std::string(length, 'x').c_str());
    ASSERT_EQ(debugger.texts().size(), 1u);
    EXPECT_EQ(debugger.texts()[0], std::string(std::min<std::size_t>(length, 511), 'x')) << length;
  }
}

TEST_F(TraceFileOnDesktop, DoublesTheLineEndsOfAFullBuffer) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("%s", std::string(600, '\n').c_str());
  std::string expected;
  for (int i = 0; i < 511; ++i) expected += "\r\n";
  EXPECT_EQ(only_file(), expected);
}

TEST_F(TraceFileOnDesktop, FormatsAsPrintfOfTheProgramDoes) {
  DebuggerOutput debugger;
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebugger);
  g_traceToFile.Trace("%5.2f|%-4d|%lld|%s|%c|%%|%g", 0.125, 7, 1LL << 40, "text", 'c',
                      std::numeric_limits<double>::infinity());
  const std::string expected = c_library::rounds_ties_to_even() ? " 0.12" : " 0.13";
  EXPECT_EQ(debugger.texts()[0], expected + "|7   |1099511627776|text|c|%|inf");
}

TEST_F(TraceFileOnDesktop, KnowsTheLengthsOfWindows) {
  DebuggerOutput debugger;
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebugger);
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"  // with -Wpedantic: they are not in the standard
#endif
  g_traceToFile.Trace("%I64d %Iu %I32d", -(1LL << 40), sizeof(void*), -7);
#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif
  EXPECT_EQ(debugger.texts()[0], "-1099511627776 8 -7");
}

TEST_F(TraceFileOnDesktop, FormatsInTheLocaleThatIsSet) {
  const std::string previous = std::setlocale(LC_ALL, nullptr);
  ASSERT_NE(std::setlocale(LC_ALL, "German"), nullptr);
  DebuggerOutput debugger;
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebugger);
  g_traceToFile.Trace("%.1f", 1.5);
  std::setlocale(LC_ALL, previous.c_str());
  EXPECT_EQ(debugger.texts()[0], "1,5");
}

// Run-time libraries differ: some return the text before it, some nothing.
TEST_F(TraceFileOnDesktop, CutsOrDropsATextThatCannotBeFormatted) {
  DebuggerOutput debugger;
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebugger);
  const wchar_t unpaired[] = {0xD800, 0};
  g_traceToFile.Trace("before %ls", unpaired);
  ASSERT_EQ(debugger.texts().size(), 1u);
  EXPECT_TRUE(debugger.texts()[0] == "before " || debugger.texts()[0].empty()) << debugger.texts()[0];
}

TEST_F(TraceFileOnDesktop, IgnoresANullFormat) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  const char* const format = nullptr;
  g_traceToFile.Trace(format);
  EXPECT_EQ(trace_files().size(), 0u);
}

TEST_F(TraceFileOnDesktop, LetsOthersReadAndWriteMeanwhile) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("text");
  const HANDLE other = CreateFileA(trace_files()[0].c_str(), GENERIC_READ | GENERIC_WRITE,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_NE(other, INVALID_HANDLE_VALUE);
  CloseHandle(other);
}

TEST_F(TraceFileOnDesktop, LosesLinesWhileItCannotBeMadeAndThenGoesOn) {
  DebuggerOutput debugger;
  desktop_.move_to("Z:\\proc");  // a folder in which no file can be created
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToDebuggerAndFile);
  g_traceToFile.Trace("lost");
  g_traceToFile.Trace("lost too");
  g_traceToFile.CloseFile();
  desktop_.move_to(folder_.path());
  EXPECT_EQ(trace_files().size(), 0u);
  g_traceToFile.Trace("kept");
  EXPECT_EQ(only_file(), "kept");
  EXPECT_EQ(debugger.texts(), (std::vector<std::string>{"lost", "lost too", "kept"}));
}

TEST_F(TraceFileOnDesktop, LosesLinesWhileTheDiskIsFullAndThenGoesOn) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  {
    const FullDisk disk(8);
    ASSERT_TRUE(disk.made());
    for (const char* text : {"kept\n", "cut off\n", "lost\n"}) g_traceToFile.Trace("%s", text);
  }
  g_traceToFile.Trace(", kept too");
  EXPECT_EQ(traced(), "kept\r\ncu, kept too");
}

TEST_F(TraceFileOnDesktop, LosesLinesWhenThePathIsTooLong) {
  const fs::path deep = folder_.path() / std::string(240 - folder_.path().string().size(), 'd');
  fs::create_directory(deep);
  desktop_.move_to(deep);
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("lost");
  EXPECT_EQ(files_in(deep).size(), 0u);
  EXPECT_EQ(files_in(folder_.path()).size(), 1u);  // nor any file outside the desktop folder
}

TEST_F(TraceFileOnDesktop, GoesToTheRootOfCWhenThereIsNoDesktop) {
  const auto traces_in_root = [] {
    std::vector<std::string> names;
    for (const std::string& name : files_in("C:\\"))
      if (name.starts_with("QZFileTrace_")) names.push_back(name);
    return names;
  };
  for (const std::string& name : traces_in_root()) fs::remove("C:\\" + name);
  desktop_.move_to("C:\\no such folder");
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("text");
  const std::vector<std::string> names = traces_in_root();
  ASSERT_EQ(names.size(), 1u);
  EXPECT_TRUE(is_time_since(start_, names[0], "QZFileTrace_%d%m%Y_%H%M%S_0.txt")) << names[0];
  EXPECT_EQ(read_file("C:\\" + names[0]), "text");
  g_traceToFile.CloseFile();
  fs::remove("C:\\" + names[0]);
}

TEST_F(TraceFileOnDesktop, KeepsAnInstanceOfOnesOwnOff) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  {
    CTraceToFile own;
    own.Trace("text");
  }
  EXPECT_EQ(trace_files().size(), 0u);
}

TEST_F(TraceFileOnDesktop, HasNoVirtualMembers) { EXPECT_FALSE(std::is_polymorphic_v<CTraceToFile>); }

}  // namespace
