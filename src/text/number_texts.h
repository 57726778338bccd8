#ifndef KEXLIB_TEXT_NUMBER_TEXTS_H
#define KEXLIB_TEXT_NUMBER_TEXTS_H

#include <kexlib/framework.h>

#include <cstddef>

namespace kexlib {

// A cache of numbers as text with one decimal. Tip names repeat a few numbers.
//
// 0 and -0 are one key; the first one added determines the text. A NaN equals nothing, so each call adds an entry,
// without a search.
class NumberTexts {
 public:
  constexpr NumberTexts() = default;
  NumberTexts(const NumberTexts&) = delete;
  NumberTexts& operator=(const NumberTexts&) = delete;
  ~NumberTexts();

  const CStringA& text(double number);
  // Does not free the texts: the heap must not be accessed at the end of a process.
  void abandon() { texts_ = nullptr; }
  std::size_t count() const;

 private:
  struct Texts;
  Texts* texts_ = nullptr;  // created with the first number
};

}  // namespace kexlib

#endif
