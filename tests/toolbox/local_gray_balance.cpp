#include "reference/toolbox.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

void expect_balanced(const Image& image, int32_t across, int32_t down, Guard guard = Guard::kAfter) {
  ReadOnly source(image, guard);
  Image expected(image.width, image.height, 99);
  const uint32_t result = reference::balance(image, expected, (across - 1) / 2, (down - 1) / 2);
  const auto balance = [&](uint8_t* output) {
    const auto height = static_cast<uint32_t>(image.height);
    ASSERT_EQ(LocalGrayBalance(source.data(), output, image.width, height, across, down), result);
  };
  ASSERT_EQ(changed(Image(image.width, image.height, 99), guard, balance), expected) << across << " x " << down;
}

}  // namespace

TEST(LocalGrayBalance, EqualsItsLiteralForm) {
  for_each_frame(91, 17, {}, [](const Image& image, Random& random, Guard guard) {
    const int32_t across = random.between(3, 21);
    expect_balanced(image, across, random.between(3, 21), guard);
  });
  Random random(95);  // and across strips
  expect_balanced(generate(random, 2100, 7, Fill::kRidges), 31, 3);
  expect_balanced(generate(random, 1100, 7, Fill::kNoise), 3001, 3);
  expect_balanced(generate(random, 8, 400, Fill::kNoise), 3, 701);  // columns whose sums leave 16 bits
}

// One pixel of 1600 differs by d, so the gain is 40,000 / d and results leave 16 bits; in the large image, 32 bits too.
TEST(LocalGrayBalance, SaturatesAt32BitsAndKeepsTheLower16) {
  Random random(92);
  const auto expect_outlier_balanced = [&](int32_t width, int32_t height, int32_t window) {
    const uint8_t base = random.byte();
    Image image(width, height, base);
    for (int32_t x = 0; x < width; x++) image.at(x, 0) = random.byte();
    image.at(random.between(1, width - 2), random.between(1, height - 2)) = base < 128 ? base + 1 : random.byte();
    expect_balanced(image, window, 5);
  };
  for (int round = 0; round < 60; round++) expect_outlier_balanced(42, 42, 2 * random.between(1, 20) + 1);
  for (int round = 0; round < 4; round++) expect_outlier_balanced(1200, 400, 3);
}

// Means of whole and half gray levels and round gains put results on integers exactly, or a rounding to either side.
TEST(LocalGrayBalance, DecidesResultsAtIntegersByTheDefiningSteps) {
  Random random(94);
  for (int round = 0; round < 200; round++) {
    const int32_t base = random.between(20, 200), step = random.between(1, 20);
    const int32_t period = random.between(1, 4);
    const Image image(34, 22, [&](int32_t x, int32_t y) {
      return random.chance(2) ? 255 : base + ((x / period + y / period) % 2 == 0 ? step : -step);
    });
    expect_balanced(image, 2 * random.between(1, 4) + 1, 2 * random.between(1, 4) + 1);
  }
}

TEST(LocalGrayBalance, BalancesTheCheckerboardByHand) {
  const Image image(6, 6, [](int32_t x, int32_t y) {
    return x == 0 || y == 0 || x == 5 || y == 5 ? 100 : (x + y) % 2 == 0 ? 80 : 120;
  });
  Image output(6, 6);
  ASSERT_EQ(LocalGrayBalance(image.data(), output.data(), 6, 6, 3, 3), 1U);
  EXPECT_EQ(output,
            Image(6, 6, {183, 128, 145, 108, 128, 73,  128, 78,  178, 78,  178, 128, 145, 178, 83,  169, 78,  108,
                         108, 78,  169, 83,  178, 145, 128, 178, 78,  178, 78,  128, 73,  128, 108, 145, 128, 183}));
}

TEST(LocalGrayBalance, RefusesWindowsBeyond16BitsOrBelowThree) {
  Random random(93);
  const Image image = generate(random, 9, 9, Fill::kNoise);
  Image output(9, 9, 7);
  for (const int32_t window : {2, 1, 0, -7, -131068, INT32_MIN, 65537, 131073}) {
    EXPECT_EQ(LocalGrayBalance(image.data(), output.data(), 9, 9, window, 5), 0U) << window;
    EXPECT_EQ(LocalGrayBalance(image.data(), output.data(), 9, 9, 5, window), 0U) << window;
  }
  EXPECT_EQ(LocalGrayBalance(image.data(), output.data(), 9, UINT32_MAX, 5, 5), 0U);
  EXPECT_EQ(output, Image(9, 9, 7));
}
