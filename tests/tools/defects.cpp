// Defects of a sensor: what the library counts, decides and repairs, and where the picture shows it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;

// A sensor of odd size with one bad row, one bad column and dead pixels, and the same one after the repair.
class Defects : public Tool {
 protected:
  Defects() {
    quofp_done(
        "synth -o frame.png --size 131x120 --seed 5 --background 235 --bad-rows 1 --bad-columns 1 --bad-clusters 3");
    frame = repaired = read_png("frame.png");
    uint8_t* marks = nullptr;
    FP_GetBadPixelsNum(frame.data(), 131, 120, &pixels, &marks);
    marked.assign(marks, marks + frame.pixels.size());
    tev_quo_free(marks);
    uint8_t fail = 1;
    FP_CheckBadPixelsNum(repaired.data(), 131, 120, 10000, &fail);
  }

  Image frame, repaired;
  uint32_t pixels = 0;
  std::vector<uint8_t> marked;
};

TEST_F(Defects, CountsDecidesAndRepairsAsTheLibraryDoes) {
  ASSERT_GT(pixels, 251U);
  ASSERT_NE(frame, repaired);
  const std::string bad_pixels = std::to_string(pixels - 251);
  EXPECT_EQ(quofp_done("defects frame.png --allowance 251 --repair repaired.png --format csv"),
            "file,background,bad_columns,bad_rows,line_pixels,bad_pixels,allowance,pass,repaired\n"
            "frame.png,218,1,1,251," +
                bad_pixels + ",251,yes,repaired.png\n");
  EXPECT_EQ(read_png("repaired.png"), repaired);

  const Outcome failed = quofp("defects frame.png --allowance 250 --repair no.png --format csv");
  EXPECT_EQ(failed.exit, 1);
  EXPECT_THAT(csv_rows(failed.out)[1], ElementsAre("frame.png", "218", "1", "1", "251", bad_pixels, "250", "no", ""));
  EXPECT_FALSE(exists("no.png"));
}

TEST_F(Defects, ColoursTheMarkedPixelsAndNoOthers) {
  quofp("defects frame.png --mark marks.png");
  const Image picture = read_png("marks.png");
  const int32_t zoom = picture.width / 131;
  ASSERT_EQ(picture.width, 131 * zoom);
  ASSERT_EQ(picture.height, 120 * zoom);
  for (int32_t y = 0; y < picture.height; y++) {
    for (int32_t x = 0; x < picture.width; x++) {
      const bool is_marked = marked[static_cast<size_t>(y / zoom * 131 + x / zoom)] != 0;
      ASSERT_EQ(picture.at(x, y) != frame.at(x / zoom, y / zoom), is_marked) << x << "," << y;
    }
  }
}

TEST_F(Defects, GoesThroughALot) {
  quofp_done("synth -o sound.png --coverage 0");
  const Outcome run = quofp("defects sound.png missing.png frame.png --mark m --repair r --format json");
  EXPECT_EQ(run.exit, 3);
  const auto rows = nlohmann::json::parse(run.out);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0]["pass"], true);
  EXPECT_EQ(rows[0]["repaired"], "r/sound.png");
  EXPECT_EQ(rows[1]["pass"], false);
  EXPECT_TRUE(rows[1]["repaired"].is_null());
  EXPECT_EQ(read_png("r/sound.png"), read_png("sound.png"));
  EXPECT_TRUE(exists("m/sound.png") && exists("m/frame.png") && !exists("r/frame.png"));
  EXPECT_EQ(quofp("defects sound.png frame.png").exit, 1);
  // Smaller than half-size pixels, lines and background patches need.
  write_pgm("tiny.pgm", Image(1, 1, 7));
  EXPECT_EQ(quofp("defects tiny.pgm --mark tiny.png --repair tiny.pgm").exit, 0);
}

TEST_F(Defects, AnswersMisuseWithCode2) {
  for (const char* const options : {"--allowance -1", "--allowance many", "--mark a --repair a"}) {
    EXPECT_EQ(quofp("defects frame.png " + std::string(options)).exit, 2) << options;
  }
  EXPECT_FALSE(exists("a"));
}
