// Numeric formatting: numbers to text and back.
//
//     const CStringA separator = kexNumericFormatting::get_decimal_seperator();
//     kexNumericFormatting::putValue(&edit, 3.14159, separator, 2);             // the control shows 3.14, or 3,14
//     const double value = kexNumericFormatting::getValue(&edit, separator);
//
//     class Length : public kexNumberFormatting {
//      public:
//       Length() : kexNumberFormatting(2, 4, KRV_Inches, KRV_Millimetres) {}
//       CStringA text(double inches) { return format_double_with_units(inches); }  // 1.0 returns "25.40"
//     };
//
// Digits. Printed digits are those of the exact binary value, ties to even: 0.125 with two digits is 0.12. Only
// kexNumberFormatting rounds before it prints, half away from zero. Infinities and NaNs are printed as "inf" and "nan".
// Trailing zeros are kept, and thousands are not separated. A negative number of digits prints six, as printf does.
// Any number of digits will do: all digits after the 1074th are zeros.
//
// Errors. None is reported. Texts are narrow, in the ANSI code page. Out of memory throws MFC's memory exception; so
// does a text of kexNumberFormatting that is longer than 1073741822 characters (INT_MAX / 2 - 1).
//
// Threads. No shared state. Call functions with a control argument on the thread of the control's window.
#ifndef KEXLIB_CONTROLS_NUMERIC_FORMATTING_H
#define KEXLIB_CONTROLS_NUMERIC_FORMATTING_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

#include <atlapp.h>
#include <atlctrls.h>

/// Units of length; an inch is 25.4 millimetres. Other values are accepted and cause no conversion.
enum KRV_Units : int { KRV_Inches = 0, KRV_Millimetres = 1 };

/// Formats numbers with a fixed number of decimal places; the base of classes that show them. Copied as plain data.
class KEXLIB_API kexNumberFormatting {
 public:
  /// Stores the settings.
  ///   decimal_places          digits of format_double and format_double_with_units
  ///   neutral_decimal_places  digits of format_neutral_double
  ///   from, to                units in which values are passed, and in which they are written
  kexNumberFormatting(int decimal_places, int neutral_decimal_places, KRV_Units from, KRV_Units to);

  /// Sets the units in which values are passed.
  void set_from_units(KRV_Units units);

  /// Sets the units in which values are written.
  void set_to_units(KRV_Units units);

 protected:
  /// The value rounded half away from zero to `decimal_places` and printed with as many digits, in the C run-time
  /// library's locale for numbers (setlocale, LC_NUMERIC). Negative places round to tens, hundreds and so on. A
  /// negative value that rounds to zero is "-0".
  CStringA format_double(double value);

  /// Converts the value, then formats it as format_double does. Inches to millimetres multiplies by 25.4, millimetres
  /// to inches divides; any other pair does not convert.
  CStringA format_double_with_units(double value);

  /// As format_double, with `neutral_decimal_places`. Kept for compatibility: it uses the same locale, and callers see
  /// a difference in the digits only.
  CStringA format_neutral_double(double value);

 private:
  CStringA format_double(double value, int digits);

  int decimal_places_;
  int neutral_decimal_places_;
  KRV_Units from_units_;
  KRV_Units to_units_;
};

/// Numbers in edit controls. The separator is the text that the user sees in place of the decimal point, of any length.
/// The locale of the C run-time library is not used.
class KEXLIB_API kexNumericFormatting {
 public:
  /// The number in the first line of the control (EM_GETLINE), of which 260 characters are read. Each separator is
  /// replaced by a point, then the text is parsed as strtod does: leading white space is skipped, exponents are
  /// accepted, and parsing stops at the first character that does not continue the number. Returns 0 if the text does
  /// not start with a number, infinity or 0 for a number out of range, and 0 for a null control or one without a
  /// window. A null or empty separator replaces nothing.
  static double getValue(const WTL::CEditT<ATL::CWindow>* edit, const char* separator);

  /// As above; unless `allow_negative`, a negative number is returned without its sign. Negative zero keeps it.
  static double getValue(const WTL::CEditT<ATL::CWindow>* edit, bool allow_negative, const char* separator);

  /// Formats the value, sets the text of the control (SetWindowTextA) and returns the text.
  ///   edit       null sets nothing
  ///   value      the number
  ///   separator  replaces the decimal point; null or empty removes it
  ///   digits     after the separator
  /// The text is truncated at 259 characters before the point is replaced; only values above 1e200 and more than 250
  /// digits are that long.
  static CStringA putValue(WTL::CEditT<ATL::CWindow>* edit, double value, const char* separator, long digits);

  /// As above; unless `allow_negative`, a negative value is written without its sign. Negative zero keeps it.
  static CStringA putValue(WTL::CEditT<ATL::CWindow>* edit, double value, bool allow_negative, const char* separator,
                           long digits);

  /// The user's decimal separator (GetLocaleInfoA, LOCALE_SDECIMAL), of one or more characters; "." if there is none.
  static CStringA get_decimal_seperator();
};

#endif
