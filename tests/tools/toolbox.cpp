// The image operators by name: the library's results, and clear words for what an operator does not take.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;

class Op : public Tool {
 protected:
  Op() { write_pgm("frame.pgm", frame); }

  // Runs an operator on the frame and returns the count that it prints.
  std::string count(const std::string& arguments) const {
    const auto row = rows("op " + arguments + " frame.pgm -o out.png")[1];
    EXPECT_THAT(row, ElementsAre("frame.pgm", arguments.substr(0, arguments.find(' ')), testing::_, "out.png"));
    return row[2];
  }

  Image result(const std::string& arguments) const {
    EXPECT_EQ(count(arguments), "");
    return read_png("out.png");
  }

  const Image frame = [] {
    Random random(1);
    return generate(random, 60, 44, Fill::kRidges);
  }();
};

TEST_F(Op, GivesThePixelsOfTheLibrary) {
  Image expected = frame;
  MedianFilter(expected.data(), expected.data(), 60, 44);
  EXPECT_EQ(result("MedianFilter"), expected);
  AdaptiveThreshold(frame.data(), expected.data(), 60, 44, 9, -2);
  EXPECT_EQ(result("AdaptiveThreshold --window 9 --below-mean -2"), expected);
  ASSERT_EQ(LocalGrayBalance(frame.data(), expected.data(), 60, 44, 9, 7), 1U);
  EXPECT_EQ(result("LocalGrayBalance --window 9x7"), expected);
  Image directions(60, 44);
  ASSERT_EQ(Orientation(frame.data(), directions.data(), 60, 44, 5), 1U);
  expected = frame;
  OrientEnhance(expected.data(), directions.data(), 60, 44);
  EXPECT_EQ(result("OrientEnhance --radius 5"), expected);
  write_pgm("directions.pgm", directions);
  EXPECT_EQ(result("OrientEnhance --directions directions.pgm"), expected);
}

TEST_F(Op, TellsWhatIsCounted) {
  Image output = frame;
  EXPECT_EQ(count("BlockGrayStretch --block 12"),
            std::to_string(BlockGrayStretch(frame.data(), output.data(), 60, 44, 12, 12)));
  EXPECT_EQ(read_png("out.png"), output);
  EXPECT_EQ(count("AreaGrayStretch --window 9x7"),
            std::to_string(AreaGrayStretch(frame.data(), output.data(), 60, 44, 9, 7)));
  output = frame;
  EXPECT_EQ(count("FingerprintImageSegment --threshold 150"),
            std::to_string(FingerprintImageSegment(output.data(), 60, 44, 150)));
  EXPECT_EQ(read_png("out.png"), output);
  write_pgm("frame.pgm", Image(20, 20, 255));
  EXPECT_EQ(count("MyCrossErode --border 3"), "196");
  EXPECT_EQ(count("RegionGrowByEightNeighbor --x 5 --y 6"), "256");
  EXPECT_EQ(count("BinaryThreshold --threshold 200"), "");
}

TEST_F(Op, SaysWhatDoesNotFit) {
  expect_misuse("op", {"", "Sharpen frame.pgm -o out.png", "MedianFilter frame.pgm -o out.png --window 3x3"});
  write_pgm("flat.pgm", Image(30, 30, 90));
  expect_exit(1, "op LocalGrayBalance flat.pgm frame.pgm -o out/",
              "flat.pgm: LocalGrayBalance returned 0: the frame or the window is below 3x3");
  EXPECT_TRUE(exists("out/frame.png"));
  expect_exit(3, "op OrientEnhance frame.pgm -o out.png --directions flat.pgm",
              "flat.pgm: is not of the size of frame.pgm");
}
