#include "toolbox/cases.h"

using namespace quo_test;

TEST(BlockGrayStretch, EqualsItsLiteralFormForSmallSizesAndSensorSizes) {
  for_each_frame(89, 17, [](const Image& image, Random& random, Guard guard) {
    const int32_t block_width = random.between(1, 20), block_height = random.between(1, 20);
    Guarded source(image.pixels, guard), output(image.pixels.size(), guard, 99);
    source.make_read_only();
    Image expected(image.width, image.height, 99);
    const uint32_t count = reference::stretch_blocks(image, expected, block_width, block_height);
    ASSERT_EQ(BlockGrayStretch(source.data(), output.data(), image.width, image.height, block_width, block_height),
              count);
    ASSERT_TRUE(output.equals(expected.pixels))
        << size_text(image) << ", blocks " << block_width << " x " << block_height;
  });
}

TEST(BlockGrayStretch, FindsTheRangeOfWideBlocks) {
  for (const int32_t outlier : {0, 255, 256, 511, 598}) {
    Image image(600, 3, 100), output(600, 3, 99), expected = output;
    image.at(outlier, 2) = 180;
    reference::stretch_blocks(image, expected, 599, 3);
    BlockGrayStretch(image.data(), output.data(), 600, 3, 599, 3);
    EXPECT_EQ(output, expected) << outlier;
  }
}

TEST(BlockGrayStretch, LetsTheLaterBlockWinTheSharedColumn) {
  const Image image(8, 2, [](int32_t x, int32_t) { return 10 + 10 * x; });
  Image output(8, 2);
  EXPECT_EQ(BlockGrayStretch(image.data(), output.data(), 8, 2, 4, 2), 18U);
  EXPECT_EQ(output, Image(8, 2, {0, 63, 127, 190, 0, 84, 169, 254, 0, 63, 127, 190, 0, 84, 169, 254}));
}

TEST(BlockGrayStretch, StretchesEveryRangeExactly) {
  for (int lo = 0; lo < 256; lo++) {
    for (int hi = lo; hi < 256; hi++) {
      const Image image(hi - lo + 1, 1, [&](int32_t x, int32_t) { return lo + x; });
      Image output(image.width, 1, 99), expected = output;
      const uint32_t count = reference::stretch_blocks(image, expected, 300, 1);
      ASSERT_EQ(BlockGrayStretch(image.data(), output.data(), image.width, 1, INT32_MAX, INT32_MAX), count);
      ASSERT_EQ(output, expected) << lo << " to " << hi;
    }
  }
}

TEST(BlockGrayStretch, RefusesBlocksWithoutSizeAndEmptyImages) {
  const uint8_t source[] = {0, 100};
  uint8_t output[] = {7, 7};
  for (const int32_t size : {0, -1, INT32_MIN}) {
    EXPECT_EQ(BlockGrayStretch(source, output, 2, 1, size, 1), 0U);
    EXPECT_EQ(BlockGrayStretch(source, output, 2, 1, 1, size), 0U);
    EXPECT_EQ(BlockGrayStretch(source, output, size, 1, 1, 1), 0U);
    EXPECT_EQ(BlockGrayStretch(source, output, 2, size, 1, 1), 0U);
  }
  EXPECT_EQ(output[0], 7);
}
