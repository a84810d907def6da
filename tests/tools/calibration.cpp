// New sensor settings, and the best of several frames.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;
using testing::HasSubstr;

class Gain : public Tool {
 protected:
  // The rows of the old and the new settings.
  std::vector<std::vector<std::string>> settings(const std::string& arguments) const {
    const auto rows = csv_rows(quofp_done("gain " + arguments + " --format csv"));
    EXPECT_EQ(rows.size(), 3U);
    return {rows[1], rows[2]};
  }
};

TEST_F(Gain, DecodesOldAndNewSettingsStageByStage) {
  const auto rows = settings("--mean 100 --settings 5af340 --target 150 --mode 1");
  EXPECT_THAT(rows[0], ElementsAre("old", "5AF340", "2", "3", "5.6", "1", "2", "3", "4", "64", "100.0"));
  EXPECT_THAT(rows[1], ElementsAre("new", "5AF347", "2", "3", "5.6", "1", "2", "3", "4", "71", "145.5"));  // 7 x 6.496
  EXPECT_THAT(settings("--mean 100 --settings 5AF340 --target 150 --mode 0")[1],
              ElementsAre("new", "5AF338", "2", "3", "5.6", "1", "2", "3", "4", "56", "152.0"));
}

TEST_F(Gain, ReadsTheLayoutOfModes2And3) {
  // First stage 5, second 2, and bits that mean nothing there; the new bytes have them where the other modes do.
  const auto rows = settings("--mean 140 --settings F5FF80 --target 120 --mode 2");
  EXPECT_THAT(rows[0], ElementsAre("old", "F5FF80", "0", "5", "8.0", "2", "3", "0", "1", "128", "140.0"));
  EXPECT_THAT(rows[1], ElementsAre("new", "A8FC7A", "0", "5", "8.0", "2", "3", "0", "1", "122", "119.1"));
  EXPECT_EQ(settings("--mean 140 --settings F5FF80 --target 120 --mode 3")[1][9], "133");
}

TEST_F(Gain, MeasuresTheFingerOfAFrame) {
  write_pgm("frame.pgm", Image(64, 64, [](int32_t x, int32_t) { return x < 32 ? 110 : 240; }));
  EXPECT_THAT(settings("frame.pgm --settings 000064 --target 120 --mode 1")[1],
              ElementsAre("new", "0000A8", "0", "0", "1.0", "0", "1", "0", "1", "168", "119.9"));
}

TEST_F(Gain, RefusesAnEmptySensorAndArgumentsThatMakeNoSense) {
  write_pgm("blank.pgm", Image(64, 64, 240));
  const Outcome run = quofp("gain blank.pgm --settings 000064 --target 120 --mode 1");
  EXPECT_EQ(run.exit, 1);
  EXPECT_THAT(run.err, HasSubstr("blank.pgm: tev_AutoGainDacp returned 2: no finger: its mean gray is 255"));
  EXPECT_EQ(run.out, "");
  for (const char* const arguments :
       {"", "--settings 000064 --target 120 --mode 1", "blank.pgm --mean 9 --settings 000064 --target 120 --mode 1",
        "--mean 9 --settings 00064 --target 120 --mode 1", "--mean 9 --settings 00006g --target 120 --mode 1",
        "--mean 256 --settings 000064 --target 120 --mode 1", "--mean 9 --settings 000064 --target 256 --mode 1",
        "--mean 9 --settings 000064 --target 120 --mode -1", "--mean 9 --settings 000064 --target 120"}) {
    EXPECT_EQ(quofp(std::string("gain ") + arguments).exit, 2) << arguments;
  }
  EXPECT_EQ(quofp("gain missing.png --settings 000064 --target 120 --mode 1").exit, 3);
}

class Best : public Tool {
 protected:
  // A frame of 40 x 50 pixels in which the first `count` have the gray `low`, the others the gray `high`.
  void write_levels(const std::string& name, int32_t count, int low, int high) const {
    write_pgm(name, Image(40, 50, [=](int32_t x, int32_t y) { return 40 * y + x < count ? low : high; }));
  }
};

TEST_F(Best, TellsTheClassOfEveryFrame) {
  write_levels("bright-contrast.pgm", 1000, 128, 199);
  write_levels("contrast.pgm", 800, 100, 140);
  write_levels("dark.pgm", 600, 10, 100);
  write_levels("few.pgm", 1000, 100, 255);
  write_levels("flat.pgm", 1000, 100, 110);
  write_levels("flat-bright.pgm", 0, 0, 150);
  write_levels("flat-mid.pgm", 1000, 100, 125);
  write_levels("more-contrast.pgm", 1000, 100, 140);
  write_levels("white.pgm", 0, 0, 255);
  EXPECT_EQ(quofp_done("best bright-contrast.pgm contrast.pgm dark.pgm few.pgm flat.pgm flat-bright.pgm flat-mid.pgm "
                       "more-contrast.pgm white.pgm --format csv"),
            "file,class,pixels,dark,low,mean,deviation,chosen\n"
            "bright-contrast.pgm,contrasted,2000,0.00,0.00,163.50,35.50,no\n"
            "contrast.pgm,contrasted,2000,0.00,40.00,124.00,19.20,no\n"
            "dark.pgm,dark,2000,30.00,70.00,100.00,0.00,no\n"
            "few.pgm,unclassified,1000,0.00,100.00,100.00,0.00,no\n"
            "flat.pgm,flat,2000,0.00,100.00,105.00,5.00,no\n"
            "flat-bright.pgm,flat bright,2000,0.00,0.00,150.00,0.00,no\n"
            "flat-mid.pgm,flat mid,2000,0.00,100.00,112.50,12.50,no\n"
            "more-contrast.pgm,contrasted,2000,0.00,50.00,120.00,20.00,yes\n"
            "white.pgm,unclassified,0,0.00,0.00,0.00,0.00,no\n");
}

// 65536 pixels of one level count as none.
TEST_F(Best, CountsLikeTheLibraryModulo65536) {
  write_pgm("large.pgm", Image(300, 300, [](int32_t x, int32_t y) {
              const int32_t i = 300 * y + x;
              return i < 65536 ? 190 : i < 65536 + 600 ? 14 : i < 65536 + 2000 ? 20 : 255;
            }));
  EXPECT_EQ(csv_rows(quofp_done("best large.pgm --format csv"))[1],
            (std::vector<std::string>{"large.pgm", "dark", "2000", "30.00", "70.00", "20.00", "0.00", "yes"}));
}

TEST_F(Best, TellsWhenNoFrameQualifiesAndLeavesOutOtherSizes) {
  write_levels("flat.pgm", 1000, 100, 110);
  write_levels("contrast.pgm", 800, 100, 140);
  write_pgm("other.pgm", Image(50, 40, 100));
  const Outcome none = quofp("best flat.pgm flat.pgm --format csv");
  EXPECT_EQ(none.exit, 1);
  EXPECT_THAT(none.err, HasSubstr("FP_ChooseBestHist returned 10: no frame qualifies"));
  EXPECT_EQ(csv_rows(none.out).size(), 3U);

  const Outcome mixed = quofp("best flat.pgm other.pgm missing.pgm contrast.pgm --format csv");
  EXPECT_EQ(mixed.exit, 3);
  EXPECT_THAT(mixed.err, HasSubstr("other.pgm: is not of the size of flat.pgm"));
  ASSERT_EQ(csv_rows(mixed.out).size(), 3U);
  EXPECT_EQ(csv_rows(mixed.out)[2].back(), "yes");
  EXPECT_EQ(quofp("best missing.pgm").exit, 3);
}
