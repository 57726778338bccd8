// A small harness for comparisons. The variants of one piece of work run alternately in one process, so that other load
// on the machine affects all of them. The result is the ratio of their medians.
//
//     bench::Comparison work("one flushed line");
//     work.add("ours", [] { return bench::nanoseconds_each(1000, [] { ... }); });
//     work.add("stream", ...);
//     work.run();
//     bench::at_most(1.10, work.ratio("ours", "stream"), "of the time of a stream, for a flushed line");
//
// A benchmark registers itself: see Benchmark. The program ends with status 1 if a figure misses its promise by more
// than 30 percent.
#ifndef BENCHMARKS_SUPPORT_BENCH_H
#define BENCHMARKS_SUPPORT_BENCH_H

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

class Comparison {
 public:
  explicit Comparison(std::string title, int rounds = 15) : title_(std::move(title)), rounds_(rounds) {}

  // `round` does the work once and returns its time, in nanoseconds per unit.
  void add(const std::string& variant, std::function<double()> round) {
    variants_.push_back({variant, std::move(round), {}});
  }

  // Runs one round of each to warm up, then the measured rounds; prints the medians.
  void run();

  // The median of one variant divided by that of another.
  double ratio(const std::string& variant, const std::string& other) const;

 private:
  struct Variant {
    std::string name;
    std::function<double()> round;
    std::vector<double> times;
  };

  double median(const std::string& variant) const;

  std::string title_;
  int rounds_;
  std::vector<Variant> variants_;
};

// Registers a function for the program to run, when it is defined at namespace scope:
//
//     const bench::Benchmark flushed_line(measure_flushed_line);
class Benchmark {
 public:
  explicit Benchmark(void (*measure)());
};

// Print a figure, its description and its limit: "0.93 of the time of a stream ... (at most 1.10)".
void at_most(double limit, double figure, const std::string& what);
void at_least(double limit, double figure, const std::string& what);

}  // namespace bench

#endif
