// Calls that fail while blocks are profiled and lines are traced, for each function of the family.
#include <gtest/gtest.h>

#include <kexlib/diagnostics/problem_alert.h>
#include <kexlib/diagnostics/profiler.h>
#include <kexlib/diagnostics/trace_file.h>

#include <process.h>
#include <shlwapi.h>

#include <support/desktop_folder.h>
#include <support/fault_sweep.h>
#include <support/files.h>

#include <filesystem>
#include <memory>
#include <string>

namespace {

const Call calls[] = {
    memory_call(),
    Call("KERNEL32.dll", "CreateEventA", &CreateEventA, nullptr),
    Call("KERNEL32.dll", "CreateFileA", &CreateFileA, INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED),
    Call("KERNEL32.dll", "WriteFile", &WriteFile, FALSE, ERROR_DISK_FULL),
    Call("KERNEL32.dll", "SetFilePointer", &SetFilePointer, INVALID_SET_FILE_POINTER),
    Call("KERNEL32.dll", "GetFinalPathNameByHandleA", &GetFinalPathNameByHandleA, 0),
    Call("SHLWAPI.dll", "PathAppendA", &PathAppendA, FALSE),
    Call(c_library::dll, "_beginthreadex", &_beginthreadex, 0),
};

// The record without what differs: the thread and the times.
std::string stopped() {
  kex_stop_profiling("record.js");
  std::string text = without_carriage_returns(read_file("record.js")), names;
  std::filesystem::remove("record.js");
  for (std::size_t at = 0; (at = text.find("name: '", at)) != text.npos;) {
    at += 7;
    const std::string name = text.substr(at, text.find('\'', at) - at);
    if (!name.starts_with("Thread")) names += name + " ";
  }
  return names;
}

const std::string a_name(100, 'n');

const Operation operations[] = {
    {"kex_begin_block",
     [](Attempt& attempt) {
       kex_start_profiling();
       const std::string thrown = attempt([] { kex_begin_block(a_name); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       if (thrown.empty()) kex_end_block();
       const std::string second = "second";
       kex_begin_block(second);
       kex_end_block();
       const std::string names = stopped();
       EXPECT_TRUE(names.ends_with("second ")) << names;
       EXPECT_FALSE(kex_is_profiling());
     }},
    {"kex_begin_block, many below one",
     [](Attempt& attempt) {
       kex_start_profiling();
       kex_begin_block("outer");
       int begun = 0;
       const std::string thrown = attempt([&] {
         for (; begun < 200; ++begun) {
           kex_begin_block("inner");
           kex_begin_block(std::string(1, static_cast<char>('A' + begun % 50)));
           kex_end_block();
           kex_end_block();
         }
       });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       EXPECT_EQ(begun == 200, !attempt.failed());
       EXPECT_TRUE(stopped().starts_with("outer "));
     }},
    {"kexProfileScope",
     [](Attempt& attempt) {
       const std::string thrown = attempt([] { const kexProfileScope scope(a_name); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       stopped();
     }},
    {"kex_end_block",
     [](Attempt& attempt) {
       kex_start_profiling();
       const std::string thrown = attempt([] { kex_end_block(); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       EXPECT_EQ(stopped(), "");
     }},
    {"kex_stop_profiling",
     [](Attempt& attempt) {
       const std::string path = "a record.js";
       kex_start_profiling();
       kex_begin_block("block");
       kex_end_block();
       EXPECT_EQ(attempt([&] { kex_stop_profiling(path); }), "");
       EXPECT_FALSE(kex_is_profiling());
       EXPECT_EQ(std::filesystem::exists(path), !attempt.failed("CreateFileA"));
       if (!attempt.failed()) {
         EXPECT_NE(read_file(path).find("name: 'block'"), std::string::npos);
       }
       std::filesystem::remove(path);
       kex_start_profiling();
       EXPECT_EQ(stopped(), "") << "the record is discarded, whatever could be written";
     }},
    {"Trace",
     [](Attempt& attempt) {
       CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
       EXPECT_EQ(attempt([] { g_traceToFile.Trace("first %d\n", 1); }), "");
       g_traceToFile.Trace("second\n");
       const std::string path = g_traceToFile.GetFilePath();
       CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);
       const std::string text = without_carriage_returns(read_file(path));
       EXPECT_EQ(text.starts_with("first 1\nsecond\n"), !attempt.failed() || attempt.failed("SetFilePointer")) << text;
       EXPECT_TRUE(text.starts_with("first 1\nsecond\n") || text.starts_with("second\n")) << text;
       std::filesystem::remove(path);
     }},
    {"CloseFile",
     [](Attempt& attempt) {
       CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
       g_traceToFile.Trace("line\n");
       const std::string path = g_traceToFile.GetFilePath();
       EXPECT_EQ(attempt([] { g_traceToFile.CloseFile(); }), "");
       EXPECT_EQ(g_traceToFile.GetFilePath(), "");
       EXPECT_EQ(read_file(path).find("File closed at") != std::string::npos, !attempt.failed());
       CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);
       std::filesystem::remove(path);
     }},
    {"GetFilePath",
     [](Attempt& attempt) {
       CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
       g_traceToFile.Trace("line\n");
       std::string path;
       const std::string thrown = attempt([&] { path = g_traceToFile.GetFilePath(); });
       EXPECT_EQ(thrown, attempt.failed("malloc") ? "std::bad_alloc" : "");
       EXPECT_EQ(path.empty(), attempt.failed());
       path = g_traceToFile.GetFilePath();
       CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);
       EXPECT_TRUE(std::filesystem::remove(path));
     }},
    {"CProblemAlert",
     [](Attempt& attempt) {
       std::unique_ptr<CProblemAlert> alert;
       const std::string thrown = attempt([&] { alert = std::make_unique<CProblemAlert>(0); });
       EXPECT_EQ(thrown, attempt.failed("malloc") ? "std::bad_alloc" : attempt.failed() ? "CException" : "");
     }},
    {"StartThread",
     [](Attempt& attempt) {
       CProblemAlert alert(0);
       int started = -1;
       EXPECT_EQ(attempt([&] { started = alert.StartThread(); }), "");
       EXPECT_EQ(started, !attempt.failed());
       EXPECT_EQ(alert.StartThread(), 1);
       alert.EndThread();
     }},
};

class DiagnosticsFaultsOnDesktop : public testing::Test {
  TemporaryFolder folder_;
  DesktopFolder desktop_{folder_.path()};
};

TEST_F(DiagnosticsFaultsOnDesktop, NoCallThatFailsDoesHarm) { sweep_faults(calls, operations); }

TEST_F(DiagnosticsFaultsOnDesktop, RoundsWithoutOneLeaveNothingBehind) { repeat_rounds(operations); }

}  // namespace
