// New sensor settings, and the best of several frames.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;

class Gain : public Tool {};

TEST_F(Gain, DecodesOldAndNewSettingsStageByStage) {
  write_pgm("frame.pgm", Image(64, 64, [](int32_t x, int32_t) { return x < 32 ? 110 : 240; }));
  const struct {
    const char *options, *before, *after;
  } cases[] = {
      {"--mean 100 --settings 5af340 --target 150 --mode 1", "5AF340,2,3,5.6,1,2,3,4,64,100.0",
       "5AF347,2,3,5.6,1,2,3,4,71,145.5"},  // 7 x 6.496
      {"--mean 100 --settings 5AF340 --target 150 --mode 0", "5AF340,2,3,5.6,1,2,3,4,64,100.0",
       "5AF338,2,3,5.6,1,2,3,4,56,152.0"},
      // First stage 5, second 2, and bits that mean nothing there; the new bytes have them where the other modes do.
      {"--mean 140 --settings F5FF80 --target 120 --mode 2", "F5FF80,0,5,8.0,2,3,0,1,128,140.0",
       "A8FC7A,0,5,8.0,2,3,0,1,122,119.1"},
      {"--mean 140 --settings F5FF80 --target 120 --mode 3", "F5FF80,0,5,8.0,2,3,0,1,128,140.0",
       "A8FC85,0,5,8.0,2,3,0,1,133,122.6"},
      {"frame.pgm --settings 000064 --target 120 --mode 1", "000064,0,0,1.0,0,1,0,1,100,110.0",
       "0000A8,0,0,1.0,0,1,0,1,168,119.9"},
  };
  for (const auto& c : cases) {
    const std::string text = quofp_done("gain " + std::string(c.options) + " --format csv");
    EXPECT_EQ(text.substr(text.find('\n')), "\nold," + std::string(c.before) + "\nnew," + c.after + "\n");
  }
}

TEST_F(Gain, RefusesAnEmptySensorAndArgumentsThatMakeNoSense) {
  write_pgm("blank.pgm", Image(64, 64, 240));
  const std::string rest = " --settings 000064 --target 120 --mode 1";
  EXPECT_EQ(
      expect_exit(1, "gain blank.pgm" + rest, "blank.pgm: tev_AutoGainDacp returned 2: no finger: its mean gray is 255")
          .out,
      "");
  expect_exit(3, "gain missing.png" + rest);
  expect_misuse("gain", {rest, "blank.pgm --mean 9" + rest, "--mean 9 --settings 00064 --target 120 --mode 1",
                         "--mean 9 --settings 00006g --target 120 --mode 1"});
}

class Best : public Tool {
 protected:
  // Writes a frame of 40 x 50 pixels in which the first `count` have the gray `low`, the others the gray `high`.
  void write_levels(const std::string& name, int32_t count, int low, int high) const {
    write_pgm(name, Image(40, 50, [=](int32_t x, int32_t y) { return 40 * y + x < count ? low : high; }));
  }
};

TEST_F(Best, TellsTheClassOfEveryFrameAndChooses) {
  const struct {
    const char* name;
    int32_t count, low, high;
    const char* figures;
  } frames[] = {{"bright-contrast.pgm", 1000, 128, 199, "contrasted,2000,0.00,0.00,163.50,35.50,no"},
                {"contrast.pgm", 800, 100, 140, "contrasted,2000,0.00,40.00,124.00,19.20,no"},
                {"dark.pgm", 600, 10, 100, "dark,2000,30.00,70.00,100.00,0.00,no"},
                {"few.pgm", 1000, 100, 255, "unclassified,1000,0.00,100.00,100.00,0.00,no"},
                {"flat.pgm", 1000, 100, 110, "flat,2000,0.00,100.00,105.00,5.00,no"},
                {"flat-bright.pgm", 0, 0, 150, "flat bright,2000,0.00,0.00,150.00,0.00,no"},
                {"flat-mid.pgm", 1000, 100, 125, "flat mid,2000,0.00,100.00,112.50,12.50,no"},
                {"more-contrast.pgm", 1000, 100, 140, "contrasted,2000,0.00,50.00,120.00,20.00,yes"},
                {"white.pgm", 0, 0, 255, "unclassified,0,0.00,0.00,0.00,0.00,no"}};
  std::string names, expected = "file,class,pixels,dark,low,mean,deviation,chosen\n";
  for (const auto& frame : frames) {
    write_levels(frame.name, frame.count, frame.low, frame.high);
    names += std::string(" ") + frame.name;
    expected += std::string(frame.name) + "," + frame.figures + "\n";
  }
  EXPECT_EQ(quofp_done("best --format csv" + names), expected);

  // Like the library it counts modulo 65536.
  write_pgm("large.pgm", Image(300, 300, [](int32_t x, int32_t y) {
              const int32_t i = 300 * y + x;
              return i < 65536 ? 190 : i < 65536 + 600 ? 14 : i < 65536 + 2000 ? 20 : 255;
            }));
  EXPECT_THAT(rows("best large.pgm")[1],
              ElementsAre("large.pgm", "dark", "2000", "30.00", "70.00", "20.00", "0.00", "yes"));
}

TEST_F(Best, TellsWhenNoFrameQualifiesAndLeavesOutOtherSizes) {
  write_levels("flat.pgm", 1000, 100, 110);
  write_levels("contrast.pgm", 800, 100, 140);
  write_pgm("other.pgm", Image(50, 40, 100));
  const Outcome none =
      expect_exit(1, "best flat.pgm flat.pgm --format csv", "FP_ChooseBestHist returned 10: no frame qualifies");
  EXPECT_EQ(csv_rows(none.out).size(), 3U);
  const Outcome mixed = expect_exit(3, "best flat.pgm other.pgm missing.pgm contrast.pgm --format csv",
                                    "other.pgm: is not of the size of flat.pgm");
  ASSERT_EQ(csv_rows(mixed.out).size(), 3U);
  EXPECT_EQ(csv_rows(mixed.out)[2].back(), "yes");
  expect_exit(3, "best missing.pgm");
}
