#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/signal.h"
#include "support/guarded.h"

using namespace quo_test;

TEST(MyRectErode, KeepsExactlyTheNeighbourhoodsThatAreSet) {
  for (int set = 0; set < 512; set++) {
    for (const int other : {0, 254}) {  // nothing but 255 counts
      Image mask(3, 3, [&](int32_t x, int32_t y) { return set >> (3 * y + x) & 1 ? 255 : other; }), output(3, 3, 5);
      uint32_t count = 9;
      MyRectErode(mask.data(), output.data(), 3, 3, 1, &count);
      ASSERT_EQ(count, set == 511 ? 1U : 0U) << set;
      ASSERT_EQ(output.at(1, 1), set == 511 ? 255 : 5);
    }
  }
}

TEST(MyRectErode, EqualsItsDefinitionForEverySmallSizeAndLongRows) {
  Random random(4);
  auto check = [&](int32_t width, int32_t height, int32_t border, Guard guard) {
    const auto holes = static_cast<uint32_t>(random.between(0, 20));
    const Image mask(width, height, [&](int32_t, int32_t) { return random.chance(holes) ? random.byte() : 255; });
    Image expected(width, height, 0x35);
    const uint32_t expected_count = quo_reference::erode(mask, expected, std::max(border, 1));
    Guarded guarded(mask.pixels, guard), output(mask.pixels.size(), guard, 0x35);
    guarded.make_read_only();
    uint32_t count = 99;
    MyRectErode(guarded.data(), output.data(), width, height, border, &count);
    ASSERT_TRUE(output.equals(expected.pixels)) << width << "x" << height << " border " << border;
    ASSERT_EQ(count, expected_count) << width << "x" << height << " border " << border;
    MyRectErode(guarded.data(), output.data(), width, height, border, nullptr);
  };
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t border = 0; border <= 3; border++) {
      for (int32_t width = 0; width <= 21; width++) {
        for (int32_t height = 0; height <= 7; height++) check(width, height, border, guard);
      }
      // Around the segments in which a row is counted.
      for (const int32_t width : {240, 241, 242, 243, 244, 245, 482, 483, 900}) check(width, 9, border, guard);
    }
  }
}

TEST(MyRectErode, DoesNothingWithoutRoom) {
  uint8_t mask[1] = {255}, output[1] = {5};
  const int32_t cases[][3] = {{4, 100, 2},
                              {100, 4, 2},
                              {-1, 100, 1},
                              {100, INT32_MIN, INT32_MAX},
                              {1, 1, INT32_MIN},
                              {0, 0, 0},
                              {INT32_MIN, INT32_MIN, 1},
                              {2, INT32_MAX, 1},
                              {INT32_MAX, 100, 50}};
  for (const auto& c : cases) {
    uint32_t count = 9;
    MyRectErode(mask, output, c[0], c[1], c[2], &count);
    EXPECT_EQ(count, 0U);
  }
  EXPECT_EQ(output[0], 5);
}
