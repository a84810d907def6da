#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/calibration.h"
#include "support/frames.h"
#include "support/guarded.h"

using namespace quo_test;
using quo_reference::Finger;

namespace {

Finger measure(const uint8_t* frame, int32_t width, int32_t height) {
  Finger finger;
  EXPECT_EQ(tev_GetFingerMean(frame, width, height, &finger.mean, &finger.coverage), QUO_OK);
  return finger;
}

}  // namespace

TEST(tev_GetFingerMean, DrawsTheLineAtAMeanOf220) {
  Image block(8, 8, 220);
  EXPECT_EQ(measure(block.data(), 8, 8), (Finger{255, 0}));
  block.at(7, 7) = 219;
  EXPECT_EQ(measure(block.data(), 8, 8), (Finger{219, 100}));
}

TEST(tev_GetFingerMean, EqualsItsDefinitionForEverySmallSizeAndSensorSizes) {
  Random random(7);
  auto check = [&](int32_t width, int32_t height, Guard guard) {
    const auto level = random.between(150, 250);  // around the line, so that both kinds of block occur
    const Image frame = random.chance(30) ? generate(random, width, height, kAllFills[random.next() % 6])
                                          : Image(width, height, [&](int32_t x, int32_t y) {
                                              return std::min(255, level + (x / 8 + y / 8) % 9 * random.between(0, 9));
                                            });
    Guarded guarded(frame.pixels, guard);
    guarded.make_read_only();
    ASSERT_EQ(measure(guarded.data(), width, height), quo_reference::finger(frame)) << width << "x" << height;
  };
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t width = 0; width <= 34; width++) {
      for (int32_t height = 0; height <= 18; height++) check(width, height, guard);
    }
    check(160, 160, guard);
    check(131, 77, guard);
  }
}

TEST(tev_GetFingerMean, WritesOnlyTheOutputsGivenAndNeedsAFrame) {
  const Image frame(16, 8, [](int32_t x, int32_t) { return x < 8 ? 100 : 240; });
  uint8_t mean = 7, coverage = 7;
  EXPECT_EQ(tev_GetFingerMean(nullptr, 16, 8, &mean, &coverage), QUO_NULL_ARGUMENT);
  EXPECT_EQ(mean, 7);
  EXPECT_EQ(tev_GetFingerMean(frame.data(), 16, 8, nullptr, &coverage), QUO_OK);
  EXPECT_EQ(coverage, 50);
  EXPECT_EQ(tev_GetFingerMean(frame.data(), 16, 8, &mean, nullptr), QUO_OK);
  EXPECT_EQ(mean, 100);
  for (const auto& [width, height] : {std::pair{-8, 8}, {8, -8}, {INT32_MIN, INT32_MIN}, {7, INT32_MAX}}) {
    EXPECT_EQ(measure(frame.data(), width, height), (Finger{255, 0}));
  }
}
