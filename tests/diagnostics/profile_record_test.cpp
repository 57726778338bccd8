#include <gtest/gtest.h>

#include <diagnostics/block_recorder.h>
#include <diagnostics/profile_record.h>
#include <support/record_text.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

using namespace kexlib;

namespace {

std::vector<std::string> names_of(const Block* block) {
  std::vector<std::string> names;
  for (; block; block = block->next_sibling()) names.emplace_back(block->name());
  return names;
}

std::vector<std::int64_t> begins_of(const Block& block) {
  std::vector<std::int64_t> begins;
  for (const IntervalChunk* chunk = block.first_chunk(); chunk; chunk = chunk->next.get())
    for (std::uint32_t i = 0; i < chunk->count.get(); ++i) begins.push_back(chunk->intervals()[i].begin);
  return begins;
}

std::vector<std::uint32_t> ids_of(const ProfileRecord& record) {
  std::vector<std::uint32_t> ids;
  for (const ThreadRecord* thread = record.first_thread(); thread; thread = thread->next()) ids.push_back(thread->id());
  return ids;
}

// A platform whose thread and time the test sets, and which records the order of the calls.
struct ScriptedPlatform {
  static std::uint32_t thread_id() {
    asked += "thread ";
    return id;
  }
  static std::int64_t now() {
    asked += "time ";
    return time;
  }
  static inline std::uint32_t id;
  static inline std::int64_t time;
  static inline std::string asked;
};

TEST(Arena, GivesAlignedPiecesOfAnySizeThatKeepTheirBytes) {
  Arena arena;
  std::vector<std::pair<unsigned char*, std::size_t>> pieces;
  for (const std::size_t size : {1u, 15u, 16u, 17u, 4080u, 65536u, 1000000u, 3u}) {
    auto* const piece = static_cast<unsigned char*>(arena.allocate(size));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(piece) % 16, 0u);
    std::fill_n(piece, size, static_cast<unsigned char>(size));
    pieces.emplace_back(piece, size);
  }
  for (const auto& [piece, size] : pieces)
    EXPECT_EQ(std::count(piece, piece + size, static_cast<unsigned char>(size)), static_cast<std::ptrdiff_t>(size));
}

TEST(BlockIndex, TellsApartNamesThatDifferInAnySingleByteOrInLength) {
  std::set<std::uint64_t> hashes{BlockIndex::hash("")};
  std::size_t names = 1;
  for (std::size_t length = 1; length <= 40; ++length) {
    std::string name(length, 'x');
    hashes.insert(BlockIndex::hash(name)), ++names;
    for (char& character : name) {
      character = 'y';
      hashes.insert(BlockIndex::hash(name)), ++names;
      character = 'x';
    }
  }
  EXPECT_EQ(hashes.size(), names);
}

TEST(BlockIndex, LooksAtNothingBesideAName) {
  for (std::size_t length = 0; length <= 40; ++length) {
    const std::string name(length, 'x'), one = "before__" + name + "after___", other = "elsewhere" + name + "_______";
    const std::string_view first(one.data() + 8, length), second(other.data() + 9, length);
    EXPECT_EQ(BlockIndex::hash(first), BlockIndex::hash(second)) << length;
    EXPECT_TRUE(bytes::equal(first, second)) << length;
  }
}

TEST(BlockIndex, ComparesEveryByteOfNamesOfEveryLength) {
  for (std::size_t length = 0; length <= 40; ++length) {
    const std::string name(length, 'x');
    EXPECT_TRUE(bytes::equal(name, std::string(length, 'x')));
    EXPECT_FALSE(bytes::equal(name, name + "x"));
    for (std::size_t i = 0; i < length; ++i) {
      std::string other = name;
      other[i] = 'y';
      EXPECT_FALSE(bytes::equal(name, other)) << length << " " << i;
    }
  }
}

