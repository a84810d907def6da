#include "support/testing.h"

using namespace quo_test;

TEST(GetGrayIntegralImage, HoldsTheSumOfEveryRectangleFromTheOrigin) {
  for_each_frame(2, 17, {}, [](const Image& image, Random& random, Guard guard) {
    const int32_t width = std::max(image.width - random.between(0, 3), 0), height = image.height;
    const size_t row = static_cast<size_t>(width) + 1;
    Guarded table(row * (static_cast<size_t>(height) + 1) * 4, guard, 0xEE);
    GetGrayIntegralImage(ReadOnly(image, guard).data(), table.as<uint32_t>(), width, height, image.width);
    std::vector<uint32_t> above(row, 0);  // of each column
    for (int32_t y = 0; y <= height; y++) {
      uint32_t sum = 0;
      for (size_t x = 0; x < row; x++) {
        if (x > 0) sum += above[x];
        ASSERT_EQ(table.as<uint32_t>()[static_cast<size_t>(y) * row + x], sum) << image.width << ": " << x << "," << y;
      }
      for (int32_t x = 0; x < width && y < height; x++) above[static_cast<size_t>(x) + 1] += image.at(x, y);
    }
  });
}
