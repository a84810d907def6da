// The report of frames: one page that holds every frame and refers to nothing outside. Its scripts are tested in a
// browser, by tests/tools/report/browser_test.py.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <regex>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class Report : public Tool {
 protected:
  // The JSON inside a script element; nothing when there is no such element.
  json embedded(const std::string& id) const {
    const std::string page = read("report.html"), open = "<script type=\"application/json\" id=\"" + id + "\">";
    const size_t start = page.find(open);
    if (start == std::string::npos) return {};
    return json::parse(page.substr(start + open.size(), page.find("</script", start) - start - open.size()));
  }

  // Decodes a picture of the report.
  Image picture(const std::string& address) const {
    const std::string prefix = "data:image/png;base64,";
    EXPECT_EQ(address.rfind(prefix, 0), 0U);
    write("picture.txt", address.substr(prefix.size()));
    EXPECT_EQ(
        std::system(
            ("base64 -d '" + path("picture.txt").string() + "' > '" + path("picture.png").string() + "'").c_str()),
        0);
    return read_png("picture.png");
  }
};

TEST_F(Report, HoldsFiguresAndStagesOfEveryFrame) {
  quofp_done("synth -o a.png --size 97x80 --stripes 9 --seed 2 --coverage 70 --bad-columns 1");
  quofp_done("synth -o b.png --seed 3 --contrast 40");
  quofp_done("report a.png b.png -o report.html --borders top,left --title 'Lot <1>'");
  const json data = embedded("report");
  EXPECT_EQ(data["title"], "Lot <1>");
  const Image raw = read_png("a.png");
  uint8_t quality = 0, snr = 0;
  FP_ImageQuality(raw.data(), 97, 80, &quality, nullptr, nullptr, nullptr);
  FP_ComputeSNR(raw.data(), 97, 80, &snr, nullptr, nullptr);
  const json& row = data["frames"][0];
  EXPECT_THAT((std::vector<int>{row["width"], row["height"], row["quality"], row["snr"]}),
              ElementsAre(97, 80, quality, snr));
  EXPECT_EQ(row["result"], "done");
  EXPECT_THAT(data["frames"], testing::SizeIs(2));

  const json details = embedded("frame-0");
  EXPECT_EQ(picture(details["images"]["raw"]), raw);
  Image stage = raw;
  FillBorders(stage.data(), 97, 80, QUO_BORDER_TOP | QUO_BORDER_LEFT);
  EXPECT_EQ(picture(details["images"]["borders"]), stage);
  Image striped = stage;
  RemoveVerticalStripes(stage.data(), striped.data(), 97, 80);
  EXPECT_EQ(picture(details["images"]["stripes"]), striped);
  int offset = 0;  // of column 40, as its darkest pixels show it: they are far from either end of the scale
  for (int32_t y = 0; y < 80; y++) offset += (stage.at(40, y) < 235) * (stage.at(40, y) - striped.at(40, y));
  EXPECT_GT(offset * details["offsets"][40].get<int>(), 0);
  FP_ImagePreproc_Step2(striped.data(), 97, 80);
  EXPECT_EQ(picture(details["images"]["balance"]), striped);

  int64_t valid = 0, pixels = 0, positions = 0;
  for (size_t i = 2; i < details["valid"]["runs"].size(); i += 3) valid += details["valid"]["runs"][i].get<int>();
  EXPECT_EQ(100 * valid / (12 * 10), row["coverage"]);
  for (const json& count : details["histogram"]) pixels += count.get<int>();
  EXPECT_EQ(pixels, 97 * 80);
  EXPECT_EQ(details["profiles"].size(), 6U);
  for (size_t i = 1; i < details["profiles"][0]["runs"].size(); i += 2) {
    positions += details["profiles"][0]["runs"][i].get<int>();
  }
  EXPECT_EQ(positions, 97 - 24);
  EXPECT_EQ(details["blocks"]["direction"].size(), 12U * 10U);
  EXPECT_EQ(details["defects"]["columns"].size(), row["bad_columns"]);
}

