#include "toolbox/cases.h"

using namespace quo_test;

namespace {

// Mostly set, so that crosses survive; 254 and 1 are not set.
Image mask_of(int32_t width, int32_t height, Random& random) {
  return Image(width, height, [&](int32_t, int32_t) { return random.chance(88) ? 255 : random.chance(50) ? 254 : 1; });
}

}  // namespace

TEST(MyCrossErode, EqualsItsLiteralFormForEverySmallSizeAndSensorSizes) {
  for_each_frame(96, 19, [](const Image& image, Random& random, Guard guard) {
    const Image pixels = mask_of(image.width, image.height, random);
    Guarded mask(pixels.pixels, guard);
    mask.make_read_only();
    for (const int32_t border : {0, 1, 2, 7}) {
      Guarded output(image.pixels, guard);
      Image expected = image;
      const uint32_t expected_count = reference::erode(pixels, expected, border);
      uint32_t count = 99, count_alone = 99;
      MyCrossErode(mask.data(), output.data(), image.width, image.height, border, &count);
      ASSERT_EQ(count, expected_count) << size_text(image) << ", border " << border;
      ASSERT_TRUE(output.equals(expected.pixels)) << size_text(image) << ", border " << border;
      MyCrossErode(mask.data(), nullptr, image.width, image.height, border, &count_alone);
      ASSERT_EQ(count_alone, expected_count);
      MyCrossErode(mask.data(), output.data(), image.width, image.height, border, nullptr);
    }
  });
}

TEST(MyCrossErode, CountsAcrossStripsOfAWideMask) {
  Random random(97);
  const Image mask = mask_of(2051, 3, random);
  Image output(2051, 3), expected(2051, 3);
  uint32_t count = 0;
  MyCrossErode(mask.data(), output.data(), 2051, 3, 0, &count);
  EXPECT_EQ(count, reference::erode(mask, expected, 0));
  EXPECT_EQ(output, expected);
}

TEST(MyCrossErode, ClearsTheCountWhenThereIsNothingToTest) {
  const Image mask(4, 4, 255);
  for (const auto& [width, height, border] : {std::array{4, 4, 2},
                                              {4, 4, INT32_MAX},
                                              {0, 4, 0},
                                              {4, 0, 0},
                                              {-4, -4, 0},
                                              {INT32_MIN, 4, 1},
                                              {4, INT32_MIN, INT32_MAX}}) {
    uint32_t count = 5;
    MyCrossErode(mask.data(), nullptr, width, height, border, &count);
    EXPECT_EQ(count, 0U) << width << " x " << height << ", border " << border;
  }
  uint32_t count = 5;
  MyCrossErode(mask.data(), nullptr, 4, 4, INT32_MIN, &count);
  EXPECT_EQ(count, 16U);
}
