#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

// A frame of 200 with these values in its corner patches, in their order: clockwise from the top left.
Image corners(int top_left, int top_right, int bottom_right, int bottom_left) {
  return Image(20, 20, [&](int32_t x, int32_t y) {
    if (y < 10) return x < 10 ? top_left : top_right;
    return x < 10 ? bottom_left : bottom_right;
  });
}

}  // namespace

TEST(FindBgValue, TakesFlatBrightPatchesOnly) {
  const struct {
    Image frame;
    int found;
    int value;
  } cases[] = {
      {corners(200, 200, 200, 200), 1, 186},
      {corners(150, 150, 150, 30), 1, 139},
      {corners(150, 150, 150, 150), 0, 7},
      {corners(160, 160, 160, 60), 0, 7},  // neither above 160 nor more than 100 above the darkest
      {corners(160, 160, 160, 59), 1, 148},
      {corners(161, 0, 0, 0), 1, 149},
      {corners(255, 255, 255, 255), 1, 237},
      {corners(102, 101, 102, 0), 1, 94},  // (102 + 101 + 102) / 3 * 0.93 = 94.55
      {corners(0, 0, 0, 0), 0, 7},
  };
  for (const auto& [frame, found, value] : cases) {
    uint8_t bg = 7, white_or_bg = 7;
    EXPECT_EQ(FindBgValue(frame.data(), 20, 20, &bg), found);
    EXPECT_EQ(bg, value);
    EXPECT_EQ(FP_GetImageBgValue(frame.data(), 20, 20, &white_or_bg), QUO_OK);
    EXPECT_EQ(white_or_bg, found == 1 ? value : 255);
  }
}

// Deviations whose squares add up to 64 * 50: a variance of exactly 50 with a sum of 0, a hair less with a sum of 2.
TEST(FindBgValue, TakesVariancesBelowFiftyOnly) {
  const auto patched = [](bool balanced) {
    return Image(20, 20, [=](int32_t x, int32_t y) {
      const int32_t i = (y % 10 - (y < 10 ? 2 : 0)) * 8 + x % 10 - (x < 10 ? 2 : 0);
      if (i < 16) return 210;
      if (i < 31) return 190;
      const int rest[] = {191, 204, 199, 199, 199};
      return i >= 36 ? 200 : !balanced ? rest[i - 31] : i == 31 ? 190 : 200;
    });
  };
  uint8_t bg = 7;
  EXPECT_EQ(FindBgValue(patched(true).data(), 20, 20, &bg), 0);
  EXPECT_EQ(FindBgValue(patched(false).data(), 20, 20, &bg), 1);
  EXPECT_EQ(bg, 186);
}

// Patches whose mean and variance lie around the limits, in frames of every small size: patches overlap below 20.
TEST(FindBgValue, EqualsTheLiteralFormAroundEveryLimit) {
  Random random(21);
  int found = 0;
  for (int round = 0; round < 20000; round++) {
    const int32_t width = random.between(10, 26), height = random.between(10, 26);
    const int spread = random.between(0, 20), dark = random.between(0, 70);
    const int levels[] = {random.between(158, 163), dark, dark + 100 + random.between(-2, 3), random.between(100, 240)};
    const Image frame(width, height, [&](int32_t x, int32_t y) {
      const int level = levels[(x < width / 2 ? 0 : 1) + (y < height / 2 ? 0 : 2)];
      return std::clamp(level + random.between(-spread, spread), 0, 255);
    });
    const auto expected = reference::background_value(frame);
    uint8_t bg = 1;
    ASSERT_EQ(FindBgValue(frame.data(), width, height, &bg), expected.has_value() ? 1 : 0) << "round " << round;
    ASSERT_EQ(bg, expected.value_or(1)) << "round " << round;
    found += expected.has_value() ? 1 : 0;
  }
  EXPECT_GT(found, 3000);
  EXPECT_LT(found, 17000);
}
