// Rounds that must not leak.
#ifndef TESTS_SUPPORT_EXPECT_FLAT_H
#define TESTS_SUPPORT_EXPECT_FLAT_H

#include <gtest/gtest.h>

#include <support/resource_counts.h>

// Runs rounds and expects as many GDI objects, kernel handles, windows and blocks of memory afterwards as before. The
// first rounds do not count: the system creates objects then that it keeps.
template <typename Round>
void expect_flat(int rounds, Round round) {
  for (int i = 0; i < 20; ++i) round();
  const ResourceCounts before;
  const int blocks = count_heap_blocks();
  for (int i = 0; i < rounds; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
  // The system sometimes keeps a block; a leak would be one in each round.
  EXPECT_LT(count_heap_blocks() - blocks, rounds / 10);
}

#endif
