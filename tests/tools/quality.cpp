// Quality scores and orientation pictures: what the library says, and strokes that run along the ridges.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;

class Quality : public Tool {};

TEST_F(Quality, PrintsTheScoresOfTheLibrary) {
  quofp_done("synth -o frame.png --size 120x97 --coverage 70 --seed 3");
  const Image frame = read_png("frame.png");
  uint8_t sensor[4] = {}, field = 0;
  FP_ImageQuality(frame.data(), 120, 97, &sensor[0], &sensor[1], &sensor[2], &sensor[3]);
  ImageQuality(frame.data(), 120, 97, &field, nullptr, nullptr, nullptr);
  ASSERT_NE(sensor[0], field);
  write_pgm("white.pgm", Image(32, 32, 255));
  write("bad.png", "x");
  const Outcome run = quofp("quality bad.png frame.png white.pgm --format csv");
  EXPECT_EQ(run.exit, 3);
  const auto text = [](uint8_t value) { return std::to_string(value); };
  EXPECT_THAT(csv_rows(run.out),
              ElementsAre(ElementsAre("file", "quality", "field_quality", "area", "bright", "mean_gray"),
                          ElementsAre("frame.png", text(sensor[0]), text(field), text(sensor[1]), text(sensor[2]),
                                      text(sensor[3])),
                          ElementsAre("white.pgm", "0", "0", "0", "0", "")));
  const auto json = nlohmann::json::parse(quofp_done("quality frame.png white.pgm --format json"));
  EXPECT_EQ(json[0]["field_quality"], field);
  EXPECT_TRUE(json[1]["mean_gray"].is_null());
}

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
    double different = 0, count = 0;
    for (int32_t row = 1; row < 3; row++) {
      for (int32_t column = 1; column < 3; column++) {
        for (const int side : {-1, 1}) {
          const int32_t u = (column * 16 + 8 + side * x) * 8, v = (row * 16 + 8 + side * y) * 8;
          different += picture.at(u, v) != frame.at(u / 8, v / 8);
          count++;
        }
      }
    }
    return different / count;
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
  quofp_done("synth -o frame.png --size 97x80 --seed 6");
  const Image frame = read_png("frame.png");
  Image field(97, 80);
  for (const int32_t radius : {0, 3, 9}) {
    ASSERT_EQ(Orientation(frame.data(), field.data(), 97, 80, radius), 1U);
    quofp_done("orientation frame.png -o map.raw --map --radius " + std::to_string(radius));
    EXPECT_EQ(read("map.raw"), std::string(field.pixels.begin(), field.pixels.end())) << radius;
  }
  quofp_done("orientation frame.png -o map.png --map --radius 9");
  EXPECT_EQ(read_png("map.png"), field);
}

TEST_F(OrientationPicture, AnswersWhatItCannotDrawByItsExitCode) {
  write_pgm("line.pgm", Image(1, 9, 90));
  const Outcome run = quofp("orientation line.pgm -o line.png");
  EXPECT_EQ(run.exit, 1);
  EXPECT_THAT(run.err, testing::HasSubstr("line.pgm: Orientation returned 0: the frame is smaller than 2x2"));
  for (const char* const options :
       {"", "-o a.png --map --zoom 2", "-o a.png --map --spacing 4", "-o a.png --spacing 1", "-o a.png line.pgm"}) {
    EXPECT_EQ(quofp("orientation line.pgm " + std::string(options)).exit, 2) << options;
  }
  EXPECT_FALSE(exists("line.png") || exists("a.png"));
}
