// The C library of a build, and where it differs from that of Windows: tests that compare with it ask here. What
// differs is printed once.
#ifndef TESTS_SUPPORT_C_LIBRARY_H
#define TESTS_SUPPORT_C_LIBRARY_H

#include <charconv>

namespace c_library {

// The DLL, as modules import it.
#ifdef _MSC_VER
inline constexpr char dll[] = "ucrtbase.dll";
#else
inline constexpr char dll[] = "msvcrt.dll";
#endif

// The module whose operator new allocates for another one: Visual C++ links it into each.
constexpr const char* allocator_of([[maybe_unused]] const char* module) {
#ifdef _MSC_VER
  return module;
#else
  return "libstdc++-6.dll";
#endif
}

// A part of what std::terminate writes to stderr before it ends the program with status 3: libstdc++ alone writes.
#ifdef _MSC_VER
inline constexpr char said_by_terminate[] = "";
#else
inline constexpr char said_by_terminate[] = "terminate called";
#endif

// How a program ends whose thread an exception leaves, and what it writes. By Visual C++'s rules that is a crash like
// any other, of which tests/support/crash_report.h reports.
#ifdef _MSC_VER
inline constexpr int status_of_an_uncaught_exception = 98;
inline constexpr char said_of_an_uncaught_exception[] = "crash: exception e06d7363";
#else
inline constexpr int status_of_an_uncaught_exception = 3;
inline constexpr const auto& said_of_an_uncaught_exception = said_by_terminate;
#endif

// What printf does with numbers that lie exactly between two texts; C: the even one. Wine's ucrtbase: away from zero.
bool rounds_ties_to_even();
// Whether a negative precision that is an argument is none, as in C. Wine's ucrtbase counts backwards with it.
bool ignores_negative_precisions();
// Whether printf knows "%hhd". Wine's ucrtbase prints the int.
bool prints_characters_as_numbers();

// Whether strstr finds the empty text at the end of a text. Wine's ucrtbase does not.
bool finds_nothing_at_the_end();
// Whether iswspace knows the ideographic space. Wine's ucrtbase does not.
bool knows_wide_blanks();

// Whether printf rounds this value wrongly to so many digits after the point: a tie, and the even text is nearer to
// zero.
bool rounds_away(double value, int digits, std::chars_format format = std::chars_format::fixed);
// For six digits, as streams print: the value, or where it is rounded wrongly its neighbour, which has the right text.
double rightly_printed(double value);

}  // namespace c_library

#endif
