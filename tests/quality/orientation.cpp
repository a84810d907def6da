#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "reference/quality.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;

namespace {

Image oriented(const Image& image, int32_t radius) {
  Image field(image.width, image.height, 0xEE);
  EXPECT_EQ(Orientation(image.data(), field.data(), image.width, image.height, radius), 1U);
  return field;
}

void expect_definition(const Image& image, int32_t radius, Guard guard) {
  Guarded frame(image.pixels, guard), field(image.pixels.size(), guard, 0xEE);
  frame.make_read_only();
  reset_hooks();
  ASSERT_EQ(Orientation(frame.data(), field.data(), image.width, image.height, radius), 1U);
  ASSERT_TRUE(field.equals(naive::orientation_field(image, std::max(0, radius)).pixels))
      << image.width << "x" << image.height << " radius " << radius;
  EXPECT_EQ(hooks().arctangents, naive::half_of(image).pixels.size());
}

// Answers that an arctangent gives and answers that it cannot, by turns.
double strange_arctangent(double, double) {
  static const double kAnswers[] = {0.5,
                                    -0.5,
                                    3.0,
                                    -3.1415926,
                                    6.28,
                                    6.3,
                                    6.4,
                                    1e300,
                                    -1e300,
                                    std::nan(""),
                                    std::numeric_limits<double>::infinity(),
                                    -std::numeric_limits<double>::infinity()};
  return kAnswers[(hooks().arctangents - 1) % std::size(kAnswers)];
}

}  // namespace

TEST(Orientation, EqualsItsDefinitionForSmallAndSensorSizes) {
  Random random(37);
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t width = 2; width <= 13; width++) {
      for (int32_t height = 2; height <= 13; height++) {
        expect_definition(generate(random, width, height, kAllFills[random.next() % 6]), random.between(-1, 7), guard);
      }
    }
    expect_definition(generate(random, 160, 160, Fill::kRidges), 3, guard);
    expect_definition(generate(random, 131, 77, Fill::kNoise), 9, guard);
    expect_definition(generate(random, 2070, 8, Fill::kRidges), 2, guard);  // rows longer than the row buffers
    expect_definition(generate(random, 40, 36, Fill::kRidges), INT32_MAX, guard);
  }
  // Sums that wrap.
  expect_definition(Image(200, 160, [](int32_t x, int32_t y) { return (x + (y > 90 ? y : 0)) / 4 % 2 * 255; }), 40,
                    Guard::kAfter);
}

TEST(Orientation, FollowsStripes) {
  reset_hooks();
  const Image vertical = oriented(stripes(96, 96, [](int32_t x, int32_t) { return x; }), 3);
  EXPECT_THAT(vertical.pixels, testing::Each(testing::AllOf(testing::Ge(88), testing::Le(92))));
  const Image rising = oriented(stripes(96, 96, [](int32_t x, int32_t y) { return x + y; }), 3);
  EXPECT_THAT(rising.pixels, testing::Each(testing::AllOf(testing::Ge(130), testing::Le(140))));
  const Image falling = oriented(stripes(96, 96, [](int32_t x, int32_t y) { return x - y + 96; }), 3);
  EXPECT_GT(std::count(falling.pixels.begin(), falling.pixels.end(), 45), 96 * 96 / 2);
  const Image horizontal = oriented(stripes(96, 96, [](int32_t, int32_t y) { return y; }), 3);
  EXPECT_THAT(horizontal.pixels, testing::Each(testing::AnyOf(0, 1, 2, 178, 179)));
  EXPECT_GT(std::count(horizontal.pixels.begin(), horizontal.pixels.end(), 0), 96 * 96 / 2);
  EXPECT_THAT(oriented(Image(9, 8, 77), 3).pixels, testing::Each(135));
  EXPECT_THAT(oriented(stripes(4, 96, [](int32_t, int32_t y) { return y; }), 3).pixels, testing::Each(135));
}

TEST(Orientation, WorksInPlace) {
  reset_hooks();
  Random random(38);
  Image image = generate(random, 37, 30, Fill::kRidges);
  const Image expected = oriented(image, 2);
  EXPECT_EQ(Orientation(image.data(), image.data(), 37, 30, 2), 1U);
  EXPECT_EQ(image, expected);
}

TEST(Orientation, FollowsTheArctangentOfTheProgram) {
  reset_hooks();
  set_arctangent(strange_arctangent);
  // One answer a half-size pixel, in their order; what is no angle counts as 0.
  const uint8_t expected[] = {121, 149, 49, 45, 135, 135, 135, 135, 135, 135, 135, 135};
  const Image field = oriented(Image(24, 2, 100), 3);
  std::vector<int> answers;
  for (int32_t x = 0; x < 24; x += 2) answers.push_back(field.at(x, 0));
  EXPECT_THAT(answers, testing::ElementsAreArray(expected));
  reset_hooks();
}

TEST(Orientation, FailsWithNothingWritten) {
  const Image image(16, 12, 100);
  Image field(16, 12, 0xEE);
  const Image untouched = field;
  const uint64_t allocations =
      for_each_failing_allocation([&] { return Orientation(image.data(), field.data(), 16, 12, 3); },
                                  [&](uint64_t, uint32_t result) {
                                    EXPECT_EQ(result, 0U);
                                    EXPECT_EQ(field, untouched);
                                    EXPECT_EQ(hooks().live_blocks, 0U);
                                  });
  EXPECT_EQ(allocations, 3U);
  EXPECT_THAT(hooks().sizes, testing::ElementsAre(48, 192, 192));
  field = untouched;
  reset_hooks();
  EXPECT_EQ(Orientation(image.data(), nullptr, 16, 12, 3), 0U);
  EXPECT_THAT(hooks().sizes, testing::ElementsAre(48));
  EXPECT_EQ(hooks().live_blocks, 0U);
  for (const int32_t size : {1, 0, -1, INT32_MIN}) {
    EXPECT_EQ(Orientation(image.data(), field.data(), size, 12, 3), 0U);
    EXPECT_EQ(Orientation(image.data(), field.data(), 12, size, 3), 0U);
  }
  EXPECT_EQ(Orientation(nullptr, field.data(), 1 << 16, 1 << 16, 3), 0U);
  EXPECT_EQ(field, untouched);
}
