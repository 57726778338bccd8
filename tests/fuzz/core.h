// Fuzzing: a core is one part of the library that takes arbitrary input, run beside its definition, written literally.
//
//     const fuzz::Core six_digits("six_digits", [](fuzz::Input& input) {
//       const double value = input.real();
//       fuzz::expect_same(written(value), by_the_definition(value), "of ", value);
//     });
//
// All programs that run cores take the same inputs: libFuzzer's, the one with a generator of its own, and the tests.
#ifndef TESTS_FUZZ_CORE_H
#define TESTS_FUZZ_CORE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

// The bytes of an input, taken from the front. Where none are left, all values are 0 and all texts empty.
class Input {
 public:
  explicit Input(std::string_view bytes) : rest_(bytes) {}

  bool empty() const { return rest_.empty(); }

  template <class Number>
  Number number() {
    Number value{};
    const std::string_view bytes = text(sizeof value);
    std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }

  // A number below `stop`, which is at most 256, by one byte.
  unsigned below(unsigned stop) { return number<std::uint8_t>() % stop; }
  bool flag() { return below(2) != 0; }

  // A double of one of several kinds: any bits, decimals, halves, their neighbours, the edges of the type.
  double real();

  // Up to so many bytes, as they are.
  std::string_view text(std::size_t most) {
    const std::string_view taken = rest_.substr(0, most);
    rest_.remove_prefix(taken.size());
    return taken;
  }
  std::string_view text() { return text(rest_.size()); }

 private:
  std::string_view rest_;
};

// Thrown where the library and the definition differ.
class Difference : public std::runtime_error {
  using runtime_error::runtime_error;
};

// The text between quotation marks, with all but plain characters as \x and two digits.
std::string readable(std::string_view text);

template <class Value>
void describe(std::ostream& out, const Value& value) {
  if constexpr (std::is_convertible_v<const Value&, std::string_view>)
    out << readable(value);
  else
    out << value;
}

// Throws Difference, with the values and what follows, if the two are not equal.
template <class Value, class... What>
void expect_same(const Value& ours, const Value& expected, const What&... what) {
  if (ours == expected) return;
  std::ostringstream text;
  text.precision(17);
  describe(text, ours);
  text << " instead of ";
  describe(text, expected);
  ((text << ", ", describe(text, what)), ...);
  throw Difference(text.str());
}

// A core registers itself when it is constructed.
class Core {
 public:
  using Run = void (*)(Input&);
  Core(const char* name, Run function);
  Core(const Core&) = delete;
  Core& operator=(const Core&) = delete;

  const std::string& name() const { return name_; }

  // Gives the difference that it found, or an empty text.
  std::string run(std::string_view bytes) const;

  static const std::vector<const Core*>& all();
  static const Core* named(std::string_view name);

 private:
  std::string name_;
  Run run_;
};

// The inputs kept in a folder, by their file names.
struct KeptInput {
  std::string file;
  std::string bytes;
};
std::vector<KeptInput> kept_inputs(const std::string& folder);

// Makes inputs of its own and by changing kept ones. The seed and the number of an input determine it.
class Generator {
 public:
  Generator(std::vector<KeptInput> kept, std::uint64_t seed) : kept_(std::move(kept)), seed_(seed) {}

  std::string input(std::uint64_t number) const;

 private:
  std::vector<KeptInput> kept_;
  std::uint64_t seed_;
};

}  // namespace fuzz

#endif
