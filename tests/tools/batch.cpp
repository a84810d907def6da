// Figures of frames: those of the library, the same rows from every command and however many threads, and long runs
// that lose nothing when interrupted and go on from there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using nlohmann::json;
using testing::HasSubstr;

namespace {

/** Every figure of a frame, in the order of the columns. */
std::vector<int64_t> figures_of(const Image& frame) {
  const int32_t w = frame.width, h = frame.height;
  const auto uw = static_cast<uint32_t>(w), uh = static_cast<uint32_t>(h);
  const uint8_t* const pixels = frame.pixels.data();
  uint8_t background, coverage, mean, quarter[4], score[4], field, snr[3], finger_mean, finger_coverage;
  uint8_t *columns, *rows, *marks, *bubbles;
  uint32_t column_pixels, row_pixels, defects, bubble_pixels;
  int32_t x, y, count;
  quo_block_record* blocks;
  FP_GetImageBgValue(pixels, w, h, &background);
  FP_GetFingerprintInfo(pixels, w, h, &mean, &coverage, &x, &y);
  FP_GetBlockValidArea(pixels, w, h, &quarter[0], &quarter[1], &quarter[2], &quarter[3]);
  FP_ImageQuality(pixels, w, h, &score[0], &score[1], &score[2], &score[3]);
  ImageQuality(pixels, w, h, &field, nullptr, nullptr, nullptr);
  FP_ComputeSNR(pixels, uw, uh, &snr[0], &snr[1], &snr[2]);
  tev_GetFingerMean(pixels, w, h, &finger_mean, &finger_coverage);
  BlockOrientation_MCU(pixels, w, h, &blocks, &count);
  int64_t directions[9] = {}, valid = 0;
  for (int32_t i = 0; i < count; i++) {
    if (blocks[i].direction >= 0) valid++, directions[blocks[i].direction]++;
  }
  Image half(w / 2, h / 2);
  ZoomImg(pixels, half.data(), w, h, 0);
  uint8_t reference = 255;  // the background that defects are judged against
  FindBgValue(half.data(), w / 2, h / 2, &reference);
  CheckBadLine(pixels, w, h, reference, &column_pixels, &row_pixels, &columns, &rows);
  FP_GetBadPixelsNum(pixels, w, h, &defects, &marks);
  CreateBubbleImage(pixels, uw, uh, &bubble_pixels, &bubbles);
  const auto direction = std::max_element(directions + 1, directions + 9) - directions;
  const auto in_order = [](auto... values) { return std::vector<int64_t>{static_cast<int64_t>(values)...}; };
  const std::vector<int64_t> figures =
      in_order(w, h, background, coverage, mean, x, y, quarter[0], quarter[1], quarter[2], quarter[3], score[0], field,
               score[1], score[2], score[3], count, valid, valid - directions[0], direction, snr[0], snr[1], snr[2],
               std::count(columns, columns + w, 1), std::count(rows, rows + h, 1), column_pixels + row_pixels,
               defects - column_pixels - row_pixels, bubble_pixels, finger_mean, finger_coverage,
               GetEnhanceCoef(pixels, uw, uh, 100));
  for (uint8_t* const block : {columns, rows, marks, bubbles}) tev_quo_free(block);
  tev_quo_free(blocks);
  return figures;
}

}  // namespace

class Batch : public Tool {
 protected:
  // A dump of small frames, one of them cut short at the end.
  void make_dump(int count) { quofp_done("synth --size 40x32 --count " + std::to_string(count) + " -o dump.raw"); }

  const std::string reading = " --size 40x32 --count 0 ";
};

TEST_F(Batch, GivesTheFiguresOfTheLibrary) {
  const Image frame = synth("frame.png",
                            "--size 97x120 --seed 5 --contrast 50 --coverage 60 --bad-rows 1 "
                            "--bad-columns 2 --bad-clusters 3 --bubbles 4 --stripes 5");
  std::vector<std::string> expected = {"frame.png"};
  for (const int64_t figure : figures_of(frame)) expected.push_back(std::to_string(figure));
  expected.insert(expected.begin() + 4, "yes");  // background was found
  expected.push_back("");                        // and no error
  EXPECT_EQ(csv_rows(quofp_done("batch frame.png"))[1], expected);
}

