#include <support/fixed_text.h>
#include <text/number_texts.h>

#include <bit>
#include <cstdint>
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

struct NumberTexts::Texts : std::unordered_map<double, CStringA, Hash> {};

NumberTexts::~NumberTexts() { delete texts_; }

const CStringA& NumberTexts::text(double number) {
  if (!texts_) texts_ = new Texts;
  const auto known = texts_->find(number);
  if (known != texts_->end()) return known->second;
  return texts_->emplace(number, fixed_text(number, 1)).first->second;
}

std::size_t NumberTexts::count() const { return texts_ ? texts_->size() : 0; }

}  // namespace kexlib
