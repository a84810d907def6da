// Frames that arrive in a folder: each has its line once, when its file is complete.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/tool.h"

using namespace quo_test;

class Watch : public Tool {
 protected:
  // Runs a shell script while the tool watches the folder "in", then ends the tool as Ctrl-C does. The script can wait
  // until a number of lines are there.
  int watch(const std::string& options, const std::string& script) const {
    return quofp("--version >/dev/null; mkdir -p in; '" QUOFP_BINARY "' watch in --settle 300 " + options +
                 " >lines 2>messages & tool=$!; "
                 "wait_for() { n=0; until [ \"$(wc -l <lines)\" -ge $1 ] || [ $((n += 1)) -gt 400 ]; do sleep 0.05; "
                 "done; }; " +
                 script + "; kill -INT $tool; wait $tool")
        .exit;
  }
};

TEST_F(Watch, MeasuresEachFrameOnceWhenItsFileIsComplete) {
  quofp_done("synth -o frame.png --size 64x64; mkdir in; cp frame.png in/old.png");
  // One is written in two parts with a pause longer than the settling time.
  const int exit =
      watch("--format csv",
            "wait_for 1; sleep 0.5; head -c 900 frame.png >in/slow.png; cp frame.png in/quick.png; wait_for 2; "
            "sleep 0.4; cat frame.png >in/slow.png; echo text >in/notes.txt; wait_for 3; "
            "cp frame.png in/quick.png; wait_for 4");
  EXPECT_EQ(exit, 0) << read("messages");
  EXPECT_EQ(read("messages"), "");
  const Rows rows = csv_rows(read("lines")), batch = csv_rows(quofp_done("batch in/quick.png in/slow.png"));
  EXPECT_THAT(rows, testing::ElementsAre(batch[0], batch[1], batch[2], batch[1]));  // the quick one changed
}

TEST_F(Watch, EndsByItselfWhenAskedForWhatIsThere) {
  quofp_done("synth -o in.png --size 64x64; mkdir in; cp in.png in/b.png; cp in.png in/a.png; echo x >in/bad.png");
  const Outcome run = expect_exit(3, "watch in --once --settle 50");
  EXPECT_THAT(run.out, testing::MatchesRegex("in/a.png  64x64  coverage .*\nin/b.png  64x64  coverage .*\n"));
  EXPECT_EQ(run.err, "quofp: in/bad.png: neither PNG nor PGM; --size WxH reads it as raw bytes\n");
  expect_exit(3, "watch missing --once");
}
