#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/preproc.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;
using testing::ElementsAre;

TEST(FP_GetBlockValidArea, MeasuresEachQuarterThatIsAskedFor) {
  Random random(35);
  auto check = [&](int32_t width, int32_t height, Guard guard) {
    const Image frame = generate(random, width, height, kAllFills[random.next() % 6]);
    Guarded pixels(frame.pixels, guard);
    pixels.make_read_only();
    const uint8_t bg = quo_reference::background_value(frame).value_or(255);
    const uint64_t asked = random.next();
    uint8_t means[4] = {1, 1, 1, 1}, expected[4] = {1, 1, 1, 1};
    uint8_t* outs[4];
    for (int i = 0; i < 4; i++) {
      outs[i] = asked >> i & 1 ? &means[i] : nullptr;
      const int32_t left = i % 2 * (width / 2), top = i / 2 * (height / 2);
      const Image quarter(width / 2, height / 2, [&](int32_t x, int32_t y) { return frame.at(left + x, top + y); });
      if (outs[i] != nullptr) expected[i] = quo_reference::valid_area(quarter, bg).mean;
    }
    ASSERT_EQ(FP_GetBlockValidArea(pixels.data(), width, height, outs[0], outs[1], outs[2], outs[3]), QUO_OK);
    ASSERT_THAT(means, testing::ElementsAreArray(expected)) << width << "x" << height;
  };
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t width = 0; width <= 36; width++) {
      for (int32_t height = 0; height <= 36; height++) check(width, height, guard);
    }
    check(161, 121, guard);
  }
}

TEST(FP_GetBlockValidArea, TakesOneQuarterOfMemory) {
  const Image frame(33, 21, 100);
  uint8_t mean = 1;
  const auto call = [&] { return FP_GetBlockValidArea(frame.data(), 33, 21, &mean, nullptr, nullptr, nullptr); };
  for_each_failing_allocation(call, [&](uint64_t, uint32_t result) {
    EXPECT_EQ(result, QUO_NO_MEMORY);
    EXPECT_EQ(mean, 1);
  });
  EXPECT_THAT(hooks().sizes, ElementsAre(160));
  EXPECT_EQ(hooks().live_blocks, 0U);
  reset_hooks();
  EXPECT_EQ(FP_GetBlockValidArea(nullptr, -33, -21, &mean, nullptr, nullptr, nullptr), QUO_OK);
  EXPECT_EQ(mean, 255);
  EXPECT_EQ(FP_GetBlockValidArea(nullptr, 1 << 18, 1 << 18, &mean, &mean, &mean, &mean), QUO_NO_MEMORY);
  EXPECT_THAT(hooks().sizes, ElementsAre(0));
}
