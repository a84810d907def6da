#include "reference/toolbox.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

void expect_stretched(const Image& image, int32_t across, int32_t down, Guard guard = Guard::kAfter) {
  const int32_t half_width = (std::max(across, 1) - 1) / 2, half_height = (std::max(down, 1) - 1) / 2;
  Image expected(image.width, image.height, 99);
  const uint32_t count = reference::stretch_area(image, expected, half_width, half_height);
  const auto stretch = [&](uint8_t* output) {
    ReadOnly source(image, guard);
    ASSERT_EQ(AreaGrayStretch(source.data(), output, image.width, image.height, across, down), count);
  };
  ASSERT_EQ(changed(Image(image.width, image.height, 99), guard, stretch), expected) << across << " x " << down;
}

}  // namespace

TEST(AreaGrayStretch, EqualsItsLiteralForm) {
  for_each_frame(86, 16, {}, [](const Image& image, Random& random, Guard guard) {
    const int32_t across = random.between(-1, 19);
    expect_stretched(image, across, random.between(-1, 19), guard);
  });
}

// Windows whose mean difference from the pixel is 1 exactly, or a hair to either side.
TEST(AreaGrayStretch, DecidesFlatWindowsExactly) {
  Random random(87);
  for (int round = 0; round < 200; round++) {
    const int32_t base = random.between(1, 251);
    const auto spread = static_cast<uint32_t>(random.between(1, 50));
    const Image image(23, 19,
                      [&](int32_t, int32_t) { return base + (random.chance(spread) ? random.between(0, 3) : 1); });
    expect_stretched(image, random.between(1, 9), 7);
  }
}

// Differences in cells of 4 x 4 pixels that add up to the number of pixels in the window, one less or one more, while
// the distances of the middle pixel's window add up to the same.
TEST(AreaGrayStretch, DecidesCellsExactly) {
  for (const int32_t side : {7, 15, 23}) {
    for (const int32_t total : {side * side - 1, side * side, side * side + 1}) {
      Image image(side, side, 100);
      for (int32_t left = total; left > 0;) {
        for (int32_t i = 0; i < side * side && left > 0; i++) {
          if (i / side % 4 >= 2 || i / side >= side / 4 * 4 || i % side >= side / 4 * 4) continue;
          image.pixels[static_cast<size_t>(i)]++;
          left--;
        }
      }
      expect_stretched(image, side, side);
    }
  }
}

// Smooth slopes, on which few pixels of a row have the same value.
TEST(AreaGrayStretch, EqualsItsLiteralFormOnSlopes) {
  for (const int32_t steps : {1, 2, 3, 5}) {
    const Image image(430, 40, [&](int32_t x, int32_t y) { return x % 97 == 50 ? 255 : (x + 2 * y) / steps % 200; });
    for (const int32_t window : {3, 7, 15}) expect_stretched(image, window, window);
  }
}

// Values that are common in some rows and areas and not in others, with background here and there.
TEST(AreaGrayStretch, EqualsItsLiteralFormWhereCommonValuesComeAndGo) {
  Random random(90);
  for (const int32_t half : {1, 4, 7}) {
    const int32_t spread = random.between(1, 3);
    const Image image(500, 70, [&](int32_t x, int32_t y) {
      const int32_t base = 100 + (y / 17 * 5 + x / 150) % 7 * 3, shift = random.between(-spread, spread);
      return y > 30 && random.chance(1) ? 255 : base + shift;
    });
    expect_stretched(image, 2 * half + 1, 2 * half + 1);
  }
}

TEST(AreaGrayStretch, LeavesBackgroundOutOfWindowsAndBlackPixelsUnwritten) {
  const Image row(5, 1, {100, 102, 110, 120, 255});
  Image output(5, 1, 9);
  EXPECT_EQ(AreaGrayStretch(row.data(), output.data(), 5, 1, 3, 1), 3U);
  EXPECT_EQ(output, Image(5, 1, {100, 50, 112, 254, 255}));
  const Image black(5, 1, {0, 100, 101, 100, 0});
  output = Image(5, 1, 9);
  EXPECT_EQ(AreaGrayStretch(black.data(), output.data(), 5, 1, 3, 1), 2U);
  EXPECT_EQ(output, Image(5, 1, {9, 251, 101, 251, 9}));
}

// Columns are looked at in strips, pixels in groups, and windows of more than 257 columns one by one.
TEST(AreaGrayStretch, EqualsItsLiteralFormAcrossStripsAndForWideWindows) {
  Random random(89);
  expect_stretched(generate(random, 1300, 5, Fill::kFlat), 9, 3);
  for (const int32_t window_width : {255, 257, 258, 259, 401}) {
    expect_stretched(generate(random, 330, 6, Fill::kBright), window_width, 5);
    expect_stretched(generate(random, 1030, 3, Fill::kRidges), window_width, 3);
  }
  expect_stretched(generate(random, 9, 700, Fill::kBright), 9, 601);
  expect_stretched(generate(random, 90, 190, Fill::kBright), 257, 379);  // squares beyond 31 bits
}

TEST(AreaGrayStretch, TakesWindowsBeyondTheImageAndCopiesBeyond16Bits) {
  Random random(88);
  const Image image = generate(random, 20, 12, Fill::kNoise);
  for (const int32_t window : {999, 65535, 65536}) expect_stretched(image, window, window);
  Image expected(20, 12, 99), output = expected;
  EXPECT_EQ(AreaGrayStretch(image.data(), output.data(), 20, 12, 3, 65537), 0U);
  for (size_t i = 0; i < image.pixels.size(); i++) {
    if (image.pixels[i] > 0) expected.pixels[i] = image.pixels[i];
  }
  EXPECT_EQ(output, expected);
}

TEST(AreaGrayStretch, DoesNotTouchTheOutputOfBlackPixels) {
  ReadOnly output(Image(500, 3, 9));
  const Image black(500, 3);
  EXPECT_EQ(AreaGrayStretch(black.data(), output.data(), 500, 3, 15, 15), 0U);
}
