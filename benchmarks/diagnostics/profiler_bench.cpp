#include <kexlib/diagnostics/profiler.h>

#include <windows.h>

#include <diagnostics/block_recorder.h>
#include <diagnostics/profile_writer.h>
#include <diagnostics/text_file.h>
#include <support/bench.h>
#include <support/files.h>
#include <support/record_text.h>

#ifdef BENCH_WITH_PEERS
#include <fmt/compile.h>
#include <fmt/format.h>
#endif

#include <array>
#include <atomic>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace {

const std::array<std::string, 8> names = {"load", "parse",           "layout", "paint the frame",
                                          "save", "send to printer", "wait",   "idle"};
constexpr int pairs = 400000;

// Eight sibling names, one after the other.
template <class Begin, class End>
double nanoseconds_a_pair(Begin begin, End end) {
  unsigned i = 0;
  return bench::nanoseconds_each(pairs, [&] {
    begin(names[i++ % names.size()]);
    end();
  });
}

double two_counter_reads() {
  return bench::nanoseconds_each(pairs, [] {
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    QueryPerformanceCounter(&counter);
  });
}

double library_pair() { return nanoseconds_a_pair(kex_begin_block, kex_end_block); }

// Each scope starts profiling, which is already on.
double library_scope() {
  unsigned i = 0;
  return bench::nanoseconds_each(pairs, [&] { kexProfileScope scope(names[i++ % names.size()]); });
}

template <class Measure>
double on_each_of_two_threads(Measure measure) {
  double times[2];
  std::atomic<int> ready{0};
  const auto run = [&](double& time) {
    kex_begin_block("warm up"), kex_end_block();
    ++ready;
    while (ready < 2) {
    }
    time = measure();
  };
  std::thread other(run, std::ref(times[0]));
  run(times[1]);
  other.join();
  return (times[0] + times[1]) / 2;
}

struct NoClock {
  static std::uint32_t thread_id() { return GetCurrentThreadId(); }
  static std::int64_t now() { return 1; }
};

// The straightforward data model: nested hash maps and vectors.
class NestedMaps {
 public:
  void begin(const std::string& name) {
    Thread& thread = threads_[GetCurrentThreadId()];
    Block& block = (thread.current ? thread.current->children : thread.blocks)[name];
    block.parent = thread.current;
    thread.current = &block;
    block.intervals.push_back({NoClock::now(), 0});
  }

  void end() {
    Thread& thread = threads_[GetCurrentThreadId()];
    if (!thread.current) return;
    thread.current->intervals.back().end = NoClock::now();
    thread.current = thread.current->parent;
  }

  void clear() { threads_.clear(); }

 private:
  struct Block {
    Block* parent = nullptr;
    std::vector<kexlib::Interval> intervals;
    std::unordered_map<std::string, Block> children;
  };
  struct Thread {
    std::unordered_map<std::string, Block> blocks;
    Block* current = nullptr;
  };
  std::unordered_map<DWORD, Thread> threads_;
};

// Opens a file, calls `write` to fill it, and closes it.
template <class Write>
void write_file_by(const char* path, Write write) {
  namespace text_file = kexlib::text_file;
  const text_file::Handle file = text_file::open(path, text_file::Start::Truncated);
  text_file::Sink sink(file);
  write(sink);
  text_file::close(file);
}

#ifdef BENCH_WITH_PEERS
void write_with_fmt(const kexlib::ProfileRecord& record, kexlib::ByteSink& sink) {
  constexpr std::size_t piece = 60000;
  fmt::memory_buffer text;
  const kexlib::Block* block = record.first_thread()->first_block();
  for (; block; block = block->next_sibling())
    for (auto* chunk = block->first_chunk(); chunk; chunk = chunk->next.get())
      for (std::uint32_t i = 0; i < chunk->count.get(); ++i) {
        const kexlib::Interval& interval = chunk->intervals()[i];
        fmt::format_to(std::back_inserter(text), FMT_COMPILE("{{b: {:.6g}, e: {:.6g}}},"),
                       static_cast<double>(interval.begin) * 1000.0 / 1e7,
                       static_cast<double>(interval.end) * 1000.0 / 1e7);
        if (text.size() > piece) {
          sink.write({text.data(), text.size()});
          text.clear();
        }
      }
  sink.write({text.data(), text.size()});
}
#endif

// A million intervals of eight blocks under one, microseconds to milliseconds apart as in a real run.
template <class Record>
void fill(Record begin_and_end) {
  std::mt19937_64 random(1);
  std::int64_t now = 0;
  const auto tick = [&] { return now += static_cast<std::int64_t>(random() % 4000); };
  for (int i = 0; i < 1000000; ++i) {
    const std::int64_t begin = tick();
    begin_and_end(names[static_cast<std::size_t>(i) % names.size()], begin, tick());
  }
}

