#include "defect/sensor_frame.h"

using namespace quo_test;

namespace {

struct Checked {
  uint32_t result;
  int fail;
  Image frame;  // afterwards
};

using Check = uint32_t (*)(uint8_t*, int32_t, int32_t, int32_t, uint8_t*);

Checked check(Check function, const Image& frame, int32_t allowance) {
  Checked checked{0, 77, {}};
  checked.frame = changed(frame, Guard::kAfter, [&](uint8_t* pixels) {
    uint8_t fail = 77;
    checked.result = function(pixels, frame.width, frame.height, allowance, &fail);
    checked.fail = fail;
  });
  return checked;
}

}  // namespace

class DefectCheck : public testing::TestWithParam<Check> {};
INSTANTIATE_TEST_SUITE_P(BothNames, DefectCheck, testing::Values(FP_CheckBadPixelsNum_MCU, FP_CheckBadPixelsNum));

TEST_P(DefectCheck, HoldsPixelsAndLinesEachAgainstTheAllowance) {
  Image frame = sound_frame();
  EXPECT_EQ(check(GetParam(), frame, 0).fail, 0);
  EXPECT_EQ(check(GetParam(), frame, -1).fail, 1);

  for (const int32_t x : {30, 31, 32}) darken_half_pixel(frame, x, 40);  // 12 pixels
  EXPECT_EQ(check(GetParam(), frame, 12).fail, 0);
  EXPECT_EQ(check(GetParam(), frame, 11).fail, 1);

  Image lines = frame;
  for (const int32_t x : {71, 72}) fill_column(lines, x, 255);  // 320 pixels
  fill_row(lines, 91, 255);                                     // 160 more
  const Checked too_many = check(GetParam(), lines, 479);
  EXPECT_EQ(too_many.fail, 1);
  EXPECT_EQ(too_many.frame, lines);
  const Checked repaired = check(GetParam(), lines, 480);
  EXPECT_EQ(repaired.result, QUO_OK);
  EXPECT_EQ(repaired.fail, 0);  // though there are 492 defect pixels
  Image expected = frame;
  for (int32_t y = 0; y < 160; y++) expected.at(71, y) = expected.at(72, y) = frame.at(70, y);
  for (int32_t x = 0; x < 160; x++) expected.at(x, 91) = expected.at(x, 90);
  EXPECT_EQ(repaired.frame, expected);

  // Bad pixels alone fail a frame before its lines are looked at.
  reset_hooks();
  const Checked pixels_fail = check(GetParam(), lines, 11);
  EXPECT_EQ(pixels_fail.fail, 1);
  EXPECT_EQ(pixels_fail.frame, lines);
  EXPECT_THAT(hooks().sizes, testing::ElementsAre(6400));
}

// In frames of more than 256 lines the span's indices wrap: from 256 to 356 is from 0 to 100, and 1 can be marked.
TEST_P(DefectCheck, RepairsTheSecondLineOfAFrameWithManyLines) {
  for (const bool rows : {false, true}) {
    const auto line_gray = [](int32_t line) { return line == 1 ? 200 : line == 256 || line == 356 ? 100 : 255; };
    const Image frame = rows ? Image(8, 600, [&](int32_t, int32_t y) { return line_gray(y); })
                             : Image(600, 8, [&](int32_t x, int32_t) { return line_gray(x); });
    Image expected = frame;
    rows ? fill_row(expected, 1, 255) : fill_column(expected, 1, 255);
    const Checked checked = check(GetParam(), frame, 8);
    EXPECT_EQ(checked.fail, 0);
    EXPECT_EQ(checked.frame, expected) << (rows ? "rows" : "columns");
  }
}
