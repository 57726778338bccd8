// A comma as the decimal point of the run-time library, while the object lives.
#ifndef TESTS_SUPPORT_DECIMAL_COMMA_H
#define TESTS_SUPPORT_DECIMAL_COMMA_H

#include <clocale>

class DecimalComma {
 public:
  DecimalComma() : made_(std::setlocale(LC_NUMERIC, "German") != nullptr) {}
  ~DecimalComma() { std::setlocale(LC_NUMERIC, "C"); }
  DecimalComma(const DecimalComma&) = delete;
  DecimalComma& operator=(const DecimalComma&) = delete;
  bool made() const { return made_; }

 private:
  bool made_;
};

#endif
