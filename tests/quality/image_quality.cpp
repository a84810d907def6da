#include "quality/score_outputs.h"

using namespace quo_test;

namespace {

reference::Scores expected_scores(const Image& image) {
  const reference::DenseBlocks dense = reference::dense_blocks(image, image.width / 8, image.height / 8, 3);
  reference::Scores scores = reference::score(dense.blocks, false);
  scores.area = dense.area;
  return scores;
}

}  // namespace

TEST(ImageQuality, ScoresTheKnownFrames) {
  const struct {
    const char* name;
    Image image;
    Outputs expected;
  } cases[] = {
      {"bright", Image(96, 96, 200), {QUO_OK, 0, 0, 0, kUntouched}},
      {"gray", Image(96, 96, 100), {QUO_OK, 5, 100, 0, 100}},
      {"no block", Image(7, 6, 100), {QUO_OK, 0, 100, 0, kUntouched}},
      {"vertical", stripes(96, 96, [](int32_t x, int32_t) { return x; }), {QUO_OK, 100, 100, 50, 119}},
  };
  for (const auto& c : cases) EXPECT_EQ(run(ImageQuality, c.image), c.expected) << c.name;
  EXPECT_EQ(run(ImageQuality, stripes(96, 96, [](int32_t x, int32_t y) { return x + y; })).quality, 100);
  const Outputs horizontal = run(ImageQuality, stripes(96, 96, [](int32_t, int32_t y) { return y; }));
  EXPECT_EQ(horizontal.quality, 0);
  EXPECT_EQ(horizontal.area, 73);
}

TEST(ImageQuality, EqualsItsDefinitionWithAnyOutputsLeftOut) {
  Random random(34);
  const auto check = [&](const Image& image) {
    const int given = random.chance(50) ? 15 : random.between(0, 15);
    ASSERT_EQ(run(ImageQuality, image, given), as_given(expected_scores(image), given))
        << image.width << "x" << image.height;
  };
  for (int round = 0; round < 300; round++) {
    const Fill fill = random.chance(70) ? Fill::kRidges : kAllFills[random.next() % 6];
    const int32_t width = random.between(2, 90);
    check(generate(random, width, random.between(2, 90), fill));
  }
  // Dark and bright halves far apart: spreads of the means around 100, from where brightness is full again.
  for (int32_t bright = 150; bright <= 215; bright++) {
    check(Image(64, 64, [&](int32_t x, int32_t) { return (x < 32 ? 0 : bright) + x / 4 % 2 * 40; }));
  }
}
