#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/preproc.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;
using testing::ElementsAre;

namespace {

int gain_of(const Image& frame, int32_t target) {
  return static_cast<int>(static_cast<uint32_t>(quo_reference::enhance_coefficient(frame, target)) & 0xFF);
}

}  // namespace

TEST(FP_ImageEnhance_Slice, GivesTheWholeFrameResultForEverySlice) {
  Random random(32);
  for (int32_t height = 0; height <= 40; height++) {
    for (int32_t slice_rows = -1; slice_rows <= 41; slice_rows++) {
      const Image frame = generate(random, random.between(1, 24), height, kAllFills[random.next() % 6]);
      const int32_t target = random.between(50, 300);
      Guarded sliced(frame.pixels, slice_rows % 2 == 0 ? Guard::kAfter : Guard::kBefore);
      ASSERT_EQ(FP_ImageEnhance_Slice(sliced.data(), frame.width, height, slice_rows, target), QUO_OK);
      const Image expected =
          quo_reference::balanced(frame, {.band_rows = std::max(height, 1), .gain = gain_of(frame, target)});
      ASSERT_TRUE(sliced.equals(expected.pixels)) << height << " rows in slices of " << slice_rows;
    }
  }
}

TEST(FP_ImageEnhance_Slice, DoesNothingForAGainBelowTwo) {
  Image frame(10, 10, [](int32_t x, int32_t) { return x % 2 == 0 ? 10 : 210; });  // spread 100
  const Image original = frame;
  reset_hooks();
  for (const int32_t target : {100, 0, -100, INT32_MIN}) {
    EXPECT_EQ(FP_ImageEnhance_Slice(frame.data(), 10, 10, 4, target), QUO_OK);
  }
  EXPECT_EQ(FP_ImageEnhance_Slice(frame.data(), -10, 10, 4, 500), QUO_OK);
  EXPECT_EQ(FP_ImageEnhance_Slice(nullptr, 10, 10, 4, 500), QUO_OK);
  EXPECT_EQ(frame, original);
  EXPECT_THAT(hooks().sizes, ElementsAre());
}

// Slices of 8, 8 and 4 rows: a failing balance leaves the slices before it balanced and the rest as it was.
TEST(FP_ImageEnhance_Slice, KeepsTheSlicesDoneWhenMemoryRunsOut) {
  Random random(33);
  const Image frame = generate(random, 12, 20, Fill::kRidges);
  const int32_t target = 200;
  ASSERT_GE(gain_of(frame, target), 2);
  const Image whole = quo_reference::balanced(frame, {.band_rows = 20, .gain = gain_of(frame, target)});
  Image changed = frame;
  const auto call = [&] {
    changed = frame;
    return FP_ImageEnhance_Slice(changed.data(), 12, 20, 8, target);
  };
  const int32_t rows_done[] = {0, 0, 0, 8, 16};  // saved rows, parked rows, three integral images
  for_each_failing_allocation(call, [&](uint64_t index, uint32_t result) {
    EXPECT_EQ(result, QUO_NO_MEMORY);
    EXPECT_EQ(hooks().live_blocks, 0U);
    ASSERT_LT(index, std::size(rows_done));
    EXPECT_EQ(changed,
              Image(12, 20, [&](int32_t x, int32_t y) { return (y < rows_done[index] ? whole : frame).at(x, y); }))
        << index;
  });
  EXPECT_THAT(hooks().sizes, ElementsAre(36, 36, 13 * 12 * 4, 13 * 15 * 4, 13 * 8 * 4));
  EXPECT_EQ(hooks().live_blocks, 0U);
  EXPECT_EQ(changed, whole);
}
