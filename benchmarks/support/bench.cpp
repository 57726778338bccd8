#include <windows.h>

#include <support/bench.h>

#include <algorithm>
#include <cstdio>

namespace bench {
namespace {

bool missed_by_far = false;

std::vector<void (*)()>& registered() {
  static std::vector<void (*)()> functions;
  return functions;
}

void print(double figure, const std::string& what, const char* relation, double limit, bool reached) {
  std::printf("  %7.2f %-66s (%s %.2f) %s\n", figure, what.c_str(), relation, limit,
              reached ? "reached" : "NOT REACHED");
}

}  // namespace

Benchmark::Benchmark(void (*measure)()) { registered().push_back(measure); }

double now() {
  LARGE_INTEGER counter, frequency;
  QueryPerformanceCounter(&counter);
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(counter.QuadPart) * 1e9 / static_cast<double>(frequency.QuadPart);
}

void Comparison::run() {
  for (Variant& variant : variants_) variant.round();
  for (int i = 0; i < rounds_; ++i)
    for (Variant& variant : variants_) variant.times.push_back(variant.round());
  std::printf("%s\n", title_.c_str());
  for (Variant& variant : variants_) {
    std::sort(variant.times.begin(), variant.times.end());
    std::printf("    %-62s %12.1f ns  (%.1f to %.1f)\n", variant.name.c_str(), median(variant.name),
                variant.times.front(), variant.times.back());
  }
}

double Comparison::median(const std::string& name) const {
  const auto variant =
      std::find_if(variants_.begin(), variants_.end(), [&](const Variant& any) { return any.name == name; });
  return variant->times[variant->times.size() / 2];
}

double Comparison::ratio(const std::string& variant, const std::string& other) const {
  return median(variant) / median(other);
}

void at_most(double limit, double figure, const std::string& what) {
  print(figure, what, "at most", limit, figure <= limit);
  if (figure > limit * 1.3) missed_by_far = true;
}

void at_least(double limit, double figure, const std::string& what) {
  print(figure, what, "at least", limit, figure >= limit);
  if (figure < limit / 1.3) missed_by_far = true;
}

}  // namespace bench

int main() {
  for (void (*const measure)() : bench::registered()) {
    measure();
    std::fflush(stdout);
  }
  return bench::missed_by_far ? 1 : 0;
}
