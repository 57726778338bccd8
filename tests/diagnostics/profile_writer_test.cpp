#include <gtest/gtest.h>

#include <diagnostics/profile_writer.h>
#include <diagnostics/six_digits.h>
#include <support/record_text.h>

#include <locale>
#include <random>
#include <string>
#include <vector>

using namespace kexlib;

namespace {

TEST(ProfileWriter, WritesAnEmptyRecord) {
  OwnRecord record;
  EXPECT_EQ(written(record), "var threads = [\n]\n");
}

TEST(ProfileWriter, WritesTheTextOfTheHeadersExample) {
  OwnRecord record;
  ThreadRecord& thread = record.thread(1234);
  thread.begin("load", 0);
  thread.begin("parse", 50);
  thread.end(225);
  thread.end(350);
  thread.begin("load", 1000);
  thread.end(1200);
  EXPECT_EQ(written(record, 100000),
            "var threads = [\n"
            "{\n"
            "  blocks: [\n"
            "    {\n"
            "      name: 'load',\n"
            "      blocks: [\n"
            "        {\n"
            "          name: 'parse',\n"
            "          time: [{b: 0.5, e: 2.25},]\n"
            "        },\n"
            "      ],\n"
            "      time: [{b: 0, e: 3.5},{b: 10, e: 12},]\n"
            "    },\n"
            "  ],\n"
            "  name: 'Thread 1234'\n"
            "},\n"
            "]\n");
}

TEST(ProfileWriter, WritesNoBlocksKeyForAThreadWithoutBlocks) {
  OwnRecord record;
  record.thread(4294967292);
  EXPECT_EQ(written(record), "var threads = [\n{\n  name: 'Thread 4294967292'\n},\n]\n");
}

TEST(ProfileWriter, WritesAnOpenIntervalAsEndingAtZero) {
  OwnRecord record;
  record.thread(4).begin("open", 7);
  EXPECT_NE(written(record).find("time: [{b: 7, e: 0},]\n"), std::string::npos);
}

TEST(ProfileWriter, WritesNamesAsTheyAre) {
  const std::string name = std::string("it's \\ \"quoted\"\n\r\x80\xFF</script>") + '\0' + "end";
  OwnRecord record;
  record.thread(4).begin(name, 0);
  EXPECT_NE(written(record).find("      name: '" + name + "',\n"), std::string::npos);
}

// If a time lies in the middle between two texts, the other order sometimes results in the other one.
TEST(ProfileWriter, MultipliesTicksBeforeItDivides) {
  const auto text_of = [](double milliseconds) {
    char text[six_digits_size];
    return std::string(text, write_six_digits(text, milliseconds));
  };
  int different = 0;
  for (std::int64_t ticks = 1000005; ticks < 1100000; ticks += 10) {
    const std::string expected = text_of(static_cast<double>(ticks) * 1000.0 / 1e7);
    if (text_of(static_cast<double>(ticks) / 1e7 * 1000.0) == expected) continue;
    ++different;
    OwnRecord record;
    record.thread(4).begin("a", ticks);
    ASSERT_NE(written(record, 1e7).find("{b: " + expected + ", e: 0},"), std::string::npos) << ticks;
  }
  EXPECT_GT(different, 100);
}

TEST(ProfileWriter, TakesCountersOfAnyFrequency) {
  for (const double frequency : {1e6, 3579545.0, 1e7, 24e6, 2.9e9})
    for (const std::int64_t ticks : {std::int64_t{1}, std::int64_t{123456789}, std::int64_t{9007199254740993}}) {
      OwnRecord record;
      record.thread(4).begin("a", ticks);
      SimpleRecord simple;
      simple.begin(4, "a", ticks);
      EXPECT_EQ(written(record, frequency), simple.text(frequency));
    }
}

TEST(ProfileWriter, IsNotTouchedByTheGlobalLocale) {
  struct Commas : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale previous = std::locale::global(std::locale(std::locale::classic(), new Commas));
  OwnRecord record;
  record.thread(123456).begin("a", 12345);
  const std::string text = written(record, 10000);
  std::locale::global(previous);
  EXPECT_NE(text.find("{b: 1234.5, e: 0},"), std::string::npos);
  EXPECT_NE(text.find("'Thread 123456'"), std::string::npos);
}

// Compares thousands of random runs of several threads with the simple record.
TEST(ProfileWriter, WritesWhatAStreamWritesForAnyRun) {
  std::mt19937_64 random(20260101);
  const auto up_to = [&](std::uint64_t limit) { return random() % (limit + 1); };
  for (int run = 0; run < 3000; ++run) {
    OwnRecord record;
    SimpleRecord simple;
    std::int64_t now = 0;
    const std::uint64_t names = 1 + up_to(static_cast<std::uint64_t>(run % 20));
    for (std::uint64_t step = up_to(200); step > 0; --step) {
      const std::uint32_t thread = static_cast<std::uint32_t>(4 + 4 * up_to(3));
      now += static_cast<std::int64_t>(random() >> (34 + up_to(29)));
      if (up_to(1)) {
        const std::string name = std::string(up_to(20), 'n') + std::to_string(up_to(names));
        record.thread(thread).begin(name, now);
        simple.begin(thread, name, now);
      } else {
        record.thread(thread).end(now);
        simple.end(thread, now);
      }
    }
    ASSERT_EQ(written(record, 1e7), simple.text(1e7)) << "run " << run;
  }
}

TEST(ProfileWriter, WritesNamesLongerThanAnyBuffer) {
  OwnRecord record;
  SimpleRecord simple;
  for (const std::size_t length : {16383u, 16384u, 16385u, 32767u, 32768u, 32769u, 1000000u}) {
    record.thread(4).begin(std::string(length, 'x'), 1);
    simple.begin(4, std::string(length, 'x'), 1);
  }
  EXPECT_EQ(written(record), simple.text(1000));
}

// Counts and checks while writing: the text of ten thousand levels is more than a gigabyte, nearly all of it
// indentation.
TEST(ProfileWriter, WritesTenThousandLevelsWithoutNeedingStack) {
  constexpr std::size_t levels = 10000;
  OwnRecord record;
  for (std::size_t i = 0; i < levels; ++i) record.thread(4).begin("x", 1);

  class LevelSink final : public ByteSink {
   public:
    void write(std::string_view text) override {
      size += text.size();
      for (std::size_t at = 0; (at = text.find('\n', at)) != std::string_view::npos; ++at) ++lines;
    }
    std::size_t size = 0;
    std::size_t lines = 0;
  } sink;
  write_profile(record, 1000, sink);

  // Six lines a level; the indentation of level i is 2 + 4 i.
  std::size_t expected = std::string("var threads = [\n{\n  name: 'Thread 4'\n},\n]\n").size();
  for (std::size_t i = 0; i < levels; ++i)
    expected +=
        6 * (2 + 4 * i) + std::string("blocks: [\n  {\n    name: 'x',\n    time: [{b: 1, e: 0},]\n  },\n],\n").size();
  EXPECT_EQ(sink.size, expected);
  EXPECT_EQ(sink.lines, 5 + 6 * levels);
}

}  // namespace
