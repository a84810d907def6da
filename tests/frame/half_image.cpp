#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "support/frames.h"
#include "support/guarded.h"

using namespace quo_test;

namespace {

// The definition, one output at a time in its order of writing; outputs that do not fit are left out.
Image naive_half(const Image& source, uint8_t mode) {
  const int32_t w = source.width, h = source.height;
  Image half(w >> 1, h >> 1);
  auto put = [&](int32_t x, int32_t y, int value) {
    if (x < half.width && y < half.height) half.at(x, y) = static_cast<uint8_t>(value);
  };
  if (mode == 0) {
    for (int32_t y = 0; y < h; y += 2) {
      for (int32_t x = 0; x < w; x += 2) put(x / 2, y / 2, source.at(x, y));
    }
    return half;
  }
  for (int32_t y = 0; y < h; y += 2) {
    put(0, y / 2, source.at(0, y));
    put(half.width - 1, y / 2, source.at(w - 1, y));
  }
  for (int32_t x = 0; x < w; x += 2) {
    put(x / 2, 0, source.at(x, 0));
    put(x / 2, half.height - 1, source.at(x, h - 1));
  }
  for (int32_t y = 2; y < h - 2; y += 2) {
    for (int32_t x = 2; x < w - 2; x += 2) {
      int sum = 0;
      for (int32_t j = -1; j <= 1; j++) {
        for (int32_t i = -1; i <= 1; i++) sum += (2 - std::abs(i)) * (2 - std::abs(j)) * source.at(x + i, y + j);
      }
      put(x / 2, y / 2, sum / 16);
    }
  }
  return half;
}

}  // namespace

TEST(ZoomImg, EqualsItsDefinitionForEverySmallSizeAndSensorSizes) {
  Random random(3);
  auto check = [&](int32_t width, int32_t height, Guard guard) {
    const Image image = generate(random, width, height, kAllFills[random.next() % 6]);
    Guarded source(image.pixels, guard);
    source.make_read_only();
    for (const uint8_t mode : {0, 1, 7}) {
      const Image expected = width < 2 || height < 2 ? Image() : naive_half(image, mode);
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
