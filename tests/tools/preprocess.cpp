// Cleaning and measuring frames: what the library says, row by row and pixel by pixel.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// Whether the picture shows the frame somewhere at this zoom, to the pixel.
bool shows(const Image& picture, const Image& frame, int32_t zoom) {
  const auto matches_at = [&](int32_t x0, int32_t y0) {
    for (int32_t y = 0; y < frame.height * zoom; y++) {
      for (int32_t x = 0; x < frame.width * zoom; x++) {
        if (picture.at(x0 + x, y0 + y) != frame.at(x / zoom, y / zoom)) return false;
      }
    }
    return true;
  };
  for (int32_t y = 0; y <= picture.height - frame.height * zoom; y++) {
    for (int32_t x = 0; x <= picture.width - frame.width * zoom; x++) {
      if (matches_at(x, y)) return true;
    }
  }
  return false;
}

}  // namespace

class Preprocess : public Tool {
 protected:
  // A frame with something for every stage: stripes, low contrast, a border line of its own.
  Preprocess() {
    quofp_done("synth -o frame.png --size 120x97 --coverage 60 --contrast 40 --stripes 9 --seed 5");
    frame = read_png("frame.png");
    for (int32_t x = 0; x < frame.width; x++) frame.at(x, 0) = 0;
    write_pgm("frame.pgm", frame);
  }

  Image cleaned(const std::string& input, const std::string& options) {
    quofp_done("preprocess " + input + " -o out.png " + options);
    return read_png("out.png");
  }

  Image frame;
};

TEST_F(Preprocess, GivesThePixelsOfTheLibrary) {
  Image expected = frame;
  uint8_t area = 0;
  ASSERT_EQ(FP_ImagePreproc(expected.data(), frame.width, frame.height, 0, &area, QUO_BORDER_TOP), QUO_OK);
  EXPECT_EQ(cleaned("frame.pgm", "--borders top"), expected);
  EXPECT_EQ(cleaned("frame.pgm", "--borders top --slice-rows 17"), expected);
  EXPECT_EQ(cleaned("frame.pgm", "--borders top --background 200 --min-coverage 5"), expected);

  cleaned("frame.pgm", "--stage borders --borders top");
  quofp_done("preprocess out.png -o stripes.raw --stage stripes");
  EXPECT_EQ(cleaned("stripes.raw", "--stage balance --size 120x97"), expected);

  Image filled = frame;
  FillBorders(filled.data(), frame.width, frame.height, QUO_BORDER_BOTTOM | QUO_BORDER_LEFT | QUO_BORDER_RIGHT);
  EXPECT_EQ(cleaned("frame.pgm", "--stage borders --borders left,right,bottom"), filled);
}

TEST_F(Preprocess, PrintsWhatItMeasured) {
  uint8_t coverage = 0;
  FP_GetValidArea(frame.data(), frame.width, frame.height, 0, &coverage, nullptr);
  Image striped = frame;
  RemoveVerticalStripes(striped.data(), striped.data(), frame.width, frame.height);
  const auto gain = static_cast<int>(GetEnhanceCoef(striped.data(), 120, 97, 100));
  EXPECT_EQ(quofp_done("preprocess frame.pgm -o out.png --format csv"),
            "file,background,coverage,gain,output\nframe.pgm,237," + std::to_string(coverage) + "," +
                std::to_string(gain) + ",out.png\n");
  EXPECT_THAT(csv_rows(quofp_done("preprocess frame.pgm -o out.png --format csv --background 90 --stage stripes"))[1],
              ElementsAre("frame.pgm", "90", testing::Ne(std::to_string(coverage)), "", "out.png"));
}

TEST_F(Preprocess, RefusesTooLittleFingerWithCode1) {
  const Outcome run = quofp("preprocess frame.pgm -o out.png --min-coverage 90 --format csv");
  EXPECT_EQ(run.exit, 1);
  EXPECT_THAT(run.err,
              testing::MatchesRegex("quofp: frame.pgm: FP_ImagePreproc_Step1 returned 5: the finger covers less "
                                    "of the sensor than required .[0-9]+ %, required 90 %.\n"));
  EXPECT_THAT(csv_rows(run.out)[1], ElementsAre("frame.pgm", "237", testing::_, "", ""));
  EXPECT_FALSE(exists("out.png"));
}

TEST_F(Preprocess, GoesOnAfterABadFileAndTellsByTheExitCode) {
  write("bad.png", "not a picture");
  quofp_done("synth -o little.png --coverage 20");
  const Outcome run = quofp("preprocess bad.png little.png frame.png -o cleaned --min-coverage 40 --format csv");
  EXPECT_EQ(run.exit, 3);
  EXPECT_THAT(run.err, HasSubstr("quofp: bad.png: neither PNG nor PGM"));
  EXPECT_THAT(run.err, HasSubstr("quofp: little.png: FP_ImagePreproc_Step1 returned 5"));
  EXPECT_EQ(csv_rows(run.out).size(), 3U);
  EXPECT_TRUE(exists("cleaned/frame.png"));
  EXPECT_FALSE(exists("cleaned/little.png") || exists("cleaned/bad.png"));
  EXPECT_EQ(quofp("preprocess little.png frame.png -o cleaned --min-coverage 40").exit, 1);
  // Two inputs of one name would overwrite each other.
  EXPECT_EQ(quofp("preprocess frame.png frame.pgm -o cleaned").exit, 2);
}

TEST_F(Preprocess, AnswersOptionsThatDoNotFitWithCode2) {
  for (const char* const options : {"--stage borders", "--stage stripes --min-coverage 10", "--borders top,middle",
                                    "--background 256", "--slice-rows -1", "--stage everything", "--format xml"}) {
    EXPECT_EQ(quofp("preprocess frame.png -o out.png " + std::string(options)).exit, 2) << options;
  }
  EXPECT_FALSE(exists("out.png"));
}

