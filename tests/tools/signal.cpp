// Signal, noise and bubbles of frames: what the library says, and what the pictures show.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;
using testing::HasSubstr;

class Snr : public Tool {};

// The figures of docs/measuring-noise.md.
TEST_F(Snr, FallsAsTheNoiseOfTheSensorRises) {
  std::string files, expected = "file,snr,signal,noise\n";
  const struct {
    const char *noise, *figures;
  } rows[] = {{"0", "223,109,7"},  {"2", "213,127,9"},  {"4", "191,114,8"}, {"8", "140,127,11"},
              {"16", "68,122,15"}, {"32", "24,135,27"}, {"48", "12,135,37"}};
  for (const auto& row : rows) {
    const std::string file = std::string("noise-") + row.noise + ".png";
    quofp_done("synth -o " + file + " --coverage 100 --noise " + row.noise);
    files += " " + file;
    expected += file + "," + row.figures + "\n";
  }
  EXPECT_EQ(quofp_done("snr" + files + " --format csv"), expected);
}

TEST_F(Snr, SaysThatAFrameIsTooSmallAndGoesOn) {
  write_pgm("small.pgm", Image(15, 100, 9));
  write_pgm("flat.pgm", Image(16, 100, 9));
  const Outcome run = quofp("snr small.pgm flat.pgm --format csv");
  EXPECT_EQ(run.exit, 1);
  EXPECT_THAT(run.err, HasSubstr("small.pgm: FP_ComputeSNR returned 1: the frame is below 16 x 16 pixels"));
  EXPECT_EQ(run.out, "file,snr,signal,noise\nflat.pgm,0,0,1\n");
}

class Bubbles : public Tool {};

TEST_F(Bubbles, MarksThePixelsOfTheLibraryAndNoOther) {
  quofp_done("synth -o frame.png --coverage 100 --bubbles 6 --contrast 50 --size 90x70");
  const Image frame = read_png("frame.png");
  uint32_t count = 0;
  uint8_t* marks = nullptr;
  ASSERT_EQ(CreateBubbleImage(frame.data(), 90, 70, &count, &marks), QUO_OK);
  ASSERT_GT(count, 0U);

  const auto rows = csv_rows(quofp_done("bubbles frame.png -o out.png --format csv"));
  char percent[16];
  std::snprintf(percent, sizeof percent, "%.2f", 100.0 * count / 6300);
  EXPECT_THAT(rows[1], ElementsAre("frame.png", std::to_string(count), percent, "out.png"));
  const Image picture = read_png("out.png");
  const int32_t zoom = picture.width / 90;
  ASSERT_EQ(picture.height, 70 * zoom);
  for (int32_t y = 0; y < picture.height; y++) {
    for (int32_t x = 0; x < picture.width; x++) {
      const bool marked = marks[y / zoom * 90 + x / zoom] != 0;
      ASSERT_EQ(picture.at(x, y) != frame.at(x / zoom, y / zoom), marked) << x << "," << y;
    }
  }
  tev_quo_free(marks);
}

TEST_F(Bubbles, ShowsFramesWithoutAnyAsTheyAre) {
  quofp_done("synth -o frame.png --coverage 100 --noise 14");
  write_pgm("small.pgm", Image(100, 15, 9));
  const Outcome run = quofp("bubbles frame.png small.pgm -o out --format csv");
  EXPECT_EQ(run.exit, 1);
  EXPECT_THAT(csv_rows(run.out)[1], ElementsAre("frame.png", "0", "0.00", "out/frame.png"));
  EXPECT_EQ(csv_rows(run.out).size(), 2U);
  EXPECT_EQ(read_png("out/frame.png").at(5, 9), read_png("frame.png").at(1, 2));
  EXPECT_FALSE(exists("out/small.png"));
}
