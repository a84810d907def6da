#include "reference/toolbox.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

void expect_thresholded(const Image& image, int32_t window, int32_t offset, Guard guard = Guard::kAfter) {
  const int32_t used = std::clamp(window, 1, std::min(image.width, image.height));
  const auto threshold = [&](uint8_t* output) {
    AdaptiveThreshold(ReadOnly(image, guard).data(), output, image.width, image.height, window, offset);
  };
  ASSERT_EQ(changed(Image(image.width, image.height, 7), guard, threshold), reference::thresholded(image, used, offset))
      << "window " << window << ", offset " << offset;
}

}  // namespace

// Sums are carried along strips of positions, and a window may be as large as the image.
TEST(AdaptiveThreshold, EqualsItsLiteralForm) {
  for_each_frame(85, 14, {{1100, 9}, {530, 5}, {90, 70}}, [](const Image& image, Random& random, Guard guard) {
    const int32_t window = random.between(-1, std::min(image.width, image.height) + 2);
    const int32_t offset = random.chance(80) ? random.between(-12, 12) : random.between(-600, 600);
    expect_thresholded(image, window, offset, guard);
  });
}

// Images of two values 3 to 60 apart, so many of the higher that the deviation of a window is 3 or a hair off it: of an
// even window exactly 3 when half of its pixels are 6 higher.
TEST(AdaptiveThreshold, DecidesDeviationsAroundThreeByTheDefiningSteps) {
  Random random(87);
  for (int round = 0; round < 400; round++) {
    const int32_t window = random.between(2, 12), n = window * window;
    const int32_t base = random.between(0, 190), apart = random.chance(30) ? 6 : random.between(6, 60);
    int32_t higher = 0;  // the least that gives a variance of 9 or more
    while (apart * apart * higher * (n - higher) < 9 * n * n && higher < n / 2) higher++;
    std::vector<uint8_t> tile(static_cast<size_t>(n), static_cast<uint8_t>(base));
    for (int32_t i = 0; i < higher - random.between(0, 1); i++) {
      tile[static_cast<size_t>(i * 7 % n)] = static_cast<uint8_t>(base + apart);
    }
    const Image image(40, 33, [&](int32_t x, int32_t y) {  // periodic, so that every whole window holds the tile
      return tile[static_cast<size_t>(y % window * window + x % window)];
    });
    expect_thresholded(image, window, random.between(-2, 2));
  }
}

// Variances a part in 2^17 off 9 are clear, whatever quo_sqrt() does to the last bits.
TEST(AdaptiveThreshold, FindsClearDeviationsClear) {
  const float below = 9.0F * (1 - 0x1p-17F), above = 9.0F * (1 + 0x1p-17F);
  for (float variance = 8.5F; variance <= below; variance = std::nextafter(variance, 10.0F)) {
    ASSERT_LT(quo_sqrt(variance), 3.0F) << variance;
  }
  for (float variance = above; variance < 9.5F; variance = std::nextafter(variance, 10.0F)) {
    ASSERT_GE(quo_sqrt(variance), 3.0F) << variance;
  }
}

// Windows of up to 64 pixels a side are summed in one way, larger ones in another, both in strips.
TEST(AdaptiveThreshold, EqualsItsLiteralFormForLargeWindowsAndWideImages) {
  Random random(94);
  for (const int32_t window : {63, 64, 65, 66, 68}) {
    for (const Fill fill : {Fill::kRidges, Fill::kBright, Fill::kFlat}) {
      expect_thresholded(generate(random, 74, 70, fill), window, random.between(-3, 3));
    }
  }
  expect_thresholded(generate(random, 1300, 8, Fill::kRidges), 5, 0);
  expect_thresholded(generate(random, 580, 68, Fill::kRidges), 67, 0);
}

TEST(AdaptiveThreshold, ShrinksTheWindowToTheImage) {
  const Image image(5, 3, {9, 80, 3, 200, 40, 5, 70, 90, 1, 0, 255, 6, 33, 44, 55});
  for (const int32_t window : {4, 5, 100, INT32_MAX, 0, INT32_MIN}) {
    for (const int32_t offset : {INT32_MIN, -1, 0, 1, INT32_MAX}) expect_thresholded(image, window, offset);
  }
}
