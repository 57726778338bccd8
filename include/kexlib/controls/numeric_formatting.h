// Numeric formatting: numbers to text and back.
//
//     const CStringA separator = kexNumericFormatting::get_decimal_seperator();
//     kexNumericFormatting::putValue(&edit, 3.14159, separator, 2);             // the control shows 3.14, or 3,14
//     const double value = kexNumericFormatting::getValue(&edit, separator);
//
//     class Length : public kexNumberFormatting {
//      public:
//       Length() : kexNumberFormatting(2, 4, KRV_Inches, KRV_Millimetres) {}
//       CStringA text(double inches) { return format_double_with_units(inches); }  // 1.0 gives "25.40"
//     };
//
// Digits. Printed digits are those of the exact binary value, ties to even: 0.125 with two digits is 0.12. Only
// kexNumberFormatting rounds before it prints, half away from zero. "inf" and "nan" stand for what is no number. All
// digits that are asked for are there, trailing zeros too, and there are no separators between thousands. A negative
// number of digits prints six, as printf has it. Keep numbers of digits below a million.
//
// Errors. None is reported. Texts are narrow, in the ANSI code page. Running out of memory throws MFC's memory
// exception.
//
// Threads. Nothing is shared. A control must be one that takes messages from the calling thread: call on its own.
#ifndef KEXLIB_CONTROLS_NUMERIC_FORMATTING_H
#define KEXLIB_CONTROLS_NUMERIC_FORMATTING_H

#include <atlstr.h>

#include <atlapp.h>
#include <atlctrls.h>

#include <kexlib/export.h>

/// Units of length; 25.4 millimetres are an inch. Other values may be passed, and convert nothing.
enum KRV_Units : int { KRV_Inches = 0, KRV_Millimetres = 1 };

/// Formats numbers with a fixed number of decimal places; the base of classes that show them. A plain value.
class KEXLIB_API kexNumberFormatting {
 public:
  /// decimal_places: of format_double and format_double_with_units; neutral_decimal_places: of format_neutral_double;
  /// from: the units in which values come; to: those in which they are written.
  kexNumberFormatting(int decimal_places, int neutral_decimal_places, KRV_Units from, KRV_Units to);

  /// Sets the units in which values come.
  void set_from_units(KRV_Units units);

  /// Sets the units in which values are written.
  void set_to_units(KRV_Units units);

 protected:
  /// The value rounded half away from zero to `decimal_places` and printed with as many, in the locale that the C
  /// run-time library has set for numbers (setlocale). Negative places round to tens, hundreds and so on. A value that
  /// rounds to nothing from below is "-0".
  CStringA format_double(double value);

  /// The value converted, then as format_double. Inches to millimetres multiplies by 25.4, the other way divides; equal
  /// units and every other pair leave the value alone.
  CStringA format_double_with_units(double value);

  /// As format_double, with `neutral_decimal_places`. The locale counts here too.
  CStringA format_neutral_double(double value);

 private:
  CStringA format_double(double value, int digits);

  int decimal_places;
  int neutral_decimal_places;
  KRV_Units from_units;
  KRV_Units to_units;
};

/// Numbers in edit controls. The separator is the text that stands for the decimal point in what the user sees, of any
/// length. The locale of the C run-time library does not matter.
class KEXLIB_API kexNumericFormatting {
 public:
  /// The number in the first line of the control (EM_GETLINE), of which 260 characters are read. Each separator counts
  /// as a point; then the text is read as strtod reads it: leading blanks are skipped, exponents are taken, and reading
  /// stops where no number goes on. Text that does not start with a number is 0, a number too large is infinite. A null
  /// control, or one without a window, is 0. A null or empty separator is looked for nowhere.
  static double getValue(const WTL::CEditT<ATL::CWindow>* edit, const char* separator);

  /// The same without its sign, unless `allow_negative`; a negative zero stays.
  static double getValue(const WTL::CEditT<ATL::CWindow>* edit, bool allow_negative, const char* separator);

  /// Prints the value with so many digits behind the separator, sets the text as the control's (SetWindowTextA), and
  /// returns it. A null control is none: the text is returned all the same. The text is cut at 259 characters before
  /// the separator is put in; only values above 1e200 and more than 250 digits are that long. A null or empty separator
  /// leaves the point out.
  static CStringA putValue(WTL::CEditT<ATL::CWindow>* edit, double value, const char* separator, long digits);

  /// The same without the value's sign, unless `allow_negative`; a negative zero stays.
  static CStringA putValue(WTL::CEditT<ATL::CWindow>* edit, double value, bool allow_negative, const char* separator,
                           long digits);

  /// The user's decimal separator (GetLocaleInfoA, LOCALE_SDECIMAL), which may be longer than a character; "." if there
  /// is none.
  static CStringA get_decimal_seperator();
};

#endif
