// Pictures of every stage of a frame: the pixels that the library leaves, and the marks where it finds something.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;

class View : public Tool {
 protected:
  const Image frame = synth("frame.png", "--size 130x118 --stripes 12 --bad-rows 1 --background 235");
};

TEST_F(View, ShowsTheStagesAsTheLibraryLeavesThem) {
  const Rows stages = rows("view frame.png -o stages --zoom 1 --borders top");
  ASSERT_EQ(stages.size(), 11U);
  for (size_t i = 1; i < stages.size(); i++) EXPECT_TRUE(exists(stages[i].back())) << stages[i][0];
  EXPECT_EQ(read_png("stages/1-raw.png"), frame);
  Image expected = frame;
  FillBorders(expected.data(), 130, 118, QUO_BORDER_TOP);
  RemoveVerticalStripes(expected.data(), expected.data(), 130, 118);
  EXPECT_EQ(read_png("stages/3-stripes.png"), expected);
  FP_ImagePreproc_Step2(expected.data(), 130, 118);
  EXPECT_EQ(read_png("stages/4-balanced.png"), expected);
  Image directions(130, 118);
  Orientation(expected.data(), directions.data(), 130, 118, 3);
  OrientEnhance(expected.data(), directions.data(), 130, 118);
  EXPECT_EQ(read_png("stages/5-enhanced.png"), expected);
}

TEST_F(View, DimsTheBlocksWithoutFinger) {
  quofp_done("view frame.png -o stages --zoom 1");
  const Image area = read_png("stages/2-area.png");
  uint8_t background = 0, coverage = 0;
  FP_GetImageBgValue(frame.data(), 130, 118, &background);
  FP_GetValidArea(frame.data(), 130, 118, background, &coverage, nullptr);
  int32_t valid = 0, dimmed = 0;
  for (int32_t y = 0; y < 112; y += 8) {
    for (int32_t x = 0; x < 128; x += 8) {
      int32_t sum = 0;
      for (int32_t i = 0; i < 64; i++) sum += frame.at(x + i % 8, y + i / 8);
      const bool finger = sum / 64 < background;
      (finger ? valid : dimmed)++;
      // A blue veil makes bright pixels darker; the ring at the centre may cover pixels of the finger.
      EXPECT_TRUE(finger || area.at(x + 4, y + 4) < frame.at(x + 4, y + 4)) << x << "," << y;
    }
  }
  EXPECT_EQ(100 * valid / (valid + dimmed), coverage);
  EXPECT_GT(dimmed, 10);
}

TEST_F(View, LeavesOutWhatTheLibraryRefuses) {
  write_pgm("small.pgm", Image(15, 40, 90));
  expect_exit(1, "view small.pgm -o small --zoom 3", "small.pgm: CreateBubbleImage returned 1");
  EXPECT_EQ(read_png("small/1-raw.png").width, 45);
  EXPECT_TRUE(exists("small/8-defects.png"));
  EXPECT_FALSE(exists("small/9-bubbles.png"));
  expect_exit(2, "view frame.png frame.png -o two");
}
