#include "toolbox/cases.h"

using namespace quo_test;

TEST(MedianFilter, EqualsItsLiteralFormForEverySmallSizeAndSensorSizes) {
  for_each_frame(94, 19, [](const Image& image, Random&, Guard guard) {
    Guarded source(image.pixels, guard), output(image.pixels.size(), guard, 7);
    source.make_read_only();
    MedianFilter(source.data(), output.data(), image.width, image.height);
    const Image expected = reference::median(image);
    ASSERT_TRUE(output.equals(expected.pixels)) << size_text(image);
    Guarded in_place(image.pixels, guard);
    MedianFilter(in_place.data(), in_place.data(), image.width, image.height);
    ASSERT_TRUE(in_place.equals(expected.pixels)) << size_text(image) << " in place";
  });
  Random random(95);
  const Image wide = generate(random, 2600, 4, Fill::kNoise);  // wider than what is filtered at a time
  Image output(2600, 4);
  MedianFilter(wide.data(), output.data(), 2600, 4);
  EXPECT_EQ(output, reference::median(wide));
}

// A selection by comparisons is right for all values when it is right for all images of zeros and ones.
TEST(MedianFilter, SelectsRightFromEveryBinaryNeighbourhood) {
  for (int bits = 0; bits < 4096; bits++) {
    for (const auto& [width, height] : {std::pair{3, 3}, {4, 3}, {3, 4}, {2, 6}, {6, 2}}) {
      const Image image(width, height, [&, w = width](int32_t x, int32_t y) { return bits >> (y * w + x) & 1; });
      Image output(width, height);
      MedianFilter(image.data(), output.data(), width, height);
      ASSERT_EQ(output, reference::median(image)) << size_text(image) << ", pixels " << bits;
    }
  }
}

TEST(MedianFilter, LeavesTheImageAloneWithoutMemoryForACopy) {
  reset_hooks();
  fail_allocation(0);
  Image image(3, 2, {9, 1, 8, 2, 7, 3});
  const Image before = image;
  MedianFilter(image.data(), image.data(), 3, 2);
  EXPECT_EQ(image, before);
  EXPECT_EQ(hooks().sizes, std::vector<uint32_t>{6});
  Image output(3, 2);
  MedianFilter(image.data(), output.data(), 3, 2);
  for (const int32_t size : {0, -1, INT32_MIN}) {
    MedianFilter(image.data(), image.data(), size, 2);
    MedianFilter(image.data(), image.data(), 3, size);
  }
  EXPECT_EQ(image, before);
  EXPECT_EQ(hooks().sizes.size(), 1U);
  MedianFilter(image.data(), image.data(), 3, 2);
  EXPECT_EQ(image, output);
  EXPECT_EQ(hooks().live_blocks, 0U);
}
