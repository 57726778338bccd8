#include <gtest/gtest.h>

#include <kexlib/diagnostics/profiler.h>

#include <windows.h>

#include <diagnostics/full_disk.h>
#include <support/c_library.h>
#include <support/files.h>
#include <support/import_override.h>

#include <clocale>
#include <filesystem>
#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace {

// Returns after the performance counter has changed, so that no interval of a test is empty.
void let_time_pass() {
  LARGE_INTEGER before, now;
  QueryPerformanceCounter(&before);
  do QueryPerformanceCounter(&now);
  while (now.QuadPart == before.QuadPart);
}

void begin(const std::string& name) {
  kex_begin_block(name);
  let_time_pass();
}

void end() {
  kex_end_block();
  let_time_pass();
}

// The record's text with "\n" line ends, "#" for each time that is not 0 and "ID" for the calling thread.
std::string normalised(const std::string& bytes) {
  std::string text = without_carriage_returns(bytes);
  text = std::regex_replace(text, std::regex("([be]): (?!0[,}])[0-9.e+-]+"), "$1: #");
  return std::regex_replace(text, std::regex("'Thread " + std::to_string(GetCurrentThreadId()) + "'"), "'Thread ID'");
}

// The text of one thread with these top-level blocks, each line indented by two.
std::string one_thread(const std::string& blocks) {
  return "var threads = [\n{\n  blocks: [\n" + blocks + "  ],\n  name: 'Thread ID'\n},\n]\n";
}

std::string block(const std::string& name, const std::string& times) {
  return "    {\n      name: '" + name + "',\n      time: [" + times + "]\n    },\n";
}

class Profiler : public testing::Test {
 protected:
  ~Profiler() override { kex_stop_profiling("left_on.js"); }

  // Stops profiling, writes a file and returns its bytes.
  static std::string stop() {
    kex_stop_profiling("record.js");
    return read_file("record.js");
  }

  TemporaryFolder folder_;
};

TEST_F(Profiler, MakesNoFileWhenStoppedWithoutStart) {
  kex_stop_profiling("record.js");
  EXPECT_EQ(files_in(folder_.path()), std::vector<std::string>{});
}

TEST_F(Profiler, DoesNotTruncateAFileWhenStoppedWithoutStart) {
  write_file("record.js", "as it was");
  EXPECT_EQ(stop(), "as it was");
}

TEST_F(Profiler, WritesAnEmptyRecordWithTheLineEndsOfText) {
  kex_start_profiling();
  EXPECT_EQ(stop(), "var threads = [\r\n]\r\n");
}

TEST_F(Profiler, OverwritesTheFile) {
  write_file("record.js", std::string(1000, 'x'));
  kex_start_profiling();
  EXPECT_EQ(stop(), "var threads = [\r\n]\r\n");
}

TEST_F(Profiler, WritesAThreadThatOnlyEnds) {
  kex_start_profiling();
  kex_end_block();
  EXPECT_EQ(stop(),
            "var threads = [\r\n{\r\n  name: 'Thread " + std::to_string(GetCurrentThreadId()) + "'\r\n},\r\n]\r\n");
}

TEST_F(Profiler, GivesABlockThatIsBegunAgainOneMoreInterval) {
  kex_start_profiling();
  begin("a"), end();
  begin("a"), end();
  EXPECT_EQ(normalised(stop()), one_thread(block("a", "{b: 0, e: #},{b: #, e: #},")));
}

TEST_F(Profiler, MakesAChildOfTheSameNameOfABlockBegunInsideItself) {
  kex_start_profiling();
  begin("a"), begin("a"), end(), end();
  EXPECT_EQ(normalised(stop()), one_thread("    {\n"
                                           "      name: 'a',\n"
                                           "      blocks: [\n"
                                           "        {\n"
                                           "          name: 'a',\n"
                                           "          time: [{b: #, e: #},]\n"
                                           "        },\n"
                                           "      ],\n"
                                           "      time: [{b: 0, e: #},]\n"
                                           "    },\n"));
}

