#include "reference/toolbox.h"
#include "support/testing.h"

using namespace quo_test;

TEST(BlockGrayStretch, EqualsItsLiteralForm) {
  for_each_frame(89, 17, {}, [](const Image& image, Random& random, Guard guard) {
    const int32_t across = random.between(1, 20), down = random.between(1, 20);
    ReadOnly source(image, guard);
    Image expected(image.width, image.height, 99);
    const uint32_t count = reference::stretch_blocks(image, expected, across, down);
    const auto stretch = [&](uint8_t* output) {
      ASSERT_EQ(BlockGrayStretch(source.data(), output, image.width, image.height, across, down), count);
    };
    ASSERT_EQ(changed(Image(image.width, image.height, 99), guard, stretch), expected) << across << " x " << down;
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
