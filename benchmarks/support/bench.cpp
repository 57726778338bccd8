#include <support/bench.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>

namespace bench {
namespace {

bool missed_by_far = false;

void print(const std::string& target, const char* relation, double limit, double figure, const std::string& what,
           bool reached) {
  std::printf("  %-3s %-62s %8.2f  (%s %.2f) %s\n", target.c_str(), what.c_str(), figure, relation, limit,
              reached ? "reached" : "NOT REACHED");
}

}  // namespace

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

void at_most(const std::string& target, double limit, double figure, const std::string& what) {
  print(target, "at most", limit, figure, what, figure <= limit);
  if (figure > limit * 1.3) missed_by_far = true;
}

void at_least(const std::string& target, double limit, double figure, const std::string& what) {
  print(target, "at least", limit, figure, what, figure >= limit);
  if (figure < limit / 1.3) missed_by_far = true;
}

int exit_status() { return missed_by_far ? 1 : 0; }

}  // namespace bench