TEST_F(Profiler, TellsNamesApartByCase) {
  kex_start_profiling();
  begin("a"), end(), begin("A"), end();
  EXPECT_EQ(normalised(stop()), one_thread(block("a", "{b: 0, e: #},") + block("A", "{b: #, e: #},")));
}

TEST_F(Profiler, WritesAnOpenBlockAsEndingAtZero) {
  kex_start_profiling();
  begin("a");
  EXPECT_EQ(normalised(stop()), one_thread(block("a", "{b: 0, e: 0},")));
}

TEST_F(Profiler, IgnoresABeginBeforeTheStartAndItsEndAfterIt) {
  begin("a");
  kex_start_profiling();
  end();
  EXPECT_EQ(normalised(stop()), "var threads = [\n{\n  name: 'Thread ID'\n},\n]\n");
}

TEST_F(Profiler, KeepsTheRecordAndTheTimeBaseWhenStartedTwice) {
  kex_start_profiling();
  begin("a"), end();
  kex_start_profiling();
  begin("b"), end();
  EXPECT_EQ(normalised(stop()), one_thread(block("a", "{b: 0, e: #},") + block("b", "{b: #, e: #},")));
}

TEST_F(Profiler, ForgetsTheRecordAndTheTimeBaseAtTheStop) {
  kex_start_profiling();
  begin("a"), end();
  stop();
  kex_start_profiling();
  begin("b"), end();
  EXPECT_EQ(normalised(stop()), one_thread(block("b", "{b: 0, e: #},")));
}

TEST_F(Profiler, IsOffAfterTheStop) {
  kex_start_profiling();
  stop();
  begin("a"), end();
  kex_stop_profiling("second.js");
  EXPECT_EQ(files_in(folder_.path()), std::vector<std::string>{"record.js"});
}

TEST_F(Profiler, TellsWhetherItIsOn) {
  EXPECT_FALSE(kex_is_profiling());
  kex_begin_block("a");
  EXPECT_FALSE(kex_is_profiling());
  kex_start_profiling();
  EXPECT_TRUE(kex_is_profiling());
  stop();
  EXPECT_FALSE(kex_is_profiling());
  { const kexProfileScope scope("a"); }
  EXPECT_TRUE(kex_is_profiling());
}

TEST_F(Profiler, StartsByItselfAtABeginWithAutoStart) {
  kex_begin_block_with_auto_start("a");
  let_time_pass();
  end();
  EXPECT_EQ(normalised(stop()), one_thread(block("a", "{b: 0, e: #},")));
}

TEST_F(Profiler, ProfilesAScopeAndStartsByItself) {
  {
    kexProfileScope scope("scope");
    let_time_pass();
  }
  EXPECT_EQ(normalised(stop()), one_thread(block("scope", "{b: 0, e: #},")));
}

TEST_F(Profiler, EndsAScopeThatAnExceptionLeaves) {
  try {
    kexProfileScope scope("scope");
    let_time_pass();
    throw 1;
  } catch (int) {
  }
  EXPECT_EQ(normalised(stop()), one_thread(block("scope", "{b: 0, e: #},")));
}

int refused_records = 0;

// A thread's record is the only object of its own alignment.
void* __cdecl refuse_record(size_t, size_t) {
  ++refused_records;
  return nullptr;
}

// The end of the scope is the first call of its thread in the new record.
TEST_F(Profiler, EndsAScopeWhereThereIsNoMemoryForItsThread) {
  auto scope = std::make_unique<kexProfileScope>("scope");
  stop();
  kex_start_profiling();
  {
    const ImportOverride shortage(c_library::allocator_of("kexlib.dll"), c_library::dll, "_aligned_malloc",
                                  &refuse_record);
    ASSERT_TRUE(shortage.made());
    scope.reset();
  }
  EXPECT_EQ(refused_records, 1);
  EXPECT_EQ(stop(), "var threads = [\r\n]\r\n");
}

