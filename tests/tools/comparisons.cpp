// What scripts ask: whether two frames are the same, and whether the library is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;
using testing::HasSubstr;

class Diff : public Tool {
 protected:
  Diff() : a(20, 10, [](int32_t x, int32_t y) { return x * y; }) { write_pgm("a.pgm", a); }

  const Image a;
};

TEST_F(Diff, TellsWhereAndHowMuchFramesDiffer) {
  EXPECT_THAT(rows("diff a.pgm a.pgm")[1], ElementsAre("a.pgm", "a.pgm", "0", "", "", "", "", "0", "", ""));
  Image b = a;
  b.at(7, 2) = static_cast<uint8_t>(b.at(7, 2) + 3);
  b.at(3, 4) = 200;
  b.at(5, 8) = 240;
  write_pgm("b.pgm", b);
  const Outcome run = expect_exit(1, "diff a.pgm b.pgm --format csv -o picture.png");
  EXPECT_THAT(csv_rows(run.out)[1], ElementsAre("a.pgm", "b.pgm", "3", "7", "2", "14", "17", "200", "5", "8"));
  // The frames themselves, then the difference: equal pixels share the darkest colour.
  const Image picture = read_png("picture.png");
  const int32_t right = picture.width - 17, bottom = picture.height - 17, zoom = 8;
  EXPECT_EQ(picture.at(right, bottom), picture.at(right, bottom - 5 * zoom));
  EXPECT_GT(picture.at(right - 14 * zoom, bottom - zoom), 150);
  quofp_done("diff a.pgm b.pgm --crop 8,0,12,10");
}

TEST_F(Diff, HasOneCodeForAllTrouble) {
  write_pgm("small.pgm", Image(20, 9, 0));
  expect_exit(1, "diff a.pgm small.pgm", "a.pgm is 20x10, small.pgm is 20x9");
  for (const char* const arguments : {"a.pgm missing.pgm", "a.pgm", "a.pgm a.pgm -o missing/a.png"}) {
    expect_exit(2, std::string("diff ") + arguments);
  }
}

class SelfTest : public Tool {};

TEST_F(SelfTest, ComparesEveryHashAndGivesAVerdict) {
  const std::string all = quofp_done("selftest");
  EXPECT_THAT(all.substr(all.rfind('\n', all.size() - 2)), HasSubstr("\nThis machine gives the same bytes: all "));
  EXPECT_THAT(all, testing::AllOf(HasSubstr("  equal\n"), testing::Not(HasSubstr("differs"))));
}
