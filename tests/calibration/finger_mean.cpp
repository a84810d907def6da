#include "reference/calibration.h"
#include "support/testing.h"

using namespace quo_test;
using reference::Finger;

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

TEST(tev_GetFingerMean, EqualsItsDefinition) {
  for_each_frame(7, 34, {}, [](const Image& content, Random& random, Guard guard) {
    const auto level = random.between(150, 250);  // around the line, so that both kinds of block occur
    const Image blocks(content.width, content.height, [&](int32_t x, int32_t y) {
      return std::min(255, level + (x / 8 + y / 8) % 9 * random.between(0, 9));
    });
    const Image& frame = random.chance(30) ? content : blocks;
    ASSERT_EQ(measure(ReadOnly(frame, guard).data(), frame.width, frame.height), reference::finger(frame))
        << frame.width << "x" << frame.height;
  });
}
