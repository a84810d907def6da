// Cleaning and measuring frames: what the library says, row by row and pixel by pixel.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
  const int32_t width = frame.width * zoom, height = frame.height * zoom;
  for (int32_t y = 0; y <= picture.height - height; y++) {
    for (int32_t x = 0; x <= picture.width - width; x++) {
      int32_t same = 0;
      while (same < width * height &&
             picture.at(x + same % width, y + same / width) == frame.at(same % width / zoom, same / width / zoom)) {
        same++;
      }
      if (same == width * height) return true;
    }
  }
  return false;
}

}  // namespace

class Preprocess : public Tool {
 protected:
  // A frame with something for every stage: stripes, low contrast, a border line of its own.
  Preprocess() : frame(synth("frame.png", "--size 120x97 --coverage 60 --contrast 40 --stripes 9 --seed 5")) {
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
  const std::string gain = std::to_string(static_cast<int>(GetEnhanceCoef(striped.data(), 120, 97, 100)));
  const Rows measured = rows("preprocess frame.pgm -o out.png");
  EXPECT_THAT(measured[0], ElementsAre("file", "background", "coverage", "gain", "output"));
  EXPECT_THAT(measured[1], ElementsAre("frame.pgm", "237", std::to_string(coverage), gain, "out.png"));
  EXPECT_THAT(rows("preprocess frame.pgm -o out.png --background 90 --stage stripes")[1],
              ElementsAre("frame.pgm", "90", testing::Ne(std::to_string(coverage)), "", "out.png"));
}

TEST_F(Preprocess, GoesOnAfterRefusedAndBadFilesAndTellsByTheExitCode) {
  write("bad.png", "not a picture");
  synth("little.png", "--coverage 20");
  const Outcome run =
      expect_exit(3, "preprocess bad.png little.png frame.png -o cleaned --min-coverage 40 --format csv");
  EXPECT_THAT(run.err, testing::MatchesRegex(
                           "quofp: bad.png: neither PNG nor PGM.*\n"
                           "quofp: little.png: FP_ImagePreproc_Step1 returned 5: the finger covers less of the sensor "
                           "than required .[0-9]+ %, required 40 %.\n"));
  const Rows measured = csv_rows(run.out);
  ASSERT_EQ(measured.size(), 3U);
  EXPECT_THAT(measured[1], ElementsAre("little.png", "237", testing::_, "", ""));
  EXPECT_TRUE(exists("cleaned/frame.png"));
  EXPECT_FALSE(exists("cleaned/little.png") || exists("cleaned/bad.png"));
  expect_exit(1, "preprocess little.png frame.png -o cleaned --min-coverage 40");
  // Two inputs of one name would overwrite each other.
  expect_exit(2, "preprocess frame.png frame.pgm -o cleaned");
  expect_misuse("preprocess frame.png -o out.png", {"--stage borders", "--stage stripes --min-coverage 10",
                                                    "--borders top,middle", "--background 256", "--slice-rows -1"});
  EXPECT_FALSE(exists("out.png"));
}

class Info : public Tool {};

TEST_F(Info, ShowsTheSameRowsInEveryFormat) {
  write_pgm("a \"b\",c.pgm", Image(16, 16, 255));
  synth("frame.png", "--size 120x97");
  const std::string arguments = "info 'a \"b\",c.pgm' frame.png --format ";
  const auto json = nlohmann::json::parse(quofp_done(arguments + "json"));
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0]["file"], "a \"b\",c.pgm");
  EXPECT_TRUE(json[0]["coverage"] == 0 && json[0]["mean"].is_null() && json[0]["centre_x"].is_null());
  EXPECT_TRUE(json[1]["found"] == true && json[1]["width"] == 120);
  EXPECT_THAT(quofp_done(arguments + "csv"), HasSubstr("\n\"a \"\"b\"\",c.pgm\",16,16,237,yes,0,,,,,,,\n"));
  std::istringstream table(quofp_done(arguments + "table"));
  std::string heading, first, second;
  std::getline(std::getline(std::getline(table, heading), first), second);
  EXPECT_THAT(heading, testing::StartsWith("file         width  height  background  found  coverage  mean"));
  EXPECT_THAT(first, testing::StartsWith("a \"b\",c.pgm     16      16         237    yes         0     -"));
  EXPECT_EQ(heading.size(), second.size());
}

