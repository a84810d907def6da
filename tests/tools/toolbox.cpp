// The image operators by name: the library's results, and clear words for what an operator does not take.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;
using testing::HasSubstr;

class Op : public Tool {
 protected:
  Op() : frame_(generate_frame()) { write_pgm("frame.pgm", frame_); }

  static Image generate_frame() {
    Random random(1);
    return generate(random, 60, 44, Fill::kRidges);
  }

  // Runs an operator on the frame and returns its picture.
  Image result(const std::string& arguments) const {
    quofp_done("op " + arguments + " frame.pgm -o out.png");
    return read_png("out.png");
  }

  Image frame_;
};

TEST_F(Op, GivesThePixelsOfTheLibrary) {
  Image expected = frame_;
  MedianFilter(expected.data(), expected.data(), 60, 44);
  EXPECT_EQ(result("MedianFilter"), expected);

  AdaptiveThreshold(frame_.data(), expected.data(), 60, 44, 9, -2);
  EXPECT_EQ(result("AdaptiveThreshold --window 9 --below-mean -2"), expected);

  expected = frame_;
  BlockGrayStretch(frame_.data(), expected.data(), 60, 44, 12, 12);
  EXPECT_EQ(result("BlockGrayStretch --block 12"), expected);

  ASSERT_EQ(LocalGrayBalance(frame_.data(), expected.data(), 60, 44, 9, 7), 1U);
  EXPECT_EQ(result("LocalGrayBalance --window 9x7"), expected);

  Image directions(60, 44);
  ASSERT_EQ(Orientation(frame_.data(), directions.data(), 60, 44, 5), 1U);
  expected = frame_;
  OrientEnhance(expected.data(), directions.data(), 60, 44);
  EXPECT_EQ(result("OrientEnhance --radius 5"), expected);
  write_pgm("directions.pgm", directions);
  EXPECT_EQ(result("OrientEnhance --directions directions.pgm"), expected);
}

TEST_F(Op, TellsWhatIsCounted) {
  const auto count_of = [&](const std::string& arguments) {
    return csv_rows(quofp_done("op " + arguments + " frame.pgm -o out.png --format csv"))[1];
  };
  Image output = frame_;
  const uint32_t stretched = AreaGrayStretch(frame_.data(), output.data(), 60, 44, 9, 7);
  EXPECT_THAT(count_of("AreaGrayStretch --window 9x7"),
              ElementsAre("frame.pgm", "AreaGrayStretch", std::to_string(stretched), "out.png"));
  output = frame_;
  const int32_t foreground = FingerprintImageSegment(output.data(), 60, 44, 150);
  EXPECT_EQ(count_of("FingerprintImageSegment --threshold 150")[2], std::to_string(foreground));
  EXPECT_EQ(read_png("out.png"), output);

  write_pgm("frame.pgm", Image(20, 20, 255));
  EXPECT_EQ(count_of("MyCrossErode --border 3")[2], "196");
  EXPECT_EQ(count_of("RegionGrowByEightNeighbor --x 5 --y 6")[2], "256");
  EXPECT_EQ(count_of("BinaryThreshold --threshold 200")[2], "");
}

TEST_F(Op, SaysWhatDoesNotFit) {
  EXPECT_EQ(quofp("op MedianFilter frame.pgm -o out.png --window 3x3").exit, 2);
  EXPECT_EQ(quofp("op Sharpen frame.pgm -o out.png").exit, 2);
  EXPECT_EQ(quofp("op").exit, 2);

  write_pgm("flat.pgm", Image(30, 30, 90));
  Outcome run = quofp("op LocalGrayBalance flat.pgm frame.pgm -o out/");
  EXPECT_EQ(run.exit, 1);
  EXPECT_THAT(run.err, HasSubstr("flat.pgm: LocalGrayBalance returned 0: the frame or the window is below 3x3"));
  EXPECT_TRUE(exists("out/frame.png"));

  run = quofp("op OrientEnhance frame.pgm -o out.png --directions flat.pgm");
  EXPECT_EQ(run.exit, 3);
  EXPECT_THAT(run.err, HasSubstr("flat.pgm: is not of the size of frame.pgm"));
}
