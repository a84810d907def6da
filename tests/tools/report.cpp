// The report of frames: one page that holds every frame and refers to nothing outside. Its scripts are tested in a
// browser, by tests/tools/report/browser_test.py.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <regex>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

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
    quofp_done("--version; base64 -d picture.txt >picture.png");
    return read_png("picture.png");
  }
};

TEST_F(Report, HoldsFiguresAndStagesOfEveryFrame) {
  const Image raw = synth("a.png", "--size 97x80 --stripes 9 --seed 2 --coverage 70 --bad-columns 1");
  synth("b.png", "--seed 3 --contrast 40");
  quofp_done("report a.png b.png -o report.html --borders top,left --title 'Lot <1>'");
  const json data = embedded("report"), row = data["frames"][0], details = embedded("frame-0");
  EXPECT_EQ(data["title"], "Lot <1>");
  EXPECT_THAT(data["frames"], testing::SizeIs(2));
  EXPECT_EQ(row["result"], "done");
  const Rows batch = csv_rows(quofp_done("batch a.png"));
  for (const char* const figure : {"width", "height", "coverage", "quality", "snr", "bad_columns"}) {
    const auto place = std::find(batch[0].begin(), batch[0].end(), figure) - batch[0].begin();
    EXPECT_EQ(row[figure].dump(), batch[1][static_cast<size_t>(place)]) << figure;
  }

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

  // Numbers at every `step`-th place from `first` on.
  const auto sum = [](const json& numbers, size_t first, size_t step) {
    int64_t total = 0;
    for (size_t i = first; i < numbers.size(); i += step) total += numbers[i].get<int64_t>();
    return total;
  };
  EXPECT_EQ(100 * sum(details["valid"]["runs"], 2, 3) / (12 * 10), row["coverage"]);
  EXPECT_EQ(sum(details["histogram"], 0, 1), 97 * 80);
  EXPECT_EQ(details["profiles"].size(), 6U);
  EXPECT_EQ(sum(details["profiles"][0]["runs"], 1, 2), 97 - 24);
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
  synth("a.png");
  quofp_done("report a.png -o report.html");
  const std::string page = std::regex_replace(read("report.html"), std::regex("http://www.w3.org/2000/svg"), "");
  for (const char* const outside :
       {"http:", "https:", "url(", "@import", "<link rel=\"stylesheet\"", "<script src", "{{"}) {
    EXPECT_THAT(page, testing::Not(HasSubstr(outside)));
  }
}

TEST_F(Report, GivesBadFramesARowWithTheReason) {
  synth("good.png", "--coverage 90");
  synth("bare.png", "--coverage 10");
  write("junk.png", "x");
  write_pgm("tiny.pgm", Image(12, 12, 90));
  expect_exit(3, "report good.png bare.png junk.png tiny.pgm -o report.html --min-coverage 30",
              "bare.png: FP_ImagePreproc_Step1");
  const json frames = embedded("report")["frames"];
  std::vector<std::string> results;
  for (const json& frame : frames) results.push_back(frame["result"]);
  ASSERT_THAT(results, ElementsAre("done", "refused", "unreadable", "done"));
  EXPECT_THAT(frames[1]["problems"][0], HasSubstr("FP_ImagePreproc_Step1 returned 5"));
  EXPECT_TRUE(frames[1]["gain"].is_null());
  EXPECT_FALSE(embedded("frame-1")["images"].contains("balance"));
  EXPECT_THAT(frames[2]["problems"], ElementsAre(HasSubstr("neither PNG nor PGM")));
  EXPECT_FALSE(frames[3].contains("snr") || frames[3].contains("template_size"));  // too small for them
  // The stages go to the worst frames first.
  expect_exit(1, "report good.png bare.png -o report.html --min-coverage 30 --details 1");
  EXPECT_TRUE(embedded("frame-0").is_null());
  EXPECT_FALSE(embedded("frame-1").is_null());
  expect_exit(3, "report good.png -o missing/report.html");
}

TEST_F(Report, SurvivesOddFileNames) {
  const std::string odd = "<!--<script>&\"'.png", foreign = "\xC3\xBC\xFF.png";
  synth("plain.png");
  for (const std::string& name : {odd, foreign}) std::filesystem::copy_file(path("plain.png"), path(name));
  quofp_done("report ./*.png -o report.html --title '</script><b>'");
  const json data = embedded("report");
  std::vector<std::string> names;
  for (const json& frame : data["frames"]) names.push_back(frame["file"]);
  EXPECT_THAT(names, testing::UnorderedElementsAre("./" + odd, "./\xC3\xBC\xEF\xBF\xBD.png", "./plain.png"));
  EXPECT_EQ(data["title"], "</script><b>");
  EXPECT_FALSE(embedded("frame-2").empty());
}
