#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;

TEST(GetEnhanceCoef, FollowsTheSpreadOfTheFinger) {
  const struct {
    Image frame;
    int32_t target;
    double coefficient;
  } cases[] = {
      {Image(2, 2, {100, 110, 100, 110}), 100, 20.5},
      {Image(2, 2, {100, 110, 100, 110}), 0, 0.0},
      {Image(2, 2, {100, 110, 100, 110}), -10, -1.5},
      {Image(2, 2, {100, 110, 230, 255}), 100, 20.5},  // background is ignored
      {Image(2, 2, {229, 229, 229, 229}), 100, 1.0},
      {Image(2, 2, {230, 240, 250, 255}), 100, 1.0},
      {Image(2, 2, {0, 1, 2, 2}), 100, 1.0},  // mean 1, spread 3 / 4
      {Image(4, 1, {0, 0, 200, 200}), INT32_MAX, 21474836.97},
      {Image(0, 0), 100, 1.0},
  };
  for (const auto& [frame, target, coefficient] : cases) {
    const auto width = static_cast<uint32_t>(frame.width), height = static_cast<uint32_t>(frame.height);
    EXPECT_EQ(GetEnhanceCoef(frame.data(), width, height, target), coefficient);
  }
}

TEST(GetEnhanceCoef, EqualsTheLiteralFormForAnyNumberOfPixels) {
  Random random(28);
  for (int32_t count = 0; count <= 1100; count++) {
    for (const Fill fill : kAllFills) {
      const Image frame = generate(random, count, 1, fill);
      ASSERT_EQ(GetEnhanceCoef(ReadOnly(frame).data(), static_cast<uint32_t>(count), 1, 100),
                reference::enhance_coefficient(frame, 100))
          << count << " pixels";
    }
  }
}

// Sums modulo 2^32: of the pixels, and of their distances from the mean that comes out of it.
TEST(GetEnhanceCoef, WrapsSumsBeyond32Bits) {
  Image frame(4600, 4600, [](int32_t x, int32_t y) { return (x + y) % 2 == 0 ? 229 : 215; });
  EXPECT_EQ(GetEnhanceCoef(frame.data(), 4600, 4600, 100), reference::enhance_coefficient(frame, 100));
  EXPECT_EQ(GetEnhanceCoef(frame.data(), 1 << 16, 1 << 15, 100), 1.0);  // a negative number of pixels
}
