#include "reference/toolbox.h"
#include "support/testing.h"

using namespace quo_test;

TEST(ValidAreaGrayStretch, EqualsItsLiteralForm) {
  for_each_frame(90, 17, {}, [](const Image& image, Random&, Guard guard) {
    Image expected = image;
    const uint32_t result = reference::stretch_valid(expected);
    const auto stretch = [&](uint8_t* pixels) {
      ASSERT_EQ(ValidAreaGrayStretch(pixels, image.width, image.height), result);
    };
    ASSERT_EQ(changed(image, guard, stretch), expected);
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

// All 256 values, the range set by two of them that nearly all pixels have.
TEST(ValidAreaGrayStretch, StretchesEveryValueByManyRanges) {
  Random random(97);
  for (int round = 0; round < 40; round++) {
    const int32_t lo = random.between(1, 253);
    const int32_t hi = random.between(lo, round % 2 == 0 ? std::min(lo + 9, 254) : 254);
    Image image(640, 480, [&](int32_t x, int32_t y) { return y == 0 && x < 256 ? x : x % 2 == 0 ? lo : hi; });
    Image expected = image;
    EXPECT_EQ(ValidAreaGrayStretch(image.data(), 640, 480), reference::stretch_valid(expected));
    EXPECT_EQ(image, expected) << lo << " to " << hi;
  }
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
  Image white(6, 5, 255), black(6, 5, 0);
  EXPECT_EQ(ValidAreaGrayStretch(white.data(), 6, 5), 0U);
  EXPECT_EQ(ValidAreaGrayStretch(black.data(), 6, 5), 1U);
  EXPECT_EQ(black, Image(6, 5, 0));
  EXPECT_EQ(ValidAreaGrayStretch(white.data(), INT32_MAX, 5), 0U);
}
