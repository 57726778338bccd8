#include <fuzz/core.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <utility>

namespace fuzz {
namespace {

// splitmix64: every seed will do, also 0.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    std::uint64_t value = state_ += 0x9E3779B97F4A7C15;
    value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9;
    value = (value ^ value >> 27) * 0x94D049BB133111EB;
    return value ^ value >> 31;
  }
  std::size_t below(std::size_t stop) { return static_cast<std::size_t>(next() % stop); }

  // Short lengths are more frequent: half of them are below the eighth part.
  std::size_t length(std::size_t most) { return below(1 + (most >> below(5))); }

  std::string bytes(std::size_t count) {
    std::string text(count, '\0');
    for (char& each : text) each = static_cast<char>(next());
    return text;
  }

 private:
  std::uint64_t state_;
};

void change(std::string& text, const std::vector<KeptInput>& kept, Random& random) {
  constexpr char telling[] = "\1\x7f\x80\xff%{}*.,+-0159eEnN '\"\\/:\r\n\x81\x83\x5c";  // and the zero at its end
  constexpr std::size_t longest = 2000;
  const std::size_t at = random.below(text.size() + 1);
  const bool inside = at < text.size();
  switch (random.below(8)) {
    case 0:
      if (inside) text[at] = static_cast<char>(text[at] ^ 1 << random.below(8));
      return;
    case 1:
      if (inside) text[at] = static_cast<char>(random.next());
      return;
    case 2:
      if (inside) text[at] = telling[random.below(sizeof telling)];
      return;
    case 3:
      text.insert(at, 1, telling[random.below(sizeof telling)]);
      return;
    case 4:
      text.insert(at, random.bytes(random.length(16)));
      return;
    case 5:
      text.erase(at, random.length(16));
      return;
    case 6:
      if (text.size() < longest) text.insert(at, text.substr(random.below(text.size() + 1), random.length(64)));
      return;
    default: {
      const std::string& other = kept[random.below(kept.size())].bytes;
      const std::size_t from = random.below(other.size() + 1);
      text.replace(at, random.length(text.size()), other, from, random.length(other.size()));
    }
  }
}

std::vector<const Core*>& registered() {
  static std::vector<const Core*> cores;
  return cores;
}

}  // namespace

double Input::real() {
  using Limits = std::numeric_limits<double>;
  constexpr double edges[] = {0.0,
                              1.0,
                              0.5,
                              0.05,
                              999999.5,
                              1e-4,
                              Limits::denorm_min(),
                              Limits::min(),
                              Limits::max(),
                              4503599627370496.0,
                              4503599627370495.5,
                              0.49999999999999994,
                              Limits::infinity(),
                              Limits::quiet_NaN()};
  const unsigned kind = number<std::uint8_t>();
  double value;
  switch (kind >> 2 & 7) {
    case 0:
    case 1:
      value = number<double>();
      break;
    case 2:
      value = number<std::int32_t>() / std::pow(10.0, below(16));  // decimals
      break;
    case 3:
      value = number<std::int16_t>() / std::pow(10.0, below(8));
      break;
    case 4:
      value = std::ldexp(number<std::int32_t>(), -static_cast<int>(below(40)));  // halves, quarters and so on
      break;
    case 5:
      value = std::ldexp(static_cast<double>(number<std::int64_t>()), static_cast<int>(below(128)) - 100);
      break;
    case 6:
      value = number<std::int16_t>() + 0.5;
      break;
    default:
      value = edges[below(std::size(edges))];
  }
  if (kind & 1) value = -value;
  if (kind & 2) value = std::nextafter(value, kind & 0x80 ? Limits::infinity() : -Limits::infinity());
  return value;
}

std::string readable(std::string_view text) {
  constexpr char digits[] = "0123456789abcdef";
  std::string result = "\"";
  for (const char each : text) {
    const auto code = static_cast<unsigned char>(each);
    if (code >= ' ' && code < 0x7f && each != '"' && each != '\\')
      result += each;
    else
      (((result += "\\x") += digits[code >> 4]) += digits[code & 15]);
  }
  return result + '"';
}

Core::Core(const char* name, Run function) : name_(name), run_(function) { registered().push_back(this); }

std::string Core::run(std::string_view bytes) const try {
  Input input(bytes);
  run_(input);
  return {};
} catch (const Difference& difference) {
  return difference.what();
}

const std::vector<const Core*>& Core::all() { return registered(); }

const Core* Core::named(std::string_view name) {
  for (const Core* core : all())
    if (core->name() == name) return core;
  return nullptr;
}

std::vector<KeptInput> kept_inputs(const std::string& folder) {
  std::vector<KeptInput> inputs;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
    std::ifstream file(entry.path(), std::ios::binary);
    inputs.push_back({entry.path().filename().string(), {std::istreambuf_iterator<char>(file), {}}});
  }
  std::sort(inputs.begin(), inputs.end(), [](const auto& a, const auto& b) { return a.file < b.file; });
  return inputs;
}

std::string Generator::input(std::uint64_t number) const {
  Random random(seed_ ^ Random(number).next());
  if (kept_.empty() || random.below(4) == 0) return random.bytes(random.length(300));
  std::string text = kept_[random.below(kept_.size())].bytes;
  for (std::size_t left = 1 + random.length(6); left > 0; --left) change(text, kept_, random);
  return text;
}

}  // namespace fuzz
