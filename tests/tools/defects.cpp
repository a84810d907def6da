// Defects of a sensor: what the library counts, decides and repairs, and where the picture shows it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;

// A sensor of odd size with one bad row, one bad column and dead pixels.
class Defects : public Tool {
 protected:
  const Image frame = synth("frame.png",
                            "--size 131x120 --seed 5 --background 235 --bad-rows 1 --bad-columns 1 "
                            "--bad-clusters 3");
};

TEST_F(Defects, CountsDecidesRepairsAndMarksAsTheLibraryDoes) {
  uint32_t pixels = 0;
  uint8_t *marks = nullptr, fail = 1;
  ASSERT_EQ(FP_GetBadPixelsNum(frame.data(), 131, 120, &pixels, &marks), QUO_OK);
  ASSERT_GT(pixels, 251U);
  const auto marked = [marks](int lines, int step, int length, int stride) {  // the first line with marks all along
    int line = 0, at = 0;
    for (; line < lines && at < length; line += at < length) {
      for (at = 0; at < length && marks[line * step + at * stride] != 0;) at++;
    }
    return line;
  };
  std::ostringstream places;
  places << ',' << marked(131, 1, 120, 131) << ',' << marked(120, 131, 131, 1) << '\n';
  Image repaired = frame;
  FP_CheckBadPixelsNum(repaired.data(), 131, 120, 10000, &fail);
  ASSERT_NE(frame, repaired);
  const std::string figures = "frame.png,218,1,1,251," + std::to_string(pixels - 251);
  const std::string heading =
      "file,background,bad_columns,bad_rows,line_pixels,bad_pixels,allowance,pass,repaired,columns_at,rows_at\n";
  EXPECT_EQ(quofp_done("defects frame.png --allowance 251 --repair repaired.png --mark marks.png --format csv"),
            heading + figures + ",251,yes,repaired.png" + places.str());
  EXPECT_EQ(read_png("repaired.png"), repaired);
  expect_marks(read_png("marks.png"), frame, marks);
  tev_quo_free(marks);
  EXPECT_EQ(expect_exit(1, "defects frame.png --allowance 250 --repair no.png --format csv").out,
            heading + figures + ",250,no," + places.str());
  EXPECT_FALSE(exists("no.png"));
}

TEST_F(Defects, GoesThroughALot) {
  synth("sound.png", "--coverage 0");
  const auto rows = nlohmann::json::parse(
      expect_exit(3, "defects sound.png missing.png frame.png --mark m --repair r --format json").out);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_TRUE(rows[0]["pass"] == true && rows[0]["repaired"] == "r/sound.png");
  EXPECT_TRUE(rows[1]["pass"] == false && rows[1]["repaired"].is_null());
  EXPECT_EQ(read_png("r/sound.png"), read_png("sound.png"));
  EXPECT_TRUE(exists("m/sound.png") && exists("m/frame.png") && !exists("r/frame.png"));
  expect_exit(1, "defects sound.png frame.png");
  // Smaller than half-size pixels, lines and background patches need.
  write_pgm("tiny.pgm", Image(1, 1, 7));
  quofp_done("defects tiny.pgm --mark tiny.png --repair tiny.pgm");
  expect_misuse("defects frame.png", {"--allowance -1", "--mark a --repair a"});
  EXPECT_FALSE(exists("a"));
}
