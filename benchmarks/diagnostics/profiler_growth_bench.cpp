#include <kexlib/diagnostics/profiler.h>

#include <windows.h>

#include <diagnostics/block_recorder.h>
#include <diagnostics/profile_writer.h>
#include <diagnostics/text_file.h>
#include <support/bench.h>
#include <support/files.h>
#include <support/resource_counts.h>

#include <algorithm>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

struct NoClock {
  static std::uint32_t thread_id() { return GetCurrentThreadId(); }
  static std::int64_t now() { return 1; }
};

std::vector<std::string> names(std::size_t count) {
  std::vector<std::string> made;
  for (std::size_t i = 0; i < count; ++i) made.push_back("block " + std::to_string(i));
  return made;
}

double nanoseconds_among(std::size_t count) {
  static kexlib::BlockRecorder<NoClock> recorder;
  const std::vector<std::string> blocks = names(count);
  const auto each_once = [&] {
    for (const std::string& name : blocks) {
      recorder.begin(name);
      recorder.end();
    }
  };
  recorder.start();
  each_once();  // makes the blocks
  const int repeats = static_cast<int>(std::max<std::size_t>(1, 200000 / count));
  const double time = bench::nanoseconds_each(repeats, each_once) / static_cast<double>(count);
  recorder.stop();
  recorder.record().clear();
  return time;
}

void grow_names() {
  bench::grow({.name = "sibling names in turn",
               .x = "names",
               .y = "nanoseconds a block, without the clock",
               .sizes = {1, 10, 100, 1000, 10000, 100000},
               .own_exponent = 0,
               .explained =
                   "from 10,000 names on, names, index and blocks exceed the processor's caches: a look-up takes "
                   "several reads of memory instead of cache",
               .measure = nanoseconds_among});
}

// The processor's time that the process has taken, in nanoseconds.
double processor_time() {
  FILETIME created, ended, kernel, user;
  GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
  const auto value = [](FILETIME time) {
    return static_cast<double>(static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime);
  };
  return (value(kernel) + value(user)) * 100;
}

// So many pairs altogether, spread over the threads: the clock of the processor's time has steps of ten milliseconds.
double processor_time_on(std::size_t threads) {
  constexpr std::size_t pairs = 2000000;
  kex_start_profiling();
  const double start = processor_time();
  std::vector<std::thread> running;
  for (std::size_t i = 0; i < threads; ++i)
    running.emplace_back([=] {
      const std::string name = "block";
      for (std::size_t pair = 0; pair < pairs / threads; ++pair) {
        kex_begin_block(name);
        kex_end_block();
      }
    });
  for (std::thread& thread : running) thread.join();
  const double time = (processor_time() - start) / static_cast<double>(pairs);
  kex_stop_profiling("NUL");
  return time;
}

void measure_threads() {
  const auto on = [](std::size_t threads) { return std::to_string(threads) + " threads"; };
  bench::Comparison work("a block on each thread, time of the processors", 7);
  for (const std::size_t threads : {1U, 2U, 4U, 8U}) work.add(on(threads), [=] { return processor_time_on(threads); });
  work.run();
  for (const std::size_t threads : {2U, 4U, 8U})
    bench::at_most(1.1, work.ratio(on(threads), on(1)),
                   {.name = "a block on each of " + on(threads) + ", time of the processors",
                    .compared = "kex_begin_block and kex_end_block, of the time of the same on one thread",
                    .reason = "threads that share nothing would take the same time"});
}

void grow_threads() {
  bench::grow({.name = "the same block on each thread",
               .x = "threads",
               .y = "nanoseconds of a processor a block",
               .sizes = {1, 2, 4, 8, 16, 32, 64},
               .own_exponent = 0,
               .explained = "",
               .measure = processor_time_on,
               .rounds = 3});
}

void fill(kexlib::ProfileRecord& record, std::size_t intervals) {
  const std::vector<std::string> blocks = names(8);
  std::mt19937_64 random(1);
  std::int64_t now = 0;
  const auto tick = [&] { return now += static_cast<std::int64_t>(random() % 4000); };
  for (std::size_t i = 0; i < intervals; ++i) {
    record.thread(4).begin(blocks[i % blocks.size()], tick());
    record.thread(4).end(tick());
  }
}

void write_record(const kexlib::ProfileRecord& record) {
  namespace text_file = kexlib::text_file;
  const text_file::Handle file = text_file::open("record.js", text_file::Start::Truncated);
  text_file::Sink sink(file);
  kexlib::write_profile(record, 1e7, sink);
  text_file::close(file);
}

// What is measured of a record with so many intervals, divided by their number.
template <typename Measure>
double each_interval(std::size_t intervals, Measure measure) {
  static kexlib::ProfileRecord record;
  fill(record, intervals);
  const double measured = measure(record);
  record.clear();
  return measured / static_cast<double>(intervals);
}

void grow_record() {
  TemporaryFolder folder;
  const std::vector<std::size_t> sizes = {1000, 10000, 100000, 1000000, 10000000};
  bench::grow({.name = "a record written to a file",
               .x = "intervals",
               .y = "nanoseconds an interval",
               .sizes = sizes,
               .own_exponent = 0,
               .explained = "records of hundreds of megabytes wait for the disk",
               .measure =
                   [](std::size_t intervals) {
                     return each_interval(intervals, [=](const kexlib::ProfileRecord& record) {
                       const int repeats = static_cast<int>(std::max<std::size_t>(1, 100000 / intervals));
                       return bench::nanoseconds_each(repeats, [&] { write_record(record); });
                     });
                   },
               .rounds = 3});
  bench::grow({.name = "memory of a record",
               .x = "intervals",
               .y = "bytes an interval",
               .sizes = sizes,
               .own_exponent = 0,
               .explained = "",
               .measure =
                   [](std::size_t intervals) {
                     return each_interval(intervals, [](const kexlib::ProfileRecord& record) {
                       return static_cast<double>(record.memory());
                     });
                   },
               .rounds = 1});
}

// Ten million intervals: what the process takes for them, and what it takes beyond that while they are written. The
// peak is that of the working set: Wine gives the present size of the page file for its peak.
void measure_memory_of_ten_million() {
  TemporaryFolder folder;
  static kexlib::ProfileRecord record;
  const auto megabytes_beyond = [](std::size_t more, std::size_t less) {
    return static_cast<double>(more - less) / 1e6;
  };
  const std::size_t before = physical_memory();
  fill(record, 10000000);
  const std::size_t filled = physical_memory(), most_filled = most_memory();
  write_record(record);
  const std::size_t most_written = most_memory();
  const std::string reason = "times alone, two of 64 bits, take 160 MB";
  bench::at_most(400, megabytes_beyond(filled, before),
                 {.name = "memory of ten million intervals",
                  .compared = "megabytes that the process takes for the record",
                  .reason = reason});
  bench::at_most(400, megabytes_beyond(most_written, before),
                 {.name = "peak memory of ten million intervals",
                  .compared = "megabytes at the peak, while it was filled and written",
                  .reason = reason});
  bench::at_most(1, megabytes_beyond(most_written, most_filled),
                 {.name = "memory for writing ten million intervals",
                  .compared = "megabytes by which the peak rose while the record was written",
                  .reason = "a text made in memory first would take 250 MB more"});
  record.clear();
}

const bench::Growth names_growth("names", grow_names);
const bench::Growth threads_growth("threads", grow_threads);
const bench::Growth record_growth("record", grow_record);
const bench::Benchmark threads_benchmark("threads", measure_threads);
const bench::Benchmark memory_benchmark("memory of ten million intervals", measure_memory_of_ten_million);

}  // namespace