// Two names of equal hash: the second half of the other one is chosen so that the mixed values are equal.
TEST(BlockIndex, ComparesTheNamesWhereTheirHashesAreEqual) {
  const auto state_after = [](const char* first_half) {
    return bytes::mix(bytes::mix(16) ^ bytes::load(first_half, 8));
  };
  const std::string name = "AAAAAAAABBBBBBBB";
  std::string other = "CCCCCCCC????????";
  const std::uint64_t second_half = bytes::load("BBBBBBBB", 8) ^ state_after("AAAAAAAA") ^ state_after("CCCCCCCC");
  std::memcpy(other.data() + 8, &second_half, 8);
  ASSERT_EQ(BlockIndex::hash(name), BlockIndex::hash(other));
  ThreadRecord thread(1);
  for (const std::string& begun : {name, other, name}) {
    thread.begin(begun, 1);
    thread.end(2);
  }
  EXPECT_EQ(names_of(thread.first_block()), (std::vector<std::string>{name, other}));
}

// The index uses the high bits of the hash. Names that differ in one or two characters at any place must spread over
// it, otherwise a begin searches all of them.
TEST(BlockIndex, SpreadsNamesThatDifferInTwoCharacters) {
  constexpr int bits = 13;
  const std::string characters = "0123456789abcdefghijABCDEFGHIJ";
  for (std::size_t length = 2; length <= 24; ++length)
    for (std::size_t place = 0; place + 2 <= length; ++place) {
      std::set<std::uint64_t> homes;
      std::string name(length, 'x');
      for (const char first : characters)
        for (const char second : characters) {
          name[place] = first;
          name[place + 1] = second;
          homes.insert(BlockIndex::hash(name) >> (64 - bits));
        }
      EXPECT_GT(homes.size(), characters.size() * characters.size() * 3 / 4) << length << " " << place;
    }
}

TEST(ThreadRecord, KeepsOneBlockForAnameUnderOneParentInOrderOfFirstBegin) {
  ThreadRecord thread(1);
  for (const char* const name : {"b", "a", "b", "B", "", "a"}) {
    thread.begin(name, 1);
    thread.end(2);
  }
  EXPECT_EQ(names_of(thread.first_block()), (std::vector<std::string>{"b", "a", "B", ""}));
}

TEST(ThreadRecord, MakesAnotherBlockForTheSameNameUnderAnotherParent) {
  ThreadRecord thread(1);
  thread.begin("a", 1);
  thread.begin("a", 2);
  thread.begin("a", 3);
  const Block* const outer = thread.first_block();
  ASSERT_EQ(names_of(outer), std::vector<std::string>{"a"});
  ASSERT_EQ(names_of(outer->first_child()), std::vector<std::string>{"a"});
  EXPECT_EQ(begins_of(*outer), std::vector<std::int64_t>{1});
  EXPECT_EQ(begins_of(*outer->first_child()), std::vector<std::int64_t>{2});
  EXPECT_EQ(begins_of(*outer->first_child()->first_child()), std::vector<std::int64_t>{3});
}

TEST(ThreadRecord, KeepsIntervalsInOrderAcrossChunks) {
  ThreadRecord thread(1);
  std::vector<std::int64_t> expected;
  for (std::int64_t i = 0; i < 2000; ++i) {
    thread.begin("a", i);
    thread.end(i + 1);
    expected.push_back(i);
  }
  EXPECT_EQ(begins_of(*thread.first_block()), expected);
}

TEST(ThreadRecord, NeedsSeventeenBytesAnIntervalAtMost) {
  ThreadRecord thread(1);
  const std::string names[] = {"one", "two", "three", "four", "five", "six", "seven", "eight"};
  constexpr int intervals = 1000000;
  for (int i = 0; i < intervals; ++i) {
    thread.begin(names[i % 8], i);
    thread.end(i);
  }
  EXPECT_LE(static_cast<double>(thread.memory()) / intervals, 17.0);
}