// A frame without any flat bright corner, and one that is smaller than every block.
TEST_F(Info, SaysWhereThereIsNoBackgroundOrNoBlock) {
  write_pgm("dark.pgm", Image(32, 32, 40));
  write_pgm("tiny.pgm", Image(7, 3, 40));
  EXPECT_EQ(quofp_done("info dark.pgm tiny.pgm --format csv"),
            "file,width,height,background,found,coverage,mean,centre_x,centre_y,top_left,top_right,bottom_left,"
            "bottom_right\ndark.pgm,32,32,255,no,100,40,12,12,40,40,40,40\ntiny.pgm,7,3,255,no,0,,,,,,,\n");
}

class Sheet : public Preprocess {};

TEST_F(Sheet, ShowsEveryFrameBeforeAndAfter) {
  write_pgm("tall.pgm", Image(40, 200, [](int32_t x, int32_t y) { return (x * x + y) % 200; }));
  EXPECT_EQ(rows("sheet frame.pgm tall.pgm -o sheet.png --zoom 2").size(), 3U);
  const Image sheet = read_png("sheet.png");
  EXPECT_TRUE(shows(sheet, frame, 2));
  EXPECT_TRUE(shows(sheet, cleaned("frame.pgm", ""), 2));
  EXPECT_TRUE(shows(sheet, cleaned("tall.pgm", ""), 2));
  EXPECT_FALSE(shows(sheet, read_png("frame.png"), 2));  // the border line differs
  quofp_done("sheet frame.pgm tall.pgm -o one-column.png --zoom 2 --columns 1");
  EXPECT_GT(read_png("one-column.png").height, sheet.height);
  EXPECT_LT(read_png("one-column.png").width, sheet.width);
}

TEST_F(Sheet, LeavesOutWhatCannotBeShown) {
  const Outcome refused = expect_exit(1, "sheet frame.pgm -o sheet.png --min-coverage 90 --format csv");
  EXPECT_EQ(csv_rows(refused.out).size(), 2U);
  EXPECT_TRUE(shows(read_png("sheet.png"), frame, 2));
  // File names need not be text.
  const std::string odd = "\xFF\xE0\x80\x80\xED\xA0\x80.pgm";
  write_pgm(odd, frame);
  quofp_done("sheet '" + odd + "' -o odd.png");
  EXPECT_EQ(nlohmann::json::parse(quofp_done("info '" + odd + "' --format json")).size(), 1U);
  write("bad.png", "x");
  expect_exit(3, "sheet bad.png -o nothing.png");
  EXPECT_FALSE(exists("nothing.png"));
  expect_exit(3, "sheet frame.pgm -o missing/sheet.png");
  expect_misuse("sheet frame.pgm -o sheet.png", {"--stage borders", "--sort-by beauty"});
}

TEST_F(Sheet, StandsInTheOrderOfAFigure) {
  synth("noisy.png", "--noise 40 --coverage 100 --size 64x64");
  synth("clear.png", "--noise 0 --coverage 100 --size 64x64");
  write_pgm("small.pgm", Image(12, 12, 90));
  const auto order = [&](const std::string& options) {
    std::string names;
    for (const auto& row : rows("sheet small.pgm noisy.png clear.png -o s.png " + options)) names += row[0] + " ";
    return names;
  };
  EXPECT_EQ(order(""), "file small.pgm noisy.png clear.png ");
  EXPECT_EQ(order("--sort-by snr"), "file noisy.png clear.png small.pgm ");
  EXPECT_EQ(order("--sort-by snr --descending"), "file clear.png noisy.png small.pgm ");
}
