#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "support/frames.h"
#include "support/guarded.h"

using namespace quo_test;

TEST(GetGrayIntegralImage, HoldsTheSumOfEveryRectangleFromTheOrigin) {
  Random random(2);
  for (int32_t width = 0; width <= 17; width++) {
    for (int32_t height = 0; height <= 5; height++) {
      const int32_t stride = width + random.between(0, 3);
      const Image image = generate(random, stride, height, Fill::kNoise);
      Guarded source(image.pixels, Guard::kAfter);
      const size_t row = static_cast<size_t>(width) + 1;
      Guarded table(row * (static_cast<size_t>(height) + 1) * 4, Guard::kAfter, 0xEE);
      GetGrayIntegralImage(source.data(), table.as<uint32_t>(), width, height, stride);
      for (int32_t y = 0; y <= height; y++) {
        for (int32_t x = 0; x <= width; x++) {
          uint32_t sum = 0;
          for (int32_t j = 0; j < y; j++) {
            for (int32_t i = 0; i < x; i++) sum += image.at(i, j);
          }
          ASSERT_EQ(table.as<uint32_t>()[static_cast<size_t>(y) * row + static_cast<size_t>(x)], sum)
              << width << "x" << height << " stride " << stride << " at " << x << "," << y;
        }
      }
    }
  }
}

TEST(GetGrayIntegralImage, LeavesTheTableAloneForNegativeSizes) {
  const uint8_t pixel = 9;
  Guarded table(4, Guard::kAfter, 0xEE);
  GetGrayIntegralImage(&pixel, table.as<uint32_t>(), -1, 1, 1);
  GetGrayIntegralImage(&pixel, table.as<uint32_t>(), 1, -1, 1);
  EXPECT_EQ(*table.as<uint32_t>(), 0xEEEEEEEEU);
}
