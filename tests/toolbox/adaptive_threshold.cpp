#include "toolbox/cases.h"

using namespace quo_test;

namespace {

void expect_thresholded(const Image& image, int32_t window, int32_t offset, Guard guard) {
  Guarded source(image.pixels, guard), output(image.pixels.size(), guard, 7);
  source.make_read_only();
  AdaptiveThreshold(source.data(), output.data(), image.width, image.height, window, offset);
  const int32_t used = std::clamp(window, 1, std::min(image.width, image.height));
  ASSERT_TRUE(output.equals(reference::thresholded(image, used, offset).pixels))
      << size_text(image) << ", window " << window << ", offset " << offset;
}

}  // namespace

TEST(AdaptiveThreshold, EqualsItsLiteralFormForSmallSizesAndSensorSizes) {
  for_each_frame(85, 14, [](const Image& image, Random& random, Guard guard) {
    const int32_t window = random.between(-1, std::min(image.width, image.height) + 2);
    const int32_t offset = random.chance(80) ? random.between(-12, 12) : random.between(-600, 600);
    expect_thresholded(image, window, offset, guard);
  });
}

TEST(AdaptiveThreshold, ShrinksTheWindowToTheImage) {
  const Image image(5, 3, {9, 80, 3, 200, 40, 5, 70, 90, 1, 0, 255, 6, 33, 44, 55});
  for (const int32_t window : {4, 5, 100, INT32_MAX, 0, INT32_MIN}) {
    for (const int32_t offset : {INT32_MIN, -1, 0, 1, INT32_MAX})
      expect_thresholded(image, window, offset, Guard::kAfter);
  }
  uint8_t pixel = 9, output = 7;
  for (const int32_t size : {0, -1, INT32_MIN}) {
    AdaptiveThreshold(&pixel, &output, size, 1, 3, 0);
    AdaptiveThreshold(&pixel, &output, 1, size, 3, 0);
  }
  EXPECT_EQ(output, 7);
}
