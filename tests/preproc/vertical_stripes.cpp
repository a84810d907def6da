#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/preproc.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;
using testing::ElementsAre;

namespace {

// A frame whose columns differ, so that offsets are of every size.
Image striped(Random& random, int32_t width, int32_t height) {
  Image frame = generate(random, width, height, kAllFills[random.next() % 6]);
  for (int32_t x = 0; x < width; x++) {
    if (!random.chance(30)) continue;
    const int shift = random.between(-255, 255);
    for (int32_t y = 0; y < height; y++)
      frame.at(x, y) = static_cast<uint8_t>(std::clamp(frame.at(x, y) + shift, 0, 255));
  }
  return frame;
}

}  // namespace

TEST(RemoveVerticalStripes, TakesTheOffsetFromTheNeighboursOffAColumn) {
  Image frame(20, 3, [](int32_t x, int32_t) { return x == 10 ? 108 : 100; });
  frame.at(10, 2) = 235;  // not counted, not changed
  ASSERT_EQ(RemoveVerticalStripes(frame.data(), frame.data(), 20, 3), 1);
  for (int32_t x = 0; x < 20; x++) {
    const bool beside = x != 10 && x >= 6 && x <= 14;
    EXPECT_EQ(frame.at(x, 0), beside ? 101 : 100) << "column " << x;
    EXPECT_EQ(frame.at(x, 2), x == 10 ? 235 : frame.at(x, 0)) << "column " << x;
  }
}

// Heights beyond 255 and widths beyond 1024 are counted in parts.
TEST(RemoveVerticalStripes_All, EqualsTheLiteralForm) {
  Random random(24);
  auto check = [&](int32_t width, int32_t height, Guard guard) {
    const Image frame = striped(random, width, height);
    const Image expected = quo_reference::without_stripes(frame);
    Guarded source(frame.pixels, guard), in_place(frame.pixels, guard), destination(frame.pixels.size(), guard);
    source.make_read_only();
    ASSERT_EQ(RemoveVerticalStripes_All(source.data(), destination.data(), width, height), 1);
    ASSERT_TRUE(destination.equals(expected.pixels)) << width << "x" << height;
    ASSERT_EQ(RemoveVerticalStripes_All(in_place.data(), in_place.data(), width, height), 1);
    ASSERT_TRUE(in_place.equals(expected.pixels)) << width << "x" << height << " in place";
  };
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t width = 0; width <= 40; width++) {
      for (const int32_t height : {0, 1, 2, 7, 16}) check(width, height, guard);
    }
    for (const int32_t height : {254, 255, 256, 511, 1021}) check(33, height, guard);
    for (const int32_t width : {1023, 1024, 1025, 2050}) check(width, 9, guard);
    check(160, 160, guard);
  }
}

TEST(RemoveVerticalStripes_All, WritesNothingWhenMemoryRunsOut) {
  Random random(25);
  const Image frame = striped(random, 20, 10);
  Image destination(20, 10, 77);
  const auto call = [&] { return RemoveVerticalStripes_All(frame.data(), destination.data(), 20, 10); };
  const auto allocations = for_each_failing_allocation(call, [&](uint64_t index, uint8_t result) {
    EXPECT_EQ(result, 0) << index;
    EXPECT_EQ(hooks().live_blocks, 0U);
    EXPECT_EQ(destination, Image(20, 10, 77));
  });
  EXPECT_EQ(allocations, 4U);
  EXPECT_THAT(hooks().sizes, ElementsAre(80, 20, 20, 40));
  EXPECT_EQ(hooks().live_blocks, 0U);
}

TEST(RemoveVerticalStripes_All, HasNothingToDoOnEmptyFrames) {
  for (const auto& [width, height] : {std::pair{0, INT32_MAX}, {-5, 5}, {5, -5}, {INT32_MIN, INT32_MAX}}) {
    EXPECT_EQ(RemoveVerticalStripes_All(nullptr, nullptr, width, height), 1);
  }
  reset_hooks();
  EXPECT_EQ(RemoveVerticalStripes_All(nullptr, nullptr, 0x40000000, 1), 0);  // 2^32 bytes of sums
  EXPECT_THAT(hooks().sizes, ElementsAre());
}
