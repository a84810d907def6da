#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/preproc.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;
using testing::ElementsAre;

TEST(RemoveVerticalStripes_Sector, EqualsTheLiteralFormAndLeavesOtherColumnsAlone) {
  Random random(26);
  auto check = [&](int32_t width, int32_t height, Guard guard) {
    Image frame = generate(random, width, height, kAllFills[random.next() % 6]);
    for (int32_t x = 0; x < width; x++) {  // some columns without a counted pixel, some at one level
      if (!random.chance(20)) continue;
      const uint8_t level = random.chance(50) ? 255 : random.byte();
      for (int32_t y = 0; y < height; y++) frame.at(x, y) = level;
    }
    Guarded source(frame.pixels, guard), in_place(frame.pixels, guard);
    Guarded destination(frame.pixels.size(), guard, 55);
    source.make_read_only();
    ASSERT_EQ(RemoveVerticalStripes_Sector(source.data(), destination.data(), width, height), 1);
    ASSERT_TRUE(destination.equals(quo_reference::without_sector_stripes(frame, Image(width, height, 55)).pixels));
    ASSERT_EQ(RemoveVerticalStripes_Sector(in_place.data(), in_place.data(), width, height), 1);
    ASSERT_TRUE(in_place.equals(quo_reference::without_sector_stripes(frame, frame).pixels));
  };
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (const int32_t width : {0, 1, 2, 15, 16, 17, 31, 32, 47, 160, 1024, 1040, 2081}) {
      for (const int32_t height : {0, 1, 5, 255, 256, 300}) check(width, height, guard);
    }
  }
}

TEST(RemoveVerticalStripes_Sector, WritesNothingWhenMemoryRunsOut) {
  Random random(27);
  Image frame = generate(random, 40, 10, Fill::kNoise);
  const Image original = frame;
  const auto call = [&] { return RemoveVerticalStripes_Sector(frame.data(), frame.data(), 40, 10); };
  for_each_failing_allocation(call, [&](uint64_t, uint8_t result) {
    EXPECT_EQ(result, 0);
    EXPECT_EQ(frame, original);
  });
  EXPECT_THAT(hooks().sizes, ElementsAre(8));
  EXPECT_EQ(hooks().live_blocks, 0U);
  EXPECT_EQ(RemoveVerticalStripes_Sector(nullptr, nullptr, -16, 10), 1);
  EXPECT_EQ(RemoveVerticalStripes_Sector(nullptr, nullptr, 16, -1), 1);
}