TEST_F(Profiler, HoldsNoDataInAScope) {
  EXPECT_TRUE(std::is_empty_v<kexProfileScope>);
  EXPECT_FALSE(std::is_polymorphic_v<kexProfileScope>);
}

TEST_F(Profiler, WritesNamesAsTheyAreWithTextLineEnds) {
  kex_start_profiling();
  kex_begin_block("it's \\ \"x\"\n\r\n\x80\xFF\x1A end");
  EXPECT_NE(stop().find("      name: 'it's \\ \"x\"\r\n\r\r\n\x80\xFF\x1A end',\r\n"), std::string::npos);
}

TEST_F(Profiler, MeasuresMilliseconds) {
  kex_start_profiling();
  LARGE_INTEGER frequency, before, after, now;
  QueryPerformanceFrequency(&frequency);
  kex_begin_block("first");
  QueryPerformanceCounter(&before);
  do QueryPerformanceCounter(&now);
  while (now.QuadPart - before.QuadPart < frequency.QuadPart / 50);
  kex_end_block();
  QueryPerformanceCounter(&after);
  std::smatch time;
  const std::string text = stop();
  ASSERT_TRUE(std::regex_search(text, time, std::regex("\\{b: 0, e: ([0-9.]+)\\},")));
  const double measured = std::stod(time[1]);
  EXPECT_GE(measured, 20.0 - 0.001);
  // Not longer than the surrounding interval, plus the time between the first stamp and `before`.
  EXPECT_LE(
      measured,
      static_cast<double>(after.QuadPart - before.QuadPart) * 1000.0 / static_cast<double>(frequency.QuadPart) + 10.0);
}

TEST_F(Profiler, KeepsEachThreadsBlocksApart) {
  kex_start_profiling();
  begin("main");
  DWORD id = 0;
  std::thread([&id] {
    id = GetCurrentThreadId();
    begin("other"), end();
  }).join();
  end();
  const std::string text = normalised(stop());
  EXPECT_EQ(text, "var threads = [\n{\n  blocks: [\n" + block("main", "{b: 0, e: #},") +
                      "  ],\n  name: 'Thread ID'\n},\n{\n  blocks: [\n" + block("other", "{b: #, e: #},") +
                      "  ],\n  name: 'Thread " + std::to_string(id) + "'\n},\n]\n");
}

TEST_F(Profiler, IgnoresAnotherThreadsEndAfterTheStop) {
  kex_start_profiling();
  const HANDLE open = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  const HANDLE stopped = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  std::thread thread([&] {
    kex_begin_block("open");
    SetEvent(open);
    WaitForSingleObject(stopped, INFINITE);
    kex_end_block();
  });
  WaitForSingleObject(open, INFINITE);
  const std::string first = stop();
  SetEvent(stopped);
  thread.join();
  EXPECT_NE(first.find("time: [{b: 0, e: 0},]"), std::string::npos);
  EXPECT_EQ(read_file("record.js"), first);
  kex_start_profiling();
  EXPECT_EQ(stop(), "var threads = [\r\n]\r\n");
  CloseHandle(open);
  CloseHandle(stopped);
}

TEST_F(Profiler, TakesManyThreadsThatBeginAtTheSameTime) {
  kex_start_profiling();
  constexpr int threads = 16;
  constexpr int rounds = 1000;
  std::vector<std::thread> running;
  for (int i = 0; i < threads; ++i)
    running.emplace_back([] {
      for (int round = 0; round < rounds; ++round) {
        kexProfileScope outer("outer");
        kexProfileScope inner("inner");
      }
    });
  for (std::thread& thread : running) thread.join();
  const std::string text = stop();
  const std::regex interval("\\{b: ");
  const auto intervals = std::distance(std::sregex_iterator(text.begin(), text.end(), interval), {});
  EXPECT_EQ(intervals, threads * rounds * 2);
}

