// What a class derived from kexNumberFormatting shows of it.
#ifndef TESTS_CONTROLS_FORMATTING_H
#define TESTS_CONTROLS_FORMATTING_H

#include <kexlib/controls/numeric_formatting.h>

#include <string>

class Formatting : public kexNumberFormatting {
 public:
  using kexNumberFormatting::kexNumberFormatting;
  std::string plain(double value) { return format_double(value).GetString(); }
  std::string with_units(double value) { return format_double_with_units(value).GetString(); }
  std::string neutral(double value) { return format_neutral_double(value).GetString(); }
};

#endif
