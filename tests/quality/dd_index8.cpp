#include <gtest/gtest.h>

#include "quoFPAlg.h"

TEST(DDIndex8, PutsEachDegreeIntoItsBin) {
  const struct {
    int32_t first, last;
    uint32_t bin;
  } ranges[] = {{INT32_MIN, INT32_MIN + 9, 0},
                {-5, 10, 0},
                {11, 33, 1},
                {34, 56, 2},
                {57, 79, 3},
                {80, 102, 4},
                {103, 125, 5},
                {126, 148, 6},
                {149, 168, 7},
                {169, 300, 0},
                {INT32_MAX - 9, INT32_MAX, 0}};
  for (const auto& range : ranges) {
    for (int64_t degrees = range.first; degrees <= range.last; degrees++) {
      ASSERT_EQ(DDIndex8(static_cast<int32_t>(degrees)), range.bin) << degrees;
    }
  }
}
