#include <support/fixed_text.h>
#include <text/number_texts.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <deque>
#include <unordered_map>

namespace kexlib {

namespace {

// Hashes the bits, which is fast: a tip name looks up two numbers. Adding 0 turns -0 into 0.
struct Hash {
  std::size_t operator()(double number) const {
    return static_cast<std::size_t>((std::bit_cast<std::uint64_t>(number + 0.0) * 0x9E3779B97F4A7C15u) >> 32);
  }
};

}  // namespace

struct NumberTexts::Texts {
  std::unordered_map<double, CStringA, Hash> numbers;
  std::deque<CStringA> nans;  // in the map all of them would be in one chain
};

NumberTexts::~NumberTexts() { delete texts_; }

const CStringA& NumberTexts::text(double number) {
  if (!texts_) texts_ = new Texts;
  if (std::isnan(number)) return texts_->nans.emplace_back(fixed_text(number, 1));
  const auto known = texts_->numbers.find(number);
  if (known != texts_->numbers.end()) return known->second;
  return texts_->numbers.emplace(number, fixed_text(number, 1)).first->second;
}

std::size_t NumberTexts::count() const { return texts_ ? texts_->numbers.size() + texts_->nans.size() : 0; }

}  // namespace kexlib
