#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/signal.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;

TEST(GasssianSmooth, HasTheseResults) {
  const struct {
    Image image, rows, smoothed;
  } cases[] = {
      // Rounding once at the end would give 4 in the middle of the left column.
      {Image(3, 3, {2, 1, 4, 1, 7, 7, 7, 6, 3}), Image(3, 3, {1, 2, 2, 4, 5, 7, 6, 5, 4}),
       Image(3, 3, {2, 3, 4, 3, 4, 5, 5, 5, 5})},
      {Image(4, 4, {0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
       Image(4, 4, {0, 0, 0, 0, 127, 127, 63, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
       Image(4, 4, {63, 63, 31, 0, 63, 63, 31, 0, 31, 31, 15, 0, 0, 0, 0, 0})},
      {Image(3, 3, {10, 20, 30, 40, 50, 60, 70, 80, 90}), Image(3, 3, {15, 20, 25, 45, 50, 55, 75, 80, 85}),
       Image(3, 3, {30, 35, 40, 45, 50, 55, 60, 65, 70})},
      {Image(2, 2, {1, 2, 5, 10}), Image(2, 2, {1, 1, 7, 7}), Image(2, 2, {4, 4, 4, 4})},
      {Image(1, 1, {77}), Image(1, 1, {77}), Image(1, 1, {77})},
  };
  for (const auto& c : cases) {
    Image image = c.image, scratch(image.width, image.height);
    EXPECT_EQ(GasssianSmooth(image.data(), scratch.data(), image.width, image.height), 1U);
    EXPECT_EQ(scratch, c.rows);
    EXPECT_EQ(image, c.smoothed);
  }
}

TEST(GasssianSmooth, EqualsItsDefinitionForEverySmallSizeAndSensorSizes) {
  Random random(1);
  auto check = [&](int32_t width, int32_t height, Guard guard) {
    Image image = generate(random, width, height, kAllFills[random.next() % 6]);
    Guarded smoothed(image.pixels, guard), scratch(image.pixels.size(), guard, 0xEE);
    const Image rows = quo_reference::smooth(image);
    ASSERT_EQ(GasssianSmooth(smoothed.data(), scratch.data(), width, height), 1U);
    ASSERT_TRUE(scratch.equals(rows.pixels)) << width << "x" << height;
    ASSERT_TRUE(smoothed.equals(image.pixels)) << width << "x" << height;
  };
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t width = 1; width <= 35; width++) {
      for (int32_t height = 1; height <= 5; height++) check(width, height, guard);
    }
    check(160, 160, guard);
    check(131, 77, guard);
  }
}

TEST(GasssianSmooth, TakesItsRowFirstAndDoesNothingWithoutPixels) {
  uint8_t image[4] = {1, 200, 3, 4}, scratch[4] = {9, 9, 9, 9};
  for (const int32_t none : {0, -1, INT32_MIN}) {
    reset_hooks();
    EXPECT_EQ(GasssianSmooth(image, scratch, 4, none), 1U);
    EXPECT_EQ(hooks().sizes, std::vector<uint32_t>{16});
    EXPECT_EQ(GasssianSmooth(image, scratch, none, 1), 1U);
    fail_allocation(0);
    EXPECT_EQ(GasssianSmooth(image, scratch, 4, none), 0U);
  }
  reset_hooks();
  fail_allocation(0);
  EXPECT_EQ(GasssianSmooth(image, scratch, 2, 2), 0U);
  EXPECT_EQ(GasssianSmooth(image, scratch, 1 << 30, 1), 0U);  // 4 bytes a pixel do not fit in 32 bits
  EXPECT_EQ(image[1], 200);
  EXPECT_EQ(scratch[0], 9);
  EXPECT_EQ(hooks().live_blocks, 0U);
  reset_hooks();
}