TEST(ThreadRecord, FindsEachOfAHundredThousandNamesAgain) {
  ThreadRecord thread(1);
  constexpr int names = 100000;
  for (int round = 0; round < 2; ++round)
    for (int i = 0; i < names; ++i) {
      thread.begin("name " + std::to_string(i), round);
      thread.end(round);
    }
  const std::vector<std::string> found = names_of(thread.first_block());
  ASSERT_EQ(found.size(), static_cast<std::size_t>(names));
  EXPECT_EQ(found.front(), "name 0");
  EXPECT_EQ(found.back(), "name 99999");
  for (const Block* block = thread.first_block(); block; block = block->next_sibling())
    ASSERT_EQ(begins_of(*block), (std::vector<std::int64_t>{0, 1}));
}

TEST(ThreadRecord, CopiesTheName) {
  ThreadRecord thread(1);
  std::string name = "before";
  thread.begin(name, 1);
  name = "after!";
  EXPECT_EQ(names_of(thread.first_block()), std::vector<std::string>{"before"});
}

TEST(ProfileRecord, KeepsThreadsInOrderOfTheirFirstCallAlsoWhereTheirIdsAreAlike) {
  OwnRecord record;
  const std::vector<std::uint32_t> ids = {4096 * 7, 4, 4096 * 3, 4096 * 7 + 4, 0xFFFFFFFC, 0, 0xFFFFFFFF, 1, 2, 3, 5};
  for (const std::uint32_t id : ids) record.thread(id);
  for (const std::uint32_t id : ids) EXPECT_EQ(record.thread(id).id(), id);
  EXPECT_EQ(ids_of(record), ids);
}

// A cost that grows with the threads, for the search or for the place in the order, would take minutes here.
TEST(ProfileRecord, TakesHundredsOfThousandsOfThreads) {
  OwnRecord record;
  std::vector<std::uint32_t> ids;
  for (std::uint32_t i = 1; i <= 300000; ++i) ids.push_back(i * 4);
  for (const std::uint32_t id : ids) record.thread(id);
  for (const std::uint32_t id : ids) ASSERT_EQ(record.thread(id).id(), id);
  EXPECT_EQ(ids_of(record), ids);
}

TEST(ProfileRecord, TakesThreadsThatStartAtTheSameTime) {
  OwnRecord record;
  constexpr std::uint32_t threads = 8;
  constexpr std::uint32_t ids_of_each = 500;
  std::vector<std::thread> running;
  for (std::uint32_t i = 0; i < threads; ++i)
    running.emplace_back([&record, i] {
      for (std::uint32_t k = 0; k < ids_of_each; ++k) {
        ThreadRecord& own = record.thread(4 * (i * ids_of_each + k + 1));
        own.begin("a", k);
        own.end(k);
      }
    });
  for (std::thread& thread : running) thread.join();
  std::set<std::uint32_t> found;
  for (const ThreadRecord* thread = record.first_thread(); thread; thread = thread->next()) found.insert(thread->id());
  EXPECT_EQ(found.size(), threads * ids_of_each);
}

// At the end of a process the record of a thread that was stopped at any point is written. Here the thread continues
// meanwhile: every reachable object must be complete.
TEST(ProfileRecord, IsWholeAtEveryInstant) {
  OwnRecord record;
  constexpr std::int64_t rounds = 20000;
  std::atomic<bool> ended{false};
  std::thread owner([&] {
    ThreadRecord& thread = record.thread(4);
    for (std::int64_t i = 1; i <= rounds; ++i) {
      thread.begin("same", i);
      thread.end(i);
      thread.begin("name " + std::to_string(i), i);
      thread.end(i);
    }
    ended = true;
  });
  std::int64_t seen = 0;
  while (!ended) {
    const ThreadRecord* const thread = record.first_thread();
    if (!thread || !thread->first_block()) continue;
    std::int64_t last = 0;
    for (const std::int64_t begin : begins_of(*thread->first_block())) {
      ASSERT_EQ(begin, last + 1);
      last = begin;
    }
    ASSERT_GE(last, seen);
    seen = last;
    for (const Block* block = thread->first_block(); block; block = block->next_sibling())
      ASSERT_TRUE(block->name() == "same" || block->name().starts_with("name "));
  }
  owner.join();
}

