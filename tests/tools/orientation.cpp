// Orientation pictures: strokes that run along the ridges, and the degrees as a map.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;

class OrientationPicture : public Tool {
 protected:
  // Draws stripes at zoom 8, with a stroke of 12 pixels for each 16 x 16, and tells which share of points of the inner
  // strokes is not the frame's: those at (x, y) from their centres and at the opposite point, in frame pixels.
  double ink_along(const std::function<int32_t(int32_t, int32_t)>& phase, int32_t x, int32_t y) {
    const Image frame(64, 64, [&](int32_t u, int32_t v) { return phase(u, v) / 4 % 2 == 0 ? 100 : 140; });
    write_pgm("stripes.pgm", frame);
    quofp_done("orientation stripes.pgm -o strokes.png --zoom 8 --spacing 16");
    const Image picture = read_png("strokes.png");
    EXPECT_EQ(picture.width, 512);
    double different = 0;
    for (int32_t stroke = 0; stroke < 4; stroke++) {
      for (const int side : {-1, 1}) {
        const int32_t u = (stroke % 2 * 16 + 24 + side * x) * 8, v = (stroke / 2 * 16 + 24 + side * y) * 8;
        different += picture.at(u, v) != frame.at(u / 8, v / 8);
      }
    }
    return different / 8;
  }
};

TEST_F(OrientationPicture, DrawsStrokesAlongTheStripes) {
  const auto vertical = [](int32_t x, int32_t) { return x; };
  EXPECT_EQ(ink_along(vertical, 0, 5), 1);
  EXPECT_EQ(ink_along(vertical, 0, 7), 0);  // beyond the end
  EXPECT_EQ(ink_along(vertical, 5, 0), 0);
  const auto falling = [](int32_t x, int32_t y) { return (x - y + 640) * 3 / 4; };
  EXPECT_EQ(ink_along(falling, 4, 4), 1);
  EXPECT_EQ(ink_along(falling, 4, -4), 0);
}

TEST_F(OrientationPicture, LeavesTheBackgroundAlone) {
  write_pgm("white.pgm", Image(40, 24, 250));
  quofp_done("orientation white.pgm -o white.png --zoom 2");
  EXPECT_THAT(read_png("white.png").pixels, testing::AllOf(testing::SizeIs(80 * 48), testing::Each(250)));
  quofp_done("orientation white.pgm -o white.png --zoom 2 --everywhere");
  EXPECT_THAT(read_png("white.png").pixels, testing::Contains(testing::Lt(200)));
  write_pgm("narrow.pgm", Image(3, 24, 90));  // too narrow for a stroke
  quofp_done("orientation narrow.pgm -o narrow.png --zoom 1");
  EXPECT_THAT(read_png("narrow.png").pixels, testing::Each(90));
}

TEST_F(OrientationPicture, WritesTheDegreesAsAMap) {
  const Image frame = synth("frame.png", "--size 97x80 --seed 6");
  Image field(97, 80);
  for (const int32_t radius : {0, 3, 9}) {
    ASSERT_EQ(Orientation(frame.data(), field.data(), 97, 80, radius), 1U);
    quofp_done("orientation frame.png -o map.raw --map --radius " + std::to_string(radius));
    EXPECT_EQ(read_bytes("map.raw"), field.pixels) << radius;
  }
  quofp_done("orientation frame.png -o map.png --map --radius 9");
  EXPECT_EQ(read_png("map.png"), field);
}

TEST_F(OrientationPicture, AnswersWhatItCannotDrawByItsExitCode) {
  write_pgm("line.pgm", Image(1, 9, 90));
  expect_exit(1, "orientation line.pgm -o a.png", "line.pgm: Orientation returned 0: the frame is smaller than 2x2");
  expect_misuse("orientation line.pgm", {"-o a.png --map --zoom 2", "-o a.png --map --spacing 4", "-o a.png line.pgm"});
  EXPECT_FALSE(exists("a.png"));
}
