// A small harness for comparisons: the variants of one piece of work take turns in one process, so that whatever else
// the machine does meets all of them; what counts is the ratio of their medians.
//
//     bench::Comparison work("one flushed line");
//     work.add("ours", [] { return bench::nanoseconds_each(1000, [] { ... }); });
//     work.add("stream", ...);
//     work.run();
//     bench::at_most("T6", 1.10, work.ratio("ours", "stream"), "ours to stream");
//
// A benchmark program returns bench::exit_status(): 1 if a ratio misses its target by more than 30 percent.
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

  // `round` does the work once and returns its time, in nanoseconds a unit.
  void add(const std::string& variant, std::function<double()> round) {
    variants_.push_back({variant, std::move(round), {}});
  }

  // One round of each to warm up, then the rounds that count; prints the medians.
  void run();

  // The median of one variant in medians of another.
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

// Print a figure beside its target.
void at_most(const std::string& target, double limit, double figure, const std::string& what);
void at_least(const std::string& target, double limit, double figure, const std::string& what);

int exit_status();

}  // namespace bench

#endif
