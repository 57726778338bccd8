// How often the leak tests repeat each operation: 50 times, or as often as the variable KEXLIB_LEAK_ROUNDS says.
#ifndef TESTS_SUPPORT_LEAK_ROUNDS_H
#define TESTS_SUPPORT_LEAK_ROUNDS_H

#include <cstdlib>

constexpr int usual_leak_rounds = 50;

inline int leak_rounds() {
  const char* const asked = std::getenv("KEXLIB_LEAK_ROUNDS");
  return asked ? std::atoi(asked) : usual_leak_rounds;
}

#endif