TEST_F(Report, TellsTheCornersThatTheLibraryTakesForBackground) {
  // Bright, dark, bright but rough, and one that is background only because another is darker by more than 100.
  Image frame(48, 48, 120);
  const auto fill = [&](int32_t left, int32_t top, int low, int high) {
    for (int32_t y = top; y < top + 8; y++) {
      for (int32_t x = left; x < left + 8; x++) frame.at(x, y) = static_cast<uint8_t>((x + y) % 2 == 0 ? low : high);
    }
  };
  fill(2, 2, 200, 200);
  fill(38, 2, 20, 20);
  fill(2, 38, 180, 220);
  fill(38, 38, 121, 121);
  write_pgm("corners.pgm", frame);
  quofp("report corners.pgm -o report.html");
  std::map<std::string, bool> found;
  const json details = embedded("frame-0");
  for (const json& patch : details["patches"]) found[patch["name"]] = patch["background"];
  EXPECT_EQ(found, (std::map<std::string, bool>{
                       {"top left", true}, {"top right", false}, {"bottom left", false}, {"bottom right", true}}));
}

TEST_F(Report, RefersToNothingOutsideItself) {
  quofp_done("synth -o a.png");
  quofp_done("report a.png -o report.html");
  const std::string page = std::regex_replace(read("report.html"), std::regex("http://www.w3.org/2000/svg"), "");
  EXPECT_THAT(page, Not(testing::AnyOf(HasSubstr("http:"), HasSubstr("https:"), HasSubstr("url("), HasSubstr("@import"),
                                       HasSubstr("<link rel=\"stylesheet\""), HasSubstr("<script src"))));
  EXPECT_THAT(page, Not(HasSubstr("{{")));
}

TEST_F(Report, GivesBadFramesARowWithTheReason) {
  quofp_done("synth -o good.png --coverage 90");
  quofp_done("synth -o bare.png --coverage 10");
  write("junk.png", "x");
  write_pgm("tiny.pgm", Image(12, 12, 90));
  const Outcome run = quofp("report good.png bare.png junk.png tiny.pgm -o report.html --min-coverage 30");
  EXPECT_EQ(run.exit, 3);
  const json frames = embedded("report")["frames"];
  ASSERT_EQ(frames.size(), 4U);
  EXPECT_THAT(
      std::vector<std::string>({frames[0]["result"], frames[1]["result"], frames[2]["result"], frames[3]["result"]}),
      ElementsAre("done", "refused", "unreadable", "done"));
  EXPECT_THAT(frames[1]["problems"][0], HasSubstr("FP_ImagePreproc_Step1 returned 5"));
  EXPECT_TRUE(frames[1]["gain"].is_null());
  EXPECT_FALSE(embedded("frame-1")["images"].contains("balance"));
  EXPECT_THAT(frames[2]["problems"], ElementsAre(HasSubstr("neither PNG nor PGM")));
  EXPECT_FALSE(frames[3].contains("snr") || frames[3].contains("template_size"));  // too small for them
  EXPECT_THAT(run.err, HasSubstr("bare.png: FP_ImagePreproc_Step1"));
  EXPECT_EQ(quofp("report good.png bare.png -o report.html --min-coverage 30").exit, 1);
  EXPECT_EQ(quofp("report good.png -o missing/report.html").exit, 3);
}

TEST_F(Report, SurvivesOddFileNames) {
  const std::string odd = "<!--<script>&\"'.png", foreign = "\xC3\xBC\xFF.png";
  quofp_done("synth -o plain.png");
  for (const std::string& name : {odd, foreign}) std::filesystem::copy_file(path("plain.png"), path(name));
  quofp_done("report ./*.png -o report.html --title '</script><b>'");
  const json data = embedded("report");
  std::vector<std::string> names;
  for (const json& frame : data["frames"]) names.push_back(frame["file"]);
  EXPECT_THAT(names, testing::UnorderedElementsAre("./" + odd, "./\xC3\xBC\xEF\xBF\xBD.png", "./plain.png"));
  EXPECT_EQ(data["title"], "</script><b>");
  EXPECT_FALSE(embedded("frame-2").empty());
}

TEST_F(Report, GivesStagesToTheWorstFramesFirst) {
  quofp_done("synth -o good.png --coverage 95");
  quofp_done("synth -o worse.png --coverage 40 --contrast 30 --noise 20");
  quofp_done("report good.png worse.png -o report.html --details 1");
  const json frames = embedded("report")["frames"];
  ASSERT_LT(frames[1]["quality"], frames[0]["quality"]);
  EXPECT_TRUE(embedded("frame-0").is_null());
  EXPECT_FALSE(embedded("frame-1").is_null());
}
