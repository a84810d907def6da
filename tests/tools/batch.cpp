// Long runs: the same rows however many threads, nothing lost when interrupted, and going on from there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/tool.h"

using namespace quo_test;
using testing::HasSubstr;

class Batch : public Tool {
 protected:
  // A dump of small frames, one of them cut short at the end.
  void make_dump(int count) { quofp_done("synth --size 40x32 --count " + std::to_string(count) + " -o dump.raw"); }

  static std::string without_names(std::string rows, const std::string& name) {
    for (size_t at; (at = rows.find(name)) != std::string::npos;) rows.erase(at, name.size());
    return rows;
  }

  const std::string reading = " --size 40x32 --count 0 ";
};

TEST_F(Batch, GivesTheFiguresOfTheOtherCommandsInTheOrderOfTheFrames) {
  make_dump(40);
  const std::string rows = quofp_done("batch dump.raw --jobs 1" + reading);
  EXPECT_EQ(quofp_done("batch dump.raw --jobs 7" + reading), rows);
  EXPECT_EQ(without_names(quofp_done("batch - --jobs 3 <dump.raw" + reading), "-"), without_names(rows, "dump.raw"));
  const auto cells = csv_rows(rows);
  ASSERT_EQ(cells.size(), 41U);
  for (const char* const command : {"info", "quality", "snr", "defects"}) {
    const auto own = csv_rows(quofp_done(command + (" dump.raw --format csv" + reading) + "|| true"));
    for (size_t column = 0; column < own[0].size(); column++) {
      const auto same = std::find(cells[0].begin(), cells[0].end(), own[0][column]);
      // The background that defects are judged against is another one.
      if (same == cells[0].end() || (*same == "background" && own[0][2] == "bad_columns")) continue;
      for (size_t row = 0; row < cells.size(); row++) {
        EXPECT_EQ(cells[row][static_cast<size_t>(same - cells[0].begin())], own[row][column])
            << command << " " << row << " " << *same;
      }
    }
  }
}

TEST_F(Batch, HasARowForEveryFrameWithItsError) {
  quofp_done("synth -o good.png --size 40x32");
  write_pgm("tiny.pgm", Image(9, 9, 7));
  write("bad,\"name.png", "x");
  const std::string frames = " good.png 'bad,\"name.png' missing.png tiny.pgm good.png";
  const Outcome run = quofp("batch --json" + frames);
  EXPECT_EQ(run.exit, 3);
  EXPECT_THAT(run.err, HasSubstr("quofp: missing.png: cannot be opened"));
  const auto rows = nlohmann::json::parse(run.out);
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_EQ(rows[0], rows[4]);
  EXPECT_TRUE(rows[0]["error"].is_null());
  EXPECT_EQ(rows[1]["file"], "bad,\"name.png");
  EXPECT_EQ(rows[1]["error"], "neither PNG nor PGM; --size WxH reads it as raw bytes");
  EXPECT_TRUE(rows[3]["snr"].is_null());  // too small for it, which is no error
  EXPECT_TRUE(rows[3]["error"].is_null());
  EXPECT_EQ(rows[3]["width"], 9);
}

TEST_F(Batch, GoesOnAfterTheCompleteRowsOfAFile) {
  make_dump(12);
  write("odd\n\"name.png", "x");
  const std::string frames = "dump.raw 'odd\n\"name.png' dump.raw" + reading;
  for (const std::string form : {"--csv", "--json"}) {
    const Outcome whole = quofp("batch " + frames + form + " -o whole");
    ASSERT_EQ(whole.exit, 3);
    const std::string rows = read("whole");
    for (size_t length = 0; length <= rows.size(); length += length < 400 ? 60 : 401) {
      write("part", rows.substr(0, length));
      const bool begun = length >= rows.find('\n');
      const Outcome run = quofp("batch " + frames + form + " -o part --resume");
      if (length == 0 || begun) {
        EXPECT_GE(run.exit, 1) << form << length;  // the bad frame counts, whichever run met it
        ASSERT_EQ(read("part"), rows) << form << length;
      } else {
        EXPECT_EQ(run.exit, 3) << form << length;  // not even a heading: not a file of this command
      }
    }
    EXPECT_EQ(quofp("batch 'odd\n\"name.png' dump.raw" + reading + form + " -o whole --resume").exit, 2);
    EXPECT_EQ(read("whole"), rows);
  }
  write("other.csv", "file,width\n");
  EXPECT_EQ(quofp("batch dump.raw -o other.csv --resume" + reading).exit, 3);
  EXPECT_EQ(quofp("batch dump.raw --resume" + reading).exit, 2);
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
  EXPECT_EQ(nlohmann::json::parse(read("rows.json")).size(), 5U);
  EXPECT_THAT(read("messages"), HasSubstr("interrupted after 5 rows; --resume goes on after them"));
}