TEST_F(Batch, GivesTheRowsOfTheOtherCommandsInTheOrderOfTheFrames) {
  make_dump(40);
  const std::string text = quofp_done("batch dump.raw --jobs 1" + reading);
  EXPECT_EQ(quofp_done("batch dump.raw --jobs 7" + reading), text);
  const Rows cells = csv_rows(text);
  ASSERT_EQ(cells.size(), 41U);
  Rows piped = csv_rows(quofp_done("batch - --jobs 3 <dump.raw" + reading));
  for (size_t row = 1; row < piped.size(); row++) piped[row][0] = "dump.raw" + piped[row][0].substr(1);
  EXPECT_EQ(piped, cells);
  for (const char* const command : {"info", "quality", "snr", "defects"}) {
    const Rows own = csv_rows(quofp(command + (" dump.raw --format csv" + reading)).out);
    for (size_t column = 0; column < own[0].size(); column++) {
      const auto same = std::find(cells[0].begin(), cells[0].end(), own[0][column]);
      // The background that defects are judged against is another one.
      if (same == cells[0].end() || (*same == "background" && own[0][2] == "bad_columns")) continue;
      const auto place = static_cast<size_t>(same - cells[0].begin());
      for (size_t row = 0; row < cells.size(); row++) {
        EXPECT_EQ(cells[row][place], own[row][column]) << command << " " << row << " " << *same;
      }
    }
  }
}

TEST_F(Batch, HasARowForEveryFrameWithItsError) {
  synth("good.png", "--size 40x32");
  write_pgm("tiny.pgm", Image(9, 9, 7));
  write("bad,\"name.png", "x");
  const Outcome run = expect_exit(3, "batch --json good.png 'bad,\"name.png' missing.png tiny.pgm good.png",
                                  "quofp: missing.png: cannot be opened");
  const json rows = json::parse(run.out);
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_EQ(rows[0], rows[4]);
  EXPECT_TRUE(rows[0]["error"].is_null());
  EXPECT_EQ(rows[1]["file"], "bad,\"name.png");
  EXPECT_EQ(rows[1]["error"], "neither PNG nor PGM; --size WxH reads it as raw bytes");
  EXPECT_TRUE(rows[3]["snr"].is_null() && rows[3]["error"].is_null());  // too small for it, which is no error
  EXPECT_EQ(rows[3]["width"], 9);
}

TEST_F(Batch, GoesOnAfterTheCompleteRowsOfAFile) {
  make_dump(12);
  write("odd\n\"name.png", "x");
  const std::string frames = "dump.raw 'odd\n\"name.png' dump.raw" + reading;
  for (const std::string form : {"--csv", "--json"}) {
    expect_exit(3, "batch " + frames + form + " -o whole");
    const std::string rows = read("whole");
    for (size_t length = 0; length <= rows.size(); length += length < 400 ? 60 : 401) {
      write("part", rows.substr(0, length));
      const Outcome run = quofp("batch " + frames + form + " -o part --resume");
      if (length == 0 || length >= rows.find('\n')) {
        EXPECT_GE(run.exit, 1) << form << length;  // the bad frame counts, whichever run met it
        ASSERT_EQ(read("part"), rows) << form << length;
      } else {
        EXPECT_EQ(run.exit, 3) << form << length;  // not even a heading: not a file of this command
      }
    }
    expect_exit(2, "batch 'odd\n\"name.png' dump.raw" + reading + form + " -o whole --resume");
    EXPECT_EQ(read("whole"), rows);
  }
  write("other.csv", "file,width\n");
  expect_exit(3, "batch dump.raw -o other.csv --resume" + reading);
  expect_exit(2, "batch dump.raw --resume" + reading);
}

TEST_F(Batch, LosesNothingWhenInterrupted) {
  make_dump(5);
  // Frames come through a pipe that stays open; once their rows are there the tool gets the signal, as from Ctrl-C.
  const Outcome run = quofp(
      "--version; mkfifo pipe; { cat dump.raw; exec sleep 60; } >pipe & feeder=$!; "
      "'" QUOFP_BINARY "' batch --json -o rows.json - <pipe 2>messages" +
      reading +
      "& tool=$!; n=0; until [ $((n += 1)) -gt 400 ] || [ \"$(grep -c file rows.json)\" = 5 ]; do sleep 0.05; done; "
      "kill -INT $tool; wait $tool; code=$?; kill $feeder; exit $code");
  EXPECT_EQ(run.exit, 130) << read("messages");
  EXPECT_EQ(json::parse(read("rows.json")).size(), 5U);
  EXPECT_THAT(read("messages"), HasSubstr("interrupted after 5 rows; --resume goes on after them"));
}
