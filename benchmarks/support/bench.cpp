#include <support/bench.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iomanip>

namespace bench {
namespace {

struct Registered {
  std::string name;
  void (*measure)();
};

std::vector<Registered>& benchmarks() {
  static std::vector<Registered> all;
  return all;
}

std::vector<Registered>& growths() {
  static std::vector<Registered> all;
  return all;
}

std::string running;    // the name of the benchmark
std::ofstream results;  // one JSON object in each line

// std::quoted writes a text as JSON does, as long as it has no control characters.
void write_line(const char* at, double mark, const Figure& figure, const Line& line) {
  results << std::setprecision(6) << "{\"benchmark\": " << std::quoted(running)
          << ", \"name\": " << std::quoted(line.name) << ", \"compared\": " << std::quoted(line.compared)
          << ", \"reason\": " << std::quoted(line.reason) << ", \"wanted\": " << std::quoted(line.wanted)
          << ", \"at\": \"" << at << "\", \"mark\": " << mark << ", \"figure\": " << figure.value
          << ", \"low\": " << figure.low << ", \"high\": " << figure.high << ", \"rounds\": " << figure.rounds
          << ", \"nanoseconds\": [" << figure.dividend << ", " << figure.divisor << "]}" << std::endl;
}

void tell(const char* at, double mark, bool reached, const Figure& figure, const Line& line) {
  std::printf("  %8.2f  %s: %s (at %s %.2f) %s\n", figure.value, line.name.c_str(), line.compared.c_str(), at, mark,
              reached ? "reached" : "NOT REACHED");
  write_line(at, mark, figure, line);
}

double quantile(std::vector<double> values, std::size_t quarters) {
  std::sort(values.begin(), values.end());
  return values[(values.size() - 1) * quarters / 4];
}

double median(const std::vector<double>& values) { return quantile(values, 2); }

}  // namespace

Benchmark::Benchmark(const char* name, void (*measure)()) { benchmarks().push_back({name, measure}); }

Growth::Growth(const char* name, void (*measure)()) { growths().push_back({name, measure}); }

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
  for (const auto& [name, round, times] : variants_)
    std::printf("    %-62s %12.1f ns  (%.1f to %.1f)\n", name.c_str(), median(times), quantile(times, 0),
                quantile(times, 4));
}

const std::vector<double>& Comparison::times_of(const std::string& name) const {
  return std::find_if(variants_.begin(), variants_.end(), [&](const Variant& any) { return any.name == name; })->times;
}

Figure Comparison::ratio(const std::string& variant, const std::string& other) const {
  const std::vector<double>&times = times_of(variant), &others = times_of(other);
  std::vector<double> ratios(times.size());
  std::transform(times.begin(), times.end(), others.begin(), ratios.begin(), std::divides());
  Figure figure(median(ratios), quantile(ratios, 1), quantile(ratios, 3));
  figure.rounds = ratios.size();
  figure.dividend = median(times);
  figure.divisor = median(others);
  return figure;
}

void at_most(double mark, const Figure& figure, const Line& line) {
  tell("most", mark, figure.value <= mark, figure, line);
}

void at_least(double mark, const Figure& figure, const Line& line) {
  tell("least", mark, figure.value >= mark, figure, line);
}

void grow(const Curve& curve) {
  std::vector<std::vector<double>> figures(curve.sizes.size());
  for (int round = 0; round < curve.rounds; ++round)
    for (std::size_t i = 0; i < curve.sizes.size(); ++i) figures[i].push_back(curve.measure(curve.sizes[i]));
  std::printf("%s: %s by %s\n", curve.name.c_str(), curve.y.c_str(), curve.x.c_str());
  for (std::size_t i = 0; i < curve.sizes.size(); ++i) {
    std::printf("    %12zu %16.2f\n", curve.sizes[i], median(figures[i]));
    results << std::setprecision(6) << "{\"name\": " << std::quoted(curve.name) << ", \"x\": " << std::quoted(curve.x)
            << ", \"y\": " << std::quoted(curve.y) << ", \"expected\": " << curve.own_exponent
            << ", \"explained\": " << std::quoted(curve.explained) << ", \"size\": " << curve.sizes[i]
            << ", \"figure\": " << median(figures[i]) << ", \"low\": " << quantile(figures[i], 1)
            << ", \"high\": " << quantile(figures[i], 3) << '}' << std::endl;
  }
}

void leave_out(const std::string& name, const std::string& why) {
  std::printf("%s is left out: %s\n", name.c_str(), why.c_str());
  results << "{\"benchmark\": " << std::quoted(running) << ", \"left_out\": " << std::quoted(name)
          << ", \"why\": " << std::quoted(why) << '}' << std::endl;
}

HWND made(HWND window) {
  if (!window) throw CannotRun{"no window can be created: there is no display"};
  return window;
}

}  // namespace bench

int main(int count, char** arguments) {
  std::vector<std::string> wanted(arguments + 1, arguments + count);
  if (wanted.size() > 1 && wanted[0] == "--results") {
    bench::results.open(wanted[1]);
    wanted.erase(wanted.begin(), wanted.begin() + 2);
  }
  const bool growth = std::erase(wanted, "--growth") > 0;
  for (const auto& [name, measure] : growth ? bench::growths() : bench::benchmarks()) {
    if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), name) == wanted.end()) continue;
    bench::running = name;
    try {
      measure();
    } catch (const bench::CannotRun& reason) {
      bench::leave_out(name, reason.why);
    }
    std::fflush(stdout);
  }
  return 0;
}