void measure_blocks() {
  bench::Comparison pair("begin plus end");
  pair.add("two counter reads", two_counter_reads);
  pair.add("library, one thread", [] {
    kex_start_profiling();
    const double time = library_pair();
    kex_stop_profiling("NUL");
    return time;
  });
  pair.add("library, each of two threads", [] {
    kex_start_profiling();
    const double time = on_each_of_two_threads(library_pair);
    kex_stop_profiling("NUL");
    return time;
  });
  pair.add("library, scopes on each of two threads", [] {
    kex_start_profiling();
    const double time = on_each_of_two_threads(library_scope);
    kex_stop_profiling("NUL");
    return time;
  });
  pair.add("two counter reads, each of two threads", [] {
    double other_time;
    std::thread other([&] { other_time = two_counter_reads(); });
    const double time = two_counter_reads();
    other.join();
    return (time + other_time) / 2;
  });

  static kexlib::BlockRecorder<NoClock> recorder;
  pair.add("library without a clock", [] {
    recorder.start();
    const double time =
        nanoseconds_a_pair([](const std::string& name) { recorder.begin(name); }, [] { recorder.end(); });
    recorder.stop();
    recorder.record().clear();
    return time;
  });
  static NestedMaps maps;
  pair.add("nested unordered_map without a clock", [] {
    const double time = nanoseconds_a_pair([](const std::string& name) { maps.begin(name); }, [] { maps.end(); });
    maps.clear();
    return time;
  });
  pair.run();

  bench::at_most(1.15, pair.ratio("library, one thread", "two counter reads"),
                 {.name = "a block on one thread",
                  .compared = "kex_begin_block and kex_end_block, of the time of two reads of the performance counter",
                  .reason = "time taken by hand reads the counter at both ends, and that is the least"});
  bench::at_most(1.5, pair.ratio("library, each of two threads", "library, one thread"),
                 {.name = "a block on each of two threads",
                  .compared = "kex_begin_block and kex_end_block, of the time of the same on one thread",
                  .reason = "threads that share nothing would take the same time"});
  bench::at_most(1.5, pair.ratio("library, scopes on each of two threads", "library, one thread"),
                 {.name = "a scope on each of two threads",
                  .compared = "kexProfileScope, of the time of a block on one thread",
                  .reason = "threads that share nothing would take the same time"});
  bench::at_most(0.4, pair.ratio("library without a clock", "nested unordered_map without a clock"),
                 {.name = "the bookkeeping of a block",
                  .compared = "a begin and an end without the clock, of the time of nested std::unordered_maps",
                  .reason = "a map of blocks by name in each block is the straightforward model of the same tree"});
}

void measure_record() {
  TemporaryFolder folder;
  static kexlib::ProfileRecord record;
  static SimpleRecord simple;
  fill([](const std::string& name, std::int64_t begin, std::int64_t end) {
    record.thread(4).begin(name, begin);
    record.thread(4).end(end);
    simple.begin(4, name, begin);
    simple.end(4, end);
  });
  bench::at_most(17, static_cast<double>(record.memory()) / 1e6,
                 {.name = "memory of an interval",
                  .compared = "bytes, in a record of a million",
                  .reason = "two 64-bit times take 16"});

  static std::string bytes;
  bench::Comparison writing("a record of a million intervals, written to a file, each interval", 9);
  const auto nanoseconds_an_interval = [](auto work) { return bench::nanoseconds_each(1, work) / 1e6; };
  writing.add("library", [=] {
    return nanoseconds_an_interval(
        [] { write_file_by("ours.js", [](auto& sink) { kexlib::write_profile(record, 1e7, sink); }); });
  });
  writing.add("std::ofstream <<", [=] {
    return nanoseconds_an_interval([] {
      std::ofstream stream("stream.js");
      simple.write(stream, 1e7);
    });
  });
#ifdef BENCH_WITH_PEERS
  writing.add("fmt, compiled format, intervals only", [=] {
    return nanoseconds_an_interval([] { write_file_by("fmt.js", [](auto& sink) { write_with_fmt(record, sink); }); });
  });
#endif
  writing.add("the ready bytes with one call", [=] {
    if (bytes.empty()) bytes = read_file("ours.js");
    return nanoseconds_an_interval([] {
      const HANDLE file =
          CreateFileA("raw.js", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
      DWORD written;
      WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
      CloseHandle(file);
    });
  });
  writing.run();
  bench::at_least(12, writing.ratio("std::ofstream <<", "library"),
                  {.name = "a record beside a stream",
                   .compared = "writing a million intervals, times as fast as std::ofstream <<",
                   .reason = "a stream gives the same bytes, and is the obvious way to write a text file",
                   .wanted = "20. Writing the bytes takes half of our time, and making them the other half; both at a "
                             "time would take a thread, which the library does not start for this"});
#ifdef BENCH_WITH_PEERS
  bench::at_least(2, writing.ratio("fmt, compiled format, intervals only", "library"),
                  {.name = "a record beside fmt",
                   .compared = "writing a million intervals, times as fast as fmt with compiled formats",
                   .reason = "fmt is the fastest formatting library that is in common use"});
#else
  bench::leave_out("a record beside fmt", "libfmt-dev is not installed");
#endif
  bench::at_least(0.45, writing.ratio("the ready bytes with one call", "library"),
                  {.name = "a record beside its bytes",
                   .compared = "writing a million intervals, of the speed of one WriteFile of the ready bytes",
                   .reason = "nothing writes a file faster",
                   .wanted = "0.60, for the same reason as above"});
  const bool identical = read_file("ours.js") == read_file("stream.js");
  bench::at_least(1, identical ? 1 : 0,
                  {.name = "the bytes of a record",
                   .compared = "1 if the file has the same bytes as the stream's",
                   .reason = "the comparison holds only then"});
  record.clear();
}

const bench::Benchmark blocks_benchmark("blocks", measure_blocks);
const bench::Benchmark record_benchmark("record", measure_record);

}  // namespace
