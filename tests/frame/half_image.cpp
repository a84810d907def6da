#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/frame.h"
#include "support/guarded.h"

using namespace quo_test;

TEST(ZoomImg, EqualsItsDefinitionForEverySmallSizeAndSensorSizes) {
  Random random(3);
  auto check = [&](int32_t width, int32_t height, Guard guard) {
    const Image image = generate(random, width, height, kAllFills[random.next() % 6]);
    Guarded source(image.pixels, guard);
    source.make_read_only();
    for (const uint8_t mode : {0, 1, 7}) {
      const Image expected = width < 2 || height < 2 ? Image() : quo_reference::half_image(image, mode);
      Guarded half(expected.pixels.size(), guard, 0xEE);
      ZoomImg(source.data(), half.data(), width, height, mode);
      ASSERT_TRUE(half.equals(expected.pixels)) << width << "x" << height << " mode " << int{mode};
    }
  };
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t width = 0; width <= 21; width++) {
      for (int32_t height = 0; height <= 9; height++) check(width, height, guard);
    }
    check(160, 160, guard);
    check(131, 77, guard);
  }
}

TEST(ZoomImg, DoesNothingForSizesBelowTwo) {
  const uint8_t source[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  uint8_t half[4] = {9, 9, 9, 9};
  for (const int32_t size : {1, 0, -1, INT32_MIN}) {
    for (const uint8_t mode : {uint8_t{0}, uint8_t{1}}) {
      ZoomImg(source, half, size, 4, mode);
      ZoomImg(source, half, 4, size, mode);
    }
  }
  EXPECT_THAT(half, testing::Each(9));
}
