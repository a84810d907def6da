#include "defect/sensor_frame.h"

using namespace quo_test;

namespace {

struct Measured {
  uint32_t result = 0;
  uint32_t pixels = 77;
  std::vector<uint8_t> marks;
};

Measured measure(const Image& frame) {
  Measured measured;
  uint8_t* marks = nullptr;
  measured.result = FP_GetBadPixelsNum(ReadOnly(frame).data(), frame.width, frame.height, &measured.pixels, &marks);
  measured.marks = take(marks, frame.pixels.size());
  return measured;
}

}  // namespace

TEST(FP_GetBadPixelsNum, MeasuresAndMarksEveryDefect) {
  Image frame = sound_frame();
  const Measured sound = measure(frame);
  EXPECT_EQ(sound.result, QUO_OK);
  EXPECT_EQ(sound.pixels, 0U);
  EXPECT_THAT(sound.marks, testing::Each(0));

  Image expected(160, 160);
  auto mark_half_pixel = [&](int32_t x, int32_t y) {
    darken_half_pixel(frame, x, y);
    for (const int32_t i : {0, 1, 2, 3}) expected.at(2 * x + i % 2, 2 * y + i / 2) = 255;
  };
  mark_half_pixel(30, 40);
  mark_half_pixel(31, 40);
  darken_half_pixel(frame, 50, 50);  // alone: not marked
  EXPECT_EQ(measure(frame).pixels, 8U);

  fill_column(frame, 71, 255);
  fill_row(frame, 91, 255);
  fill_column(expected, 71, 255);
  fill_row(expected, 91, 255);
  const Measured all = measure(frame);
  EXPECT_EQ(all.pixels, 8U + 160U + 160U);
  EXPECT_EQ(all.marks, expected.pixels);
}

// Line defects are sought between lines below 0.9 of the background value, here 167, or 255 where none is found.
TEST(FP_GetBadPixelsNum, TakesTheBackgroundAsReference) {
  for (const int32_t size : {160, 18}) {
    Image frame(size, size, 180);
    fill_row(frame, 9, 255);
    EXPECT_EQ(measure(frame).pixels, size < 20 ? 18U : 0U);
  }
}

// The last column and row of an odd size have no half-size pixel of their own.
TEST(FP_GetBadPixelsNum, RepeatsTheLastMarksInOddSizes) {
  Random random(31);
  uint64_t total = 0;
  for (const auto& [width, height] : {std::pair{7, 7}, {9, 12}, {12, 9}, {41, 53}, {1, 8}, {8, 1}, {0, 5}, {1, 1}}) {
    for (int round = 0; round < 20; round++) {
      // Too little contrast for line defects.
      const Image frame(width, height,
                        [&](int32_t, int32_t) { return random.chance(15) ? 160 + random.byte() % 4 : 200; });
      const int32_t half_width = width / 2, half_height = height / 2;
      Image half(half_width, half_height);
      ZoomImg(frame.data(), half.data(), width, height, 0);
      uint8_t background = 255;
      FindBgValue(half.data(), half_width, half_height, &background);
      uint32_t count = 0;
      uint8_t* marks = nullptr;
      CheckBadPixelsNum(half.data(), half_width, half_height, half_width * half_height, &count, &marks, background);
      const auto half_marks = take(marks, half.pixels.size());
      half.pixels = half_marks.empty() ? std::vector<uint8_t>(half.pixels.size()) : half_marks;

      const Measured measured = measure(frame);
      ASSERT_EQ(measured.pixels, 4 * count) << width << "x" << height;
      total += count;
      const Image expected(width, height, [&](int32_t x, int32_t y) {
        if (half.pixels.empty()) return uint8_t{0};
        return half.at(std::min(x / 2, half_width - 1), std::min(y / 2, half_height - 1));
      });
      ASSERT_EQ(measured.marks, expected.pixels) << width << "x" << height;
    }
  }
  EXPECT_GT(total, 0U);
}