TEST_F(Profiler, DropsTheRecordWhenTheFileCannotBeOpened) {
  for (const char* const path : {"no such folder\\record.js", ".", "", "record?.js"}) {
    kex_start_profiling();
    begin("a"), end();
    kex_stop_profiling(path);
  }
  EXPECT_EQ(files_in(folder_.path()), std::vector<std::string>{});
  kex_start_profiling();
  EXPECT_EQ(stop(), "var threads = [\r\n]\r\n");
}

TEST_F(Profiler, CutsTheRecordWhereTheDiskIsFull) {
  kex_start_profiling();
  begin("a"), end();
  {
    const FullDisk disk(30);
    ASSERT_TRUE(disk.made());
    kex_stop_profiling("record.js");
  }
  EXPECT_EQ(read_file("record.js"), "var threads = [\r\n{\r\n  blocks: ");
  kex_start_profiling();
  EXPECT_EQ(stop(), "var threads = [\r\n]\r\n");
}

TEST_F(Profiler, UsesThePathAsItIs) {
  kex_start_profiling();
  kex_stop_profiling("no extension");
  kex_start_profiling();
  kex_stop_profiling((folder_.path() / "absolute.txt").string());
  EXPECT_EQ(files_in(folder_.path()), (std::vector<std::string>{"absolute.txt", "no extension"}));
}

TEST_F(Profiler, WritesToAFileThatOthersHaveOpen) {
  const HANDLE reader = CreateFileA("record.js", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  kex_start_profiling();
  EXPECT_EQ(stop(), "var threads = [\r\n]\r\n");
  CloseHandle(reader);
}

TEST_F(Profiler, ClosesTheFile) {
  kex_start_profiling();
  stop();
  EXPECT_TRUE(DeleteFileA("record.js"));
}

TEST_F(Profiler, PrintsPointsWhateverLocaleIsSet) {
  const std::string previous = std::setlocale(LC_ALL, nullptr);
  ASSERT_NE(std::setlocale(LC_ALL, "German"), nullptr);
  kex_start_profiling();
  begin("a"), end();
  const std::string text = stop();
  std::setlocale(LC_ALL, previous.c_str());
  EXPECT_TRUE(std::regex_search(text, std::regex("\\{b: 0, e: [0-9]+\\.[0-9e-]+\\},"))) << text;
}

TEST_F(Profiler, KeepsAHundredThousandNames) {
  constexpr int names = 100000;
  kex_start_profiling();
  for (int i = 0; i < names; ++i) {
    kex_begin_block("name " + std::to_string(i));
    kex_end_block();
  }
  const std::string text = stop();
  std::size_t at = 0;
  for (int i = 0; i < names; ++i) {
    at = text.find("      name: 'name " + std::to_string(i) + "',\r\n", at);
    ASSERT_NE(at, std::string::npos) << i;
  }
}

// More than a gigabyte, nearly all of it indentation: its size shows that every line was written.
TEST_F(Profiler, WritesTenThousandLevelsFromAThreadWithASmallStack) {
  constexpr std::size_t levels = 10000;
  const auto run = [](void*) -> DWORD {
    kex_start_profiling();
    for (std::size_t i = 0; i < levels; ++i) kex_begin_block("x");
    kex_begin_block("last");
    kex_stop_profiling("record.js");
    return 0;
  };
  const HANDLE thread =
      CreateThread(nullptr, std::size_t{128} * 1024, run, nullptr, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  ASSERT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
  CloseHandle(thread);

  std::size_t lines_without_times = 0;
  for (std::size_t i = 0; i <= levels; ++i)
    lines_without_times += 6 * (2 + 4 * i) +
                           std::string("blocks: [\r\n  {\r\n    name: 'x',\r\n  },\r\n],\r\n").size() +
                           std::string("    time: [{b: 0, e: 0},]\r\n").size();
  const auto size = std::filesystem::file_size("record.js");
  EXPECT_GT(size, lines_without_times);
  EXPECT_LT(size, lines_without_times + 200 + levels * 12);
}

}  // namespace
