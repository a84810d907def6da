#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;
using reference::ValidArea;

namespace {

ValidArea measure(const uint8_t* pixels, int32_t width, int32_t height, uint8_t bg) {
  ValidArea area{99, 99, 99, 99};
  EXPECT_EQ(GetValidArea(pixels, width, height, bg, &area.percentage, &area.mean, &area.x, &area.y), 0);
  return area;
}

}  // namespace

TEST(GetValidArea, EqualsTheLiteralForm) {
  for_each_frame(22, 34, {}, [](const Image& frame, Random& random, Guard guard) {
    for (const uint8_t bg : {random.byte(), uint8_t{0}, uint8_t{255}}) {
      ASSERT_EQ(measure(ReadOnly(frame, guard).data(), frame.width, frame.height, bg), reference::valid_area(frame, bg))
          << frame.width << "x" << frame.height << " bg " << int{bg};
    }
  });
}

TEST(GetValidArea, CountsBlocksStrictlyBelowTheBackground) {
  Image frame(16, 8, 80);
  EXPECT_EQ(measure(frame.data(), 16, 8, 80), (ValidArea{0, 255, 0, 0}));
  frame.at(15, 7) = 79;
  EXPECT_EQ(measure(frame.data(), 16, 8, 80), (ValidArea{50, 79, 8, 0}));
}

// 4112 x 4112 pixels of 254 are 2^32 + 1368576 gray levels: the sum wraps, the coordinate sums and the count do not.
TEST(GetValidArea, TakesTheSumOfTheFingerModulo32Bits) {
  const Image frame(4112, 4112, 254);
  const uint32_t pixels = 4112U * 4112U;
  EXPECT_EQ(measure(frame.data(), 4112, 4112, 255),
            (ValidArea{100, static_cast<uint8_t>(pixels * 254U / pixels), 2052, 2052}));
}

TEST(FP_GetValidArea, EstimatesABackgroundOfZero) {
  const Image bright(32, 32, [](int32_t x, int32_t) { return x < 16 ? 190 : 200; });  // background 181
  const Image gray(32, 32, 150);                                                      // none found
  uint8_t percentage = 9, mean = 9;
  EXPECT_EQ(FP_GetValidArea(bright.data(), 32, 32, 0, &percentage, &mean), QUO_OK);
  EXPECT_EQ(percentage, 0);
  EXPECT_EQ(mean, 255);
  EXPECT_EQ(FP_GetValidArea(bright.data(), 32, 32, 195, &percentage, &mean), QUO_OK);
  EXPECT_EQ(percentage, 50);
  EXPECT_EQ(mean, 190);
  EXPECT_EQ(FP_GetValidArea(gray.data(), 32, 32, 0, &percentage, nullptr), QUO_OK);
  EXPECT_EQ(percentage, 100);
}

TEST(FP_GetFingerprintInfo, ReportsWhatIsAskedFor) {
  Image frame(48, 48, 200);  // background 186
  for (int32_t y = 16; y < 40; y++) {
    for (int32_t x = 16; x < 32; x++) frame.at(x, y) = 70;
  }
  uint8_t mean = 0, percentage = 0;
  int32_t x = 0, y = 0;
  EXPECT_EQ(FP_GetFingerprintInfo(frame.data(), 48, 48, &mean, &percentage, &x, &y), QUO_OK);
  EXPECT_EQ((ValidArea{percentage, mean, x, y}), (ValidArea{16, 70, 20, 24}));
}