class Info : public Preprocess {};

TEST_F(Info, TellsWhatTheLibraryMeasures) {
  uint8_t bg = 0, mean = 0, coverage = 0, quarter[4] = {};
  int32_t x = 0, y = 0;
  FP_GetImageBgValue(frame.data(), 120, 97, &bg);
  FP_GetFingerprintInfo(frame.data(), 120, 97, &mean, &coverage, &x, &y);
  FP_GetBlockValidArea(frame.data(), 120, 97, &quarter[0], &quarter[1], &quarter[2], &quarter[3]);
  std::ostringstream row;
  row << "frame.pgm,120,97," << +bg << ",yes," << +coverage << ',' << +mean << ',' << x << ',' << y;
  for (const uint8_t value : quarter) row << ',' << +value;
  const std::string heading =
      "file,width,height,background,found,coverage,mean,centre_x,centre_y,top_left,top_right,bottom_left,bottom_"
      "right\n";
  EXPECT_EQ(quofp_done("info frame.pgm --format csv"), heading + row.str() + "\n");
}

TEST_F(Info, ShowsTheSameRowsInEveryFormat) {
  write_pgm("a \"b\",c.pgm", Image(16, 16, 255));
  const std::string arguments = "info 'a \"b\",c.pgm' frame.png ";
  const auto json = nlohmann::json::parse(quofp_done(arguments + "--format json"));
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0]["file"], "a \"b\",c.pgm");
  EXPECT_EQ(json[0]["coverage"], 0);
  EXPECT_TRUE(json[0]["mean"].is_null() && json[0]["centre_x"].is_null() && json[0]["bottom_right"].is_null());
  EXPECT_EQ(json[1]["found"], true);
  EXPECT_EQ(json[1]["width"], 120);
  EXPECT_THAT(quofp_done(arguments + "--format csv"), HasSubstr("\n\"a \"\"b\"\",c.pgm\",16,16,237,yes,0,,,,,,,\n"));
  std::istringstream table(quofp_done(arguments));
  std::string heading, first, second;
  std::getline(table, heading);
  std::getline(table, first);
  std::getline(table, second);
  EXPECT_THAT(heading, testing::StartsWith("file         width  height  background  found  coverage  mean"));
  EXPECT_THAT(first, testing::StartsWith("a \"b\",c.pgm     16      16         237    yes         0     -"));
  EXPECT_EQ(heading.size(), second.size());
}

// A frame without any flat bright corner, and one that is smaller than every block.
TEST_F(Info, SaysWhereThereIsNoBackgroundOrNoBlock) {
  write_pgm("dark.pgm", Image(32, 32, 40));
  write_pgm("tiny.pgm", Image(7, 3, 40));
  const auto rows = csv_rows(quofp_done("info dark.pgm tiny.pgm --format csv"));
  EXPECT_THAT(rows[1],
              ElementsAre("dark.pgm", "32", "32", "255", "no", "100", "40", "12", "12", "40", "40", "40", "40"));
  EXPECT_THAT(rows[2], ElementsAre("tiny.pgm", "7", "3", "255", "no", "0", "", "", "", "", "", "", ""));
}

class Sheet : public Preprocess {};

TEST_F(Sheet, ShowsEveryFrameBeforeAndAfter) {
  write_pgm("tall.pgm", Image(40, 200, [](int32_t x, int32_t y) { return (x * x + y) % 200; }));
  const Image after = cleaned("frame.pgm", "");
  const std::string table = quofp_done("sheet frame.pgm tall.pgm -o sheet.png --zoom 2 --format csv");
  EXPECT_EQ(csv_rows(table).size(), 3U);
  const Image sheet = read_png("sheet.png");
  EXPECT_TRUE(shows(sheet, frame, 2));
  EXPECT_TRUE(shows(sheet, after, 2));
  EXPECT_FALSE(shows(sheet, read_png("frame.png"), 2));  // the border line differs
  EXPECT_TRUE(shows(sheet, cleaned("tall.pgm", ""), 2));
  quofp_done("sheet frame.pgm tall.pgm -o one-column.png --zoom 2 --columns 1");
  EXPECT_GT(read_png("one-column.png").height, sheet.height);
  EXPECT_LT(read_png("one-column.png").width, sheet.width);
}

TEST_F(Sheet, LeavesOutWhatCannotBeShown) {
  write("bad.png", "x");
  const Outcome refused = quofp("sheet frame.pgm -o sheet.png --min-coverage 90 --format csv");
  EXPECT_EQ(refused.exit, 1);
  EXPECT_EQ(csv_rows(refused.out).size(), 2U);
  EXPECT_TRUE(shows(read_png("sheet.png"), frame, 2));
  // File names need not be text.
  const std::string odd = "\xFF\xE0\x80\x80\xED\xA0\x80.pgm";
  write_pgm(odd, frame);
  quofp_done("sheet '" + odd + "' -o odd.png");
  EXPECT_EQ(nlohmann::json::parse(quofp_done("info '" + odd + "' --format json")).size(), 1U);
  EXPECT_EQ(quofp("sheet bad.png -o nothing.png").exit, 3);
  EXPECT_FALSE(exists("nothing.png"));
  EXPECT_EQ(quofp("sheet frame.pgm -o missing/sheet.png").exit, 3);
  EXPECT_EQ(quofp("sheet frame.pgm -o sheet.png --zoom 17").exit, 2);
  EXPECT_EQ(quofp("sheet frame.pgm -o sheet.png --stage borders").exit, 2);
}
