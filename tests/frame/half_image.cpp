#include "support/testing.h"

using namespace quo_test;

namespace {

// The definition, one output at a time in its order of writing; outputs that do not fit are left out.
Image naive_half(const Image& source, uint8_t mode) {
  const int32_t w = source.width, h = source.height;
  Image half(w >> 1, h >> 1);
  auto put = [&](int32_t x, int32_t y, int value) {
    if (x >= 0 && x < half.width && y >= 0 && y < half.height) half.at(x, y) = static_cast<uint8_t>(value);
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

TEST(ZoomImg, EqualsItsDefinition) {
  for_each_frame(3, 21, {}, [](const Image& image, Random&, Guard guard) {
    ReadOnly source(image, guard);
    for (const uint8_t mode : {0, 1, 7}) {
      const Image half = changed(Image(image.width / 2, image.height / 2), guard, [&](uint8_t* output) {
        ZoomImg(source.data(), output, image.width, image.height, mode);
      });
      ASSERT_EQ(half, naive_half(image, mode)) << "mode " << int{mode};
    }
  });
}
