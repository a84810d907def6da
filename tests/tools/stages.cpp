// Pictures of every stage of a frame: the pixels that the library leaves, and the marks where it finds something.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::HasSubstr;

class View : public Tool {
 protected:
  View() {
    quofp_done("synth -o frame.png --size 130x118 --stripes 12 --bad-rows 1 --background 235");
    frame = read_png("frame.png");
  }

  Image frame;
};

TEST_F(View, ShowsTheStagesAsTheLibraryLeavesThem) {
  const auto rows = csv_rows(quofp_done("view frame.png -o stages --zoom 1 --borders top --format csv"));
  ASSERT_EQ(rows.size(), 11U);
  for (size_t i = 1; i < rows.size(); i++) EXPECT_TRUE(exists(rows[i].back())) << rows[i][0];
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
  uint8_t background = 0, x_found = 0;
  FP_GetImageBgValue(frame.data(), 130, 118, &background);
  int32_t valid = 0, dimmed = 0;
  for (int32_t y = 0; y < 112; y += 8) {
    for (int32_t x = 0; x < 128; x += 8) {
      int32_t sum = 0;
      for (int32_t i = 0; i < 64; i++) sum += frame.at(x + i % 8, y + i / 8);
      (sum / 64 < background ? valid : dimmed)++;
      // A blue veil makes bright pixels darker; what the ring at the centre covers is left out.
      if (sum / 64 >= background) {
        EXPECT_LT(area.at(x + 4, y + 4), frame.at(x + 4, y + 4)) << x << "," << y;
      }
    }
  }
  FP_GetValidArea(frame.data(), 130, 118, background, &x_found, nullptr);
  EXPECT_EQ(100 * valid / (valid + dimmed), x_found);
  EXPECT_GT(dimmed, 10);
}

TEST_F(View, LeavesOutWhatTheLibraryRefuses) {
  write_pgm("small.pgm", Image(15, 40, 90));
  const Outcome run = quofp("view small.pgm -o small --zoom 3");
  EXPECT_EQ(run.exit, 1);
  EXPECT_THAT(run.err, HasSubstr("small.pgm: CreateBubbleImage returned 1"));
  EXPECT_EQ(read_png("small/1-raw.png").width, 45);
  EXPECT_TRUE(exists("small/8-defects.png"));
  EXPECT_FALSE(exists("small/9-bubbles.png"));
  EXPECT_EQ(quofp("view frame.png frame.png -o two").exit, 2);
}

TEST_F(View, HasASheetInTheOrderOfAFigure) {
  quofp_done("synth -o noisy.png --noise 40 --coverage 100 --size 64x64");
  quofp_done("synth -o clear.png --noise 0 --coverage 100 --size 64x64");
  write_pgm("small.pgm", Image(12, 12, 90));
  const auto order = [&](const std::string& options) {
    std::string names;
    for (const auto& row :
         csv_rows(quofp_done("sheet small.pgm noisy.png clear.png -o s.png --format csv " + options))) {
      names += row[0] + " ";
    }
    return names;
  };
  EXPECT_EQ(order(""), "file small.pgm noisy.png clear.png ");
  EXPECT_EQ(order("--sort-by snr"), "file noisy.png clear.png small.pgm ");
  EXPECT_EQ(order("--sort-by snr --descending"), "file clear.png noisy.png small.pgm ");
  EXPECT_EQ(quofp("sheet noisy.png -o s.png --sort-by beauty").exit, 2);
}
