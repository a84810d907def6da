#include "toolbox/cases.h"

using namespace quo_test;

TEST(ValidAreaGrayStretch, EqualsItsLiteralFormForSmallSizesAndSensorSizes) {
  for_each_frame(90, 17, [](const Image& image, Random&, Guard guard) {
    Image expected = image;
    const uint32_t result = reference::stretch_valid(expected);
    Guarded stretched(image.pixels, guard);
    ASSERT_EQ(ValidAreaGrayStretch(stretched.data(), image.width, image.height), result);
    ASSERT_TRUE(stretched.equals(expected.pixels)) << size_text(image);
  });
}

TEST(ValidAreaGrayStretch, CutsAThousandthAtEachEnd) {
  Image ramp(100, 10, [](int32_t x, int32_t) { return 50 + x; });
  EXPECT_EQ(ValidAreaGrayStretch(ramp.data(), 100, 10), 1U);
  EXPECT_EQ(ramp.at(0, 0), 2);
  EXPECT_EQ(ramp.at(98, 0), 251);
  EXPECT_EQ(ramp.at(99, 0), 254);
  Image two(100, 10, [](int32_t x, int32_t) { return x < 50 ? 100 : 200; });
  EXPECT_EQ(ValidAreaGrayStretch(two.data(), 100, 10), 1U);
  EXPECT_EQ(two, Image(100, 10, [](int32_t x, int32_t) { return x < 50 ? 2 : 254; }));
}

// One pixel in a thousand is the share itself, not more than it; a second one is more.
TEST(ValidAreaGrayStretch, ComparesSharesInDoublePrecision) {
  for (int outliers = 0; outliers <= 3; outliers++) {
    for (const int32_t count : {999, 1000, 1001, 2000, 3000}) {
      Image image(count, 1, [&](int32_t x, int32_t) {
        return x < outliers ? 10 : x < 500 ? 100 : x < count - outliers ? 150 : 240;
      });
      Image expected = image;
      EXPECT_EQ(ValidAreaGrayStretch(image.data(), count, 1), reference::stretch_valid(expected));
      EXPECT_EQ(image, expected) << outliers << " outliers of " << count;
    }
  }
}

TEST(ValidAreaGrayStretch, LeavesAnImageAloneThatItCannotStretch) {
  reset_hooks();
  Image white(6, 5, 255), black(6, 5, 0);
  EXPECT_EQ(ValidAreaGrayStretch(white.data(), 6, 5), 0U);
  EXPECT_EQ(ValidAreaGrayStretch(black.data(), 6, 5), 1U);
  EXPECT_EQ(ValidAreaGrayStretch(white.data(), -6, -5), 0U);
  EXPECT_EQ(ValidAreaGrayStretch(white.data(), INT32_MAX, 5), 0U);
  EXPECT_EQ(black, Image(6, 5, 0));
  fail_allocation(0);
  Image image(2, 1, {10, 200});
  EXPECT_EQ(ValidAreaGrayStretch(image.data(), 2, 1), 0U);
  EXPECT_EQ(image, Image(2, 1, {10, 200}));
  EXPECT_EQ(hooks().live_blocks, 0U);
}
