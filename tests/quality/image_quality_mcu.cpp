#include "quality/score_outputs.h"

using namespace quo_test;

TEST(ImageQuality_MCU, ScoresTheKnownFrames) {
  const struct {
    const char* name;
    Image image;
    Outputs expected;
  } cases[] = {
      {"white", Image(96, 96, 255), {QUO_OK, 0, 0, 0, kUntouched}},
      {"bright", Image(96, 96, 200), {QUO_OK, 0, 0, 0, kUntouched}},
      {"gray", Image(96, 96, 100), {QUO_OK, 5, 100, 0, 100}},
      {"no block", Image(7, 96, 100), {QUO_OK, 0, 0, 0, kUntouched}},
      {"vertical", stripes(96, 96, [](int32_t x, int32_t) { return x; }), {QUO_OK, 100, 100, 50, 120}},
      {"horizontal", stripes(96, 96, [](int32_t, int32_t y) { return y; }), {QUO_OK, 100, 100, 50, 120}},
      {"rising", stripes(96, 96, [](int32_t x, int32_t y) { return x + y; }), {QUO_OK, 100, 100, 50, 120}},
      // Directed everywhere, every mean 128: no component lacks anything, and there is nothing to weigh.
      {"faultless",
       Image(96, 96, [](int32_t x, int32_t) { return x / 4 % 2 == 0 ? 68 : 188; }),
       {QUO_OK, 0, 100, 50, 128}},
  };
  for (const auto& c : cases) {
    for (const auto function : {ImageQuality_MCU, FP_ImageQuality_MCU, FP_ImageQuality}) {
      EXPECT_EQ(run(function, c.image), c.expected) << c.name;
    }
  }
}

TEST(ImageQuality_MCU, EqualsItsDefinitionWithAnyOutputsLeftOut) {
  Random random(33);
  std::array<int, 101> scores = {};
  for (int round = 0; round < 2000; round++) {
    const Fill fill = random.chance(70) ? Fill::kRidges : kAllFills[random.next() % 6];
    const int32_t width = random.between(8, 110);
    const Image image = generate(random, width, random.between(8, 110), fill);
    const reference::Scores expected = reference::score(reference::sparse_blocks(image), true);
    scores[expected.quality]++;
    const int given = random.chance(50) ? 15 : random.between(0, 15);
    ASSERT_EQ(run(ImageQuality_MCU, image, given), as_given(expected, given)) << "round " << round;
  }
  EXPECT_LT(std::count(scores.begin(), scores.end(), 0), 60);  // the scores are spread
}