TEST(ProfileRecord, IsEmptyAfterClearingAndUsableAgain) {
  OwnRecord record;
  record.thread(4).begin("a", 1);
  record.clear();
  EXPECT_EQ(record.first_thread(), nullptr);
  EXPECT_EQ(record.memory(), 0u);
  EXPECT_EQ(record.thread(4).first_block(), nullptr);
}

class BlockRecorderTest : public testing::Test {
 protected:
  BlockRecorderTest() {
    ScriptedPlatform::id = 4;
    ScriptedPlatform::time = 1000;
    ScriptedPlatform::asked.clear();
  }
  ~BlockRecorderTest() override { recorder_.record().clear(); }

  void begin_at(std::int64_t time, const std::string& name) {
    ScriptedPlatform::time = time;
    recorder_.begin(name);
  }

  BlockRecorder<ScriptedPlatform> recorder_;
};

TEST_F(BlockRecorderTest, IsOffAtFirstAndRecordsNothingThen) {
  recorder_.begin("a");
  recorder_.end();
  EXPECT_EQ(recorder_.record().first_thread(), nullptr);
  EXPECT_FALSE(recorder_.stop());
}

TEST_F(BlockRecorderTest, TakesTheTimeBaseFromTheFirstBegin) {
  recorder_.start();
  begin_at(1000, "a");
  begin_at(1010, "b");
  EXPECT_EQ(begins_of(*recorder_.record().first_thread()->first_block()), std::vector<std::int64_t>{0});
  EXPECT_EQ(begins_of(*recorder_.record().first_thread()->first_block()->first_child()), std::vector<std::int64_t>{10});
}

TEST_F(BlockRecorderTest, KeepsTheTimeBaseWhenStartedTwice) {
  recorder_.start();
  begin_at(1000, "a");
  recorder_.start();
  begin_at(1010, "b");
  EXPECT_EQ(begins_of(*recorder_.record().first_thread()->first_block()->first_child()), std::vector<std::int64_t>{10});
}

TEST_F(BlockRecorderTest, TakesANewTimeBaseAfterAStop) {
  recorder_.start();
  begin_at(1000, "a");
  EXPECT_TRUE(recorder_.stop());
  recorder_.record().clear();
  recorder_.start();
  begin_at(5000, "a");
  EXPECT_EQ(begins_of(*recorder_.record().first_thread()->first_block()), std::vector<std::int64_t>{0});
}

TEST_F(BlockRecorderTest, AsksForTheThreadAndThenForTheTimeOnceEach) {
  recorder_.begin("a");
  EXPECT_EQ(ScriptedPlatform::asked, "");
  recorder_.start();
  recorder_.begin("a");
  EXPECT_EQ(ScriptedPlatform::asked, "thread time ");
  recorder_.end();
  EXPECT_EQ(ScriptedPlatform::asked, "thread time thread time ");
}

TEST_F(BlockRecorderTest, RecordsAThreadThatOnlyEnds) {
  recorder_.start();
  recorder_.end();
  ASSERT_NE(recorder_.record().first_thread(), nullptr);
  EXPECT_EQ(recorder_.record().first_thread()->first_block(), nullptr);
}

TEST_F(BlockRecorderTest, MergesAThreadThatGetsTheIdOfAnEndedOne) {
  recorder_.start();
  begin_at(1000, "first thread");
  recorder_.end();
  begin_at(2000, "second thread");
  const ThreadRecord* const thread = recorder_.record().first_thread();
  EXPECT_EQ(names_of(thread->first_block()), (std::vector<std::string>{"first thread", "second thread"}));
  EXPECT_EQ(thread->next(), nullptr);
}

}  // namespace
