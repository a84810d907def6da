#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/preproc.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;
using quo_reference::Balance;
using testing::ElementsAre;

namespace {

Balance any_balance(Random& random, int32_t height) {
  Balance how;
  how.radius = random.chance(70) ? 3 : random.between(0, 12);
  how.band_rows = random.chance(40) ? std::max(height, 1) : random.between(1, height + 3);
  how.gain = random.chance(50) ? random.between(2, 5) : random.between(2, 255);
  if (random.chance(40)) {
    how.top = random.between(0, 5);
    how.bottom = random.between(0, 5);
  }
  return how;
}

uint8_t balance(uint8_t* pixels, int32_t width, int32_t height, const Balance& how) {
  return LocalGrayBalance_Slice(pixels, width, height, static_cast<uint32_t>(how.radius),
                                static_cast<uint32_t>(how.band_rows), static_cast<uint8_t>(how.gain),
                                static_cast<uint8_t>(how.top), static_cast<uint8_t>(how.bottom));
}

}  // namespace

TEST(LocalGrayBalance_Slice, StretchesTheDifferenceFromTheLocalMean) {
  // One row within its own radius: the mean of all five pixels is 90.
  const struct {
    int gain;
    Image frame;
    Image expected;
  } cases[] = {
      {10, Image(5, 1, {100, 80, 110, 70, 90}), Image(5, 1, {228, 28, 255, 0, 128})},
      {2, Image(5, 1, {154, 153, 26, 27, 90}), Image(5, 1, {255, 254, 0, 2, 128})},
      {2, Image(5, 1, {254, 255, 253, 0, 0}), Image(5, 1, {254, 255, 255, 0, 0})},  // saturated pixels stay
      {1, Image(5, 1, {100, 80, 110, 70, 90}), Image(5, 1, {100, 80, 110, 70, 90})},
      {0, Image(5, 1, {100, 80, 110, 70, 90}), Image(5, 1, {100, 80, 110, 70, 90})},
  };
  for (auto [gain, frame, expected] : cases) {
    EXPECT_EQ(balance(frame.data(), 5, 1, {.radius = 9, .gain = gain}), QUO_OK);
    EXPECT_EQ(frame, expected);
  }
}

TEST(LocalGrayBalance_Slice, EqualsTheLiteralForm) {
  Random random(29);
  auto check = [&](int32_t width, int32_t height, Guard guard) {
    const Image frame = generate(random, width, height, kAllFills[random.next() % 6]);
    const Balance how = any_balance(random, height);
    Guarded pixels(frame.pixels, guard);
    ASSERT_EQ(balance(pixels.data(), width, height, how), QUO_OK);
    ASSERT_TRUE(pixels.equals(quo_reference::balanced(frame, how).pixels))
        << width << "x" << height << " radius " << how.radius << " band " << how.band_rows << " gain " << how.gain
        << " context " << how.top << "," << how.bottom;
  };
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t width = 0; width <= 40; width++) {
      for (int32_t height = 0; height <= 22; height++) check(width, height, guard);
    }
    for (int round = 0; round < 40; round++) check(random.between(100, 170), random.between(60, 120), guard);
  }
}

// Flat windows at and around every multiple of every area: where a quotient that is off by one would show.
TEST(LocalGrayBalance_Slice, DividesEverySumExactly) {
  for (int base = 0; base < 254; base++) {
    for (int ones = 0; ones <= 49; ones++) {
      int left = ones;
      const Image frame(11, 11, [&](int32_t x, int32_t y) {
        const bool in_window = x >= 2 && x <= 8 && y >= 2 && y <= 8;
        return in_window && left-- > 0 ? base + 1 : base;
      });
      Image result = frame;
      const Balance how{.band_rows = 11, .gain = 64};
      balance(result.data(), 11, 11, how);
      ASSERT_EQ(result, quo_reference::balanced(frame, how)) << base << " and " << ones;
    }
  }
}

TEST(LocalGrayBalance_Slice, TakesTheIntegralImageOfABandOnce) {
  Random random(30);
  const Image frame = generate(random, 20, 24, Fill::kNoise);
  Image changed = frame;
  const auto call = [&] { return LocalGrayBalance_Slice(changed.data(), 20, 24, 3, 10, 3, 0, 0); };
  for_each_failing_allocation(call, [&](uint64_t, uint8_t result) {
    EXPECT_EQ(result, QUO_NO_MEMORY);
    EXPECT_EQ(changed, frame);
  });
  EXPECT_THAT(hooks().sizes, ElementsAre(21 * 11 * 4));
  EXPECT_EQ(hooks().live_blocks, 0U);
  reset_hooks();
  EXPECT_EQ(LocalGrayBalance_Slice(nullptr, 20, 24, 3, 24, 1, 0, 0), QUO_OK);
  EXPECT_EQ(LocalGrayBalance_Slice(nullptr, 20, 24, 3, UINT32_MAX, 2, 0, 0), QUO_NO_MEMORY);
  EXPECT_THAT(hooks().sizes, ElementsAre());
}

TEST(LocalGrayBalance_Slice, TakesAnyArguments) {
  Random random(31);
  const Image frame = generate(random, 30, 30, Fill::kNoise);
  Image whole = frame, by_zero = frame, wide = frame, context = frame;
  balance(whole.data(), 30, 30, {.band_rows = 30, .gain = 4});
  LocalGrayBalance_Slice(by_zero.data(), 30, 30, 3, 0, 4, 0, 0);  // no band rows: all of them
  EXPECT_EQ(by_zero, whole);
  LocalGrayBalance_Slice(wide.data(), 30, 30, UINT32_MAX, 30, 4, 0, 0);
  EXPECT_EQ(wide, quo_reference::balanced(frame, {.radius = 30, .band_rows = 30, .gain = 4}));
  LocalGrayBalance_Slice(context.data(), 30, 30, 3, 30, 4, 15, 15);
  LocalGrayBalance_Slice(context.data(), 30, 30, 3, 30, 4, 255, 0);
  LocalGrayBalance_Slice(context.data(), 30, 30, 3, 30, 4, 0, 255);
  EXPECT_EQ(context, frame);
  for (const auto& [width, height] : {std::pair{0, 5}, {-5, 5}, {5, -5}, {INT32_MIN, INT32_MIN}}) {
    EXPECT_EQ(LocalGrayBalance_Slice(nullptr, width, height, 3, 5, 4, 0, 0), QUO_OK);
  }
}
