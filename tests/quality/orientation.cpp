#include <limits>

#include "reference/quality.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

// In place, over a copy.
Image oriented(const Image& image, int32_t radius) {
  return changed(image, Guard::kAfter, [&](uint8_t* pixels) {
    EXPECT_EQ(Orientation(pixels, pixels, image.width, image.height, radius), 1U);
  });
}

void expect_definition(const Image& image, int32_t radius) {
  reset_hooks();
  ASSERT_EQ(oriented(image, radius), reference::orientation_field(image, radius)) << "radius " << radius;
  EXPECT_EQ(hooks().arctangents, reference::half_of(image).pixels.size());
}

// Answers that an arctangent gives and answers that it cannot, by turns.
double strange_arctangent(double, double) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  static const double kAnswers[] = {0.5, -0.5,  3.0,    -3.1415926,   6.28,      6.3,
                                    6.4, 1e300, -1e300, std::nan(""), kInfinity, -kInfinity};
  return kAnswers[(hooks().arctangents - 1) % std::size(kAnswers)];
}

}  // namespace

TEST(Orientation, EqualsItsDefinition) {
  for_each_frame(37, 13, {{160, 160}, {40, 36}}, [](const Image& image, Random& random, Guard) {
    if (image.width > 1 && image.height > 1) expect_definition(image, random.between(0, 9));
  });
  Random random(37);
  expect_definition(generate(random, 2070, 8, Fill::kRidges), 2);  // rows longer than the row buffers
  expect_definition(generate(random, 40, 36, Fill::kRidges), INT32_MAX);
  // Sums that wrap.
  expect_definition(Image(200, 160, [](int32_t x, int32_t y) { return (x + (y > 90 ? y : 0)) / 4 % 2 * 255; }), 40);
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

TEST(Orientation, RefusesSizesBeyondMemory) {
  uint8_t field = 0;
  reset_hooks();
  EXPECT_EQ(Orientation(nullptr, &field, 1 << 16, 1 << 16, 3), 0U);
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
