#ifndef KEXLIB_TEXT_NUMBER_TEXTS_H
#define KEXLIB_TEXT_NUMBER_TEXTS_H

#include <atlstr.h>

#include <cstddef>

namespace kexlib {

// Numbers with one decimal as text, each made once and kept: the ones of tip names are few and come again and again.
//
// 0 and -0 are one number; the first that comes is the one that is kept. A NaN equals nothing, so each one is kept
// anew.
class NumberTexts {
 public:
  constexpr NumberTexts() = default;
  NumberTexts(const NumberTexts&) = delete;
  NumberTexts& operator=(const NumberTexts&) = delete;
  ~NumberTexts();

  const CStringA& text(double number);
  // Forgets them without giving their memory back: the end of a process must not touch the heap.
  void abandon() { texts_ = nullptr; }
  std::size_t count() const;

 private:
  struct Texts;
  Texts* texts_ = nullptr;  // made with the first number
};

}  // namespace kexlib

#endif
