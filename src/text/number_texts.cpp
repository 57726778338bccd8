#include <module/fixed_text.h>
#include <text/number_texts.h>

#include <unordered_map>

namespace kexlib {

struct NumberTexts::Texts : std::unordered_map<double, CStringA> {};

NumberTexts::~NumberTexts() { delete texts_; }

const CStringA& NumberTexts::text(double number) {
  if (!texts_) texts_ = new Texts;
  const auto known = texts_->find(number);
  if (known != texts_->end()) return known->second;
  return texts_->emplace(number, module::fixed_text(number, 1)).first->second;
}

std::size_t NumberTexts::count() const { return texts_ ? texts_->size() : 0; }

}  // namespace kexlib
