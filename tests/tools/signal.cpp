// Signal, noise, quality and bubbles of frames: what the documents say, and what the pictures show.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;

class Signal : public Tool {};

// The figures of docs/measuring-noise.md.
TEST_F(Signal, FallsAsTheNoiseOfTheSensorRises) {
  const char* const rows[][2] = {{"0", "223,109,7"},  {"2", "213,127,9"},  {"4", "191,114,8"}, {"8", "140,127,11"},
                                 {"16", "68,122,15"}, {"32", "24,135,27"}, {"48", "12,135,37"}};
  std::string files, expected = "file,snr,signal,noise\n";
  for (const auto& [noise, figures] : rows) {
    const std::string file = std::string("noise-") + noise + ".png";
    synth(file, std::string("--coverage 100 --noise ") + noise);
    files += " " + file;
    expected += file + "," + figures + "\n";
  }
  EXPECT_EQ(quofp_done("snr --format csv" + files), expected);
}

TEST_F(Signal, SaysThatAFrameIsTooSmallAndGoesOn) {
  write_pgm("small.pgm", Image(15, 100, 9));
  write_pgm("flat.pgm", Image(16, 100, 9));
  EXPECT_EQ(expect_exit(1, "snr small.pgm flat.pgm --format csv",
                        "small.pgm: FP_ComputeSNR returned 1: the frame is below 16 x 16 pixels")
                .out,
            "file,snr,signal,noise\nflat.pgm,0,0,1\n");
  const Image none = synth("none.png", "--coverage 100 --noise 14");
  EXPECT_EQ(expect_exit(1, "bubbles none.png small.pgm -o out --format csv").out,
            "file,bubble_pixels,percent,output\nnone.png,0,0.00,out/none.png\n");
  expect_marks(read_png("out/none.png"), none, Bytes(none.pixels.size()).data());
  EXPECT_FALSE(exists("out/small.png"));
}

TEST_F(Signal, ColoursThePixelsOfBubblesAndNoOther) {
  const Image frame = synth("frame.png", "--coverage 100 --bubbles 6 --contrast 50 --size 90x70");
  uint32_t count = 0;
  uint8_t* marks = nullptr;
  ASSERT_EQ(CreateBubbleImage(frame.data(), 90, 70, &count, &marks), QUO_OK);
  ASSERT_GT(count, 0U);
  char percent[16];
  std::snprintf(percent, sizeof percent, "%.2f", 100.0 * count / 6300);
  EXPECT_THAT(rows("bubbles frame.png -o out.png")[1],
              ElementsAre("frame.png", std::to_string(count), percent, "out.png"));
  expect_marks(read_png("out.png"), frame, marks);
  tev_quo_free(marks);
}

TEST_F(Signal, LeavesOutTheGrayOfAFrameWithoutFinger) {
  write_pgm("white.pgm", Image(32, 32, 255));
  EXPECT_EQ(quofp_done("quality white.pgm --format csv"),
            "file,quality,field_quality,area,bright,mean_gray\nwhite.pgm,0,0,0,0,\n");
}
