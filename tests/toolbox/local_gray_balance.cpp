#include "toolbox/cases.h"

using namespace quo_test;

namespace {

void expect_balanced(const Image& image, int32_t window_width, int32_t window_height, Guard guard) {
  Guarded source(image.pixels, guard), output(image.pixels.size(), guard, 99);
  source.make_read_only();
  Image expected(image.width, image.height, 99);
  const uint32_t result = reference::balance(image, expected, (window_width - 1) / 2, (window_height - 1) / 2);
  ASSERT_EQ(LocalGrayBalance(source.data(), output.data(), image.width, static_cast<uint32_t>(image.height),
                             window_width, window_height),
            result);
  ASSERT_TRUE(output.equals(expected.pixels))
      << size_text(image) << ", window " << window_width << " x " << window_height;
}

}  // namespace

TEST(LocalGrayBalance, EqualsItsLiteralFormForSmallSizesAndSensorSizes) {
  for_each_frame(91, 17, [](const Image& image, Random& random, Guard guard) {
    const int32_t window_width = random.between(3, 21);
    expect_balanced(image, window_width, random.between(3, 21), guard);
  });
}

// One pixel of 1600 differs by d, so the gain is 40,000 / d and results leave 16 bits; in the large image, 32 bits too.
TEST(LocalGrayBalance, SaturatesAt32BitsAndKeepsTheLower16) {
  Random random(92);
  const auto expect_outlier_balanced = [&](int32_t width, int32_t height, int32_t window) {
    const uint8_t base = random.byte();
    Image image(width, height, base);
    for (int32_t x = 0; x < width; x++) image.at(x, 0) = random.byte();
    image.at(random.between(1, width - 2), random.between(1, height - 2)) = base < 128 ? base + 1 : random.byte();
    expect_balanced(image, window, 5, Guard::kAfter);
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
    expect_balanced(image, 2 * random.between(1, 4) + 1, 2 * random.between(1, 4) + 1, Guard::kAfter);
  }
}

TEST(LocalGrayBalance, EqualsItsLiteralFormAcrossStrips) {
  Random random(95);
  expect_balanced(generate(random, 2100, 7, Fill::kRidges), 31, 3, Guard::kAfter);
  expect_balanced(generate(random, 1100, 7, Fill::kNoise), 3001, 3, Guard::kBefore);
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

TEST(LocalGrayBalance, WritesNothingWhenItCannotBalance) {
  const auto result_of = [](const Image& image, uint32_t height, int32_t window_width, int32_t window_height) {
    Guarded output(image.pixels.size(), Guard::kAfter, 7);
    const uint32_t result =
        LocalGrayBalance(image.data(), output.data(), image.width, height, window_width, window_height);
    EXPECT_TRUE(output.equals(std::vector<uint8_t>(image.pixels.size(), 7)));
    return result;
  };
  Random random(93);
  const Image image = generate(random, 9, 9, Fill::kNoise);
  for (const int32_t window : {2, 1, 0, -7, -131068, INT32_MIN, 65537, 131073}) {
    EXPECT_EQ(result_of(image, 9, window, 5), 0U) << window;
    EXPECT_EQ(result_of(image, 9, 5, window), 0U) << window;
  }
  EXPECT_EQ(result_of(image, 2, 5, 5), 0U);
  EXPECT_EQ(result_of(image, 0, 5, 5), 0U);
  EXPECT_EQ(result_of(image, UINT32_MAX, 5, 5), 0U);
  EXPECT_EQ(result_of(generate(random, 2, 9, Fill::kNoise), 9, 5, 5), 0U);
  EXPECT_EQ(result_of(Image(9, 9, 255), 9, 5, 5), 0U);
  EXPECT_EQ(result_of(Image(9, 9, [](int32_t x, int32_t) { return x == 0 ? 3 : 70; }), 9, 5, 5), 0U);
  const uint64_t allocations = for_each_failing_allocation(
      [&] {
        std::vector<uint8_t> output(81, 7);
        const uint32_t result = LocalGrayBalance(image.data(), output.data(), 9, 9, 5, 5);
        return std::pair(result, output);
      },
      [](uint64_t, const auto& outcome) {
        EXPECT_EQ(outcome.first, 0U);
        EXPECT_EQ(outcome.second, std::vector<uint8_t>(81, 7));
        EXPECT_EQ(hooks().live_blocks, 0U);
      });
  EXPECT_EQ(allocations, 2U);
  EXPECT_EQ(hooks().sizes, (std::vector<uint32_t>{324, 324}));
}
