#include "reference/toolbox.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

// Bright ground with dark bars 8 lines apart at places, so that valleys, pairs marked twice and scans that meet occur.
Image bars(int32_t width, int32_t height, Random& random) {
  const int32_t dark = random.between(0, 60), bright = random.between(100, 255);
  const int32_t period = random.between(2, 10), noise = random.between(0, 30);
  const bool across = random.chance(50);
  return Image(width, height, [&](int32_t x, int32_t y) {
    if (random.next() % 100 < static_cast<uint32_t>(noise)) return dark;
    return (across ? x : y) % period == 0 && random.chance(90) ? dark : bright;
  });
}

void expect_segment(const Image& image, int32_t threshold, Guard guard) {
  Image expected = image;
  const int32_t count = reference::segment(expected, threshold);
  const auto segment = [&](uint8_t* pixels) {
    ASSERT_EQ(FingerprintImageSegment(pixels, image.width, image.height, threshold), count);
  };
  ASSERT_EQ(changed(image, guard, segment), expected) << "threshold " << threshold;
}

}  // namespace

TEST(FingerprintImageSegment, EqualsItsLiteralForm) {
  for_each_frame(83, 24, {}, [](const Image& image, Random& random, Guard guard) {
    for (const int32_t threshold : {-1, 0, 99, 253, 254, static_cast<int32_t>(random.byte())}) {
      expect_segment(image, threshold, guard);
      if (testing::Test::HasFatalFailure()) return;
    }
    expect_segment(bars(image.width, image.height, random), 99, guard);
  });
}

TEST(FingerprintImageSegment, CountsTheBlockThatRemains) {
  const auto in_block = [](int32_t x, int32_t y) { return x >= 4 && x <= 7 && y >= 4 && y <= 7; };
  Image image(12, 12, [&](int32_t x, int32_t y) { return in_block(x, y) ? 50 : 200; });
  EXPECT_EQ(FingerprintImageSegment(image.data(), 12, 12, 100), 16);
  EXPECT_EQ(image, Image(12, 12, [&](int32_t x, int32_t y) { return in_block(x, y) ? 50 : 255; }));
}

TEST(FingerprintImageSegment, CountsEdgePairsEveryTimeTheyAreMarked) {
  Image image(12, 12, [](int32_t x, int32_t y) {
    const bool bar = (x == 3 || x == 5) && y >= 2 && y <= 9;
    return bar || (x == 4 && y == 5) ? 50 : 200;
  });
  EXPECT_EQ(FingerprintImageSegment(image.data(), 12, 12, 100), 10);
  EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), 255), 144 - 18);
  EXPECT_EQ(image.at(4, 6), 200);
}

TEST(FingerprintImageSegment, StartsTheCountFromTheWrappedProductOfTheSizes) {
  uint8_t pixel = 255;
  EXPECT_EQ(FingerprintImageSegment(&pixel, -3, -4, 254), 12);
  EXPECT_EQ(FingerprintImageSegment(&pixel, -3, 4, 254), -12);
  EXPECT_EQ(FingerprintImageSegment(&pixel, -3, 4, 100), 0);
  EXPECT_EQ(pixel, 255);
}
