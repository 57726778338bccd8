// A small harness for comparisons. The variants of one piece of work run alternately in one process, so that other load
// on the machine affects all of them. The result is the median of the ratios of their rounds.
//
//     bench::Comparison work("one flushed line");
//     work.add("ours", [] { return bench::nanoseconds_each(1000, [] { ... }); });
//     work.add("stream", ...);
//     work.run();
//     bench::at_most(1.10, work.ratio("ours", "stream"),
//                    {.name = "a traced line",
//                     .compared = "CTraceToFile::Trace, of the time of a std::ofstream that is flushed",
//                     .reason = "a log file written by hand flushes each line, so that a crash loses none"});
//
// A benchmark registers itself: see Benchmark. FAMILY_bench.exe [--results FILE] [--growth] [BENCHMARK...] runs all
// that are registered, or those named. scripts/bench runs the programs, repeats what misses its mark, and makes the
// table.
#ifndef BENCHMARKS_SUPPORT_BENCH_H
#define BENCHMARKS_SUPPORT_BENCH_H

#include <windows.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

// Monotonic time, in nanoseconds.
double now();

// The time of one of `count` runs of `work`, in nanoseconds.
template <class Work>
double nanoseconds_each(int count, Work&& work) {
  const double start = now();
  for (int i = 0; i < count; ++i) work();
  return (now() - start) / count;
}

// A figure, and the quartiles of its rounds: half of them lie between `low` and `high`. An exact one is its own spread.
struct Figure {
  Figure(double exact) : value(exact), low(exact), high(exact) {}
  Figure(double median, double lower, double upper) : value(median), low(lower), high(upper) {}

  double value, low, high;
  std::size_t rounds = 1;
  double dividend = 0, divisor = 0;  // of a ratio of times: their medians in nanoseconds
};

class Comparison {
 public:
  explicit Comparison(std::string title, int rounds = 15) : title_(std::move(title)), rounds_(rounds) {}

  // `round` does the work once and returns its time, in nanoseconds per unit.
  void add(const std::string& variant, std::function<double()> round) {
    variants_.push_back({variant, std::move(round), {}});
  }

  // Runs one round of each to warm up, then the measured rounds; prints the medians.
  void run();

  // One variant's time divided by that of another, round by round.
  Figure ratio(const std::string& variant, const std::string& other) const;

 private:
  struct Variant {
    std::string name;
    std::function<double()> round;
    std::vector<double> times;
  };

  const std::vector<double>& times_of(const std::string& variant) const;

  std::string title_;
  int rounds_;
  std::vector<Variant> variants_;
};

// A line of the table: what is measured, what it is compared with, and why a user would write that instead. A better
// figure that was wanted and is not reached comes with what keeps it.
struct Line {
  std::string name;
  std::string compared;
  std::string reason;
  std::string wanted = {};
};

// Print a line with its figure and its mark, and write it to the results.
void at_most(double mark, const Figure& figure, const Line& line);
void at_least(double mark, const Figure& figure, const Line& line);

// Says that a line cannot be measured here, and writes that to the results.
void leave_out(const std::string& name, const std::string& why);

// Thrown by a benchmark that cannot run here. It is left out.
struct CannotRun {
  std::string why;
};

// The window, if there is one; throws CannotRun otherwise.
HWND made(HWND window);

// Registers a function for the program to run, when it is defined at namespace scope. Its name is unique in the family:
//
//     const bench::Benchmark flushed_line("a flushed line", measure_flushed_line);
class Benchmark {
 public:
  Benchmark(const char* name, void (*measure)());
};

// What a piece of work costs, by its size: a curve of a picture with logarithmic axes. Curves of a family with the same
// axes share a picture.
struct Curve {
  std::string name;
  std::string x, y;  // the axes: "names", "nanoseconds a block"
  std::vector<std::size_t> sizes;
  double own_exponent = 0;  // of the work itself
  std::string explained;    // why the curve's is above that
  std::function<double(std::size_t size)> measure;
  int rounds = 5;
};

// Measures all sizes in turn, round by round; prints the medians and writes them to the results.
void grow(const Curve& curve);

// Registers a function that the program runs instead of the benchmarks when it is started with --growth.
class Growth {
 public:
  Growth(const char* name, void (*measure)());
};

}  // namespace bench

#endif
