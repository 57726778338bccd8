// Rounds that must not leak.
#ifndef TESTS_SUPPORT_EXPECT_FLAT_H
#define TESTS_SUPPORT_EXPECT_FLAT_H

#include <gtest/gtest.h>

#include <support/resource_counts.h>

// Runs rounds and expects as many objects, handles and windows, and about as many blocks of memory, afterwards as
// before. The first rounds do not count: the system creates objects then that it keeps.
template <typename Round>
void expect_flat(int rounds, Round round) {
  for (int i = 0; i < 20; ++i) round();
  const int blocks = count_heap_blocks();
  EXPECT_EQ(kexlib::testing::leak_of_rounds(rounds, round, 0), "");
  // The system sometimes keeps a block; a leak would be one in each round.
  EXPECT_LT(count_heap_blocks() - blocks, rounds / 10);
}

#endif
