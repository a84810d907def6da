// Templates as files: writing, showing and matching them, and what is said about damaged ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

Bytes template_of(const Image& frame) {
  uint8_t* sp_template = nullptr;
  uint32_t size = 0;
  EXPECT_EQ(FP_ExtractSpTemplates(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height),
                                  &sp_template, &size),
            QUO_OK);
  const Bytes bytes(sp_template, sp_template + size);
  FP_DeleteSpTemplates(&sp_template);
  return bytes;
}

// A small frame with runs of all three values.
Image small_frame() {
  return Image(30, 29, [](int32_t x, int32_t y) { return x == 16 ? 254 : (x + y) / 2 % 2 == 0 ? 60 : 180; });
}

// Whether some row of the picture holds the profile, dark, saturated and bright as ever lighter blocks of `zoom`
// pixels.
bool shows_profile(const Image& picture, const Bytes& profile, int32_t zoom) {
  std::string wanted;
  for (const uint8_t value : profile) wanted.append(static_cast<size_t>(zoom), static_cast<char>(value));
  wanted = wanted.substr(1, wanted.size() - 2);  // the outline covers the ends
  for (int32_t y = 0; y < picture.height; y++) {
    std::string row;
    for (int32_t x = 0; x < picture.width; x++) {
      const uint8_t gray = picture.at(x, y);
      row += static_cast<char>(gray < 60 ? 0 : gray < 200 ? 254 : 255);
    }
    if (row.find(wanted) != std::string::npos) return true;
  }
  return false;
}

}  // namespace

class Templates : public Tool {
 protected:
  // Two exposures each of some fingers, as lot/finger-<seed>-<exposure>.png.
  void make_lot(int fingers, const std::string& options = "") const {
    std::filesystem::create_directory(path("lot"));
    for (int i = 0; i < 2 * fingers; i++) {
      std::ostringstream name;
      name << "lot/finger-" << i / 2 + 1 << '-' << i % 2 + 1 << ".png --seed " << i / 2 + 1;
      quofp_done("synth -o " + name.str() + " --noise-seed " + std::to_string(i % 2 + 1) + options);
    }
  }
};

TEST_F(Templates, AreTheBytesOfTheLibrary) {
  write_pgm("a.pgm", small_frame());
  const Image b = synth("b.png", "--size 131x117");
  quofp_done("template a.pgm -o a.sp");
  EXPECT_EQ(read_bytes("a.sp"), template_of(small_frame()));
  EXPECT_THAT(rows("template a.pgm b.png -o all"),
              ElementsAre(ElementsAre("file", "width", "height", "bytes", "output"),
                          ElementsAre("a.pgm", "30", "29", "60", "all/a.sp"),
                          ElementsAre("b.png", "131", "117", testing::_, "all/b.sp")));
  EXPECT_EQ(read_bytes("all/b.sp"), template_of(b));

  write_pgm("flat.pgm", Image(100, 24, 9));
  expect_exit(1, "template flat.pgm -o flat.sp", "wider and higher than 24 pixels");
  EXPECT_FALSE(exists("flat.sp"));
  write_pgm("large.pgm", Image(200, 185, 9));
  expect_exit(0, "template large.pgm -o large.sp", "note: large.pgm: width + height is above 384");
  expect_exit(1, "match large.pgm large.pgm");
}

TEST_F(Templates, ShowTheirSectionsRunsAndProfiles) {
  write("a.sp", template_of(small_frame()));
  const Rows sections = rows("show a.sp");
  ASSERT_EQ(sections.size(), 7U);
  EXPECT_THAT(sections[0], ElementsAre("section", "line", "length", "runs", "dark", "bright", "saturated", "bytes"));
  EXPECT_THAT(sections[2], ElementsAre("2", "row 14", "6", "4", "2", "3", "1", "10"));
  EXPECT_THAT(sections[6], ElementsAre("6", "column 18", "5", "3", "2", "3", "0", "8"));
  EXPECT_THAT(quofp_done("show a.sp"), HasSubstr("a.sp: version 1, payload 45, 60 bytes, frame 30x29\n"));
  const Rows runs = rows("show a.sp --runs");
  EXPECT_EQ(runs.size(), 1U + 22U);
  EXPECT_THAT(runs[0], ElementsAre("section", "position", "value", "count"));
  EXPECT_THAT(runs[6], ElementsAre("2", "2", "0", "2"));

  write_pgm("a.pgm", small_frame());
  EXPECT_EQ(rows("show a.pgm -o picture.png"), sections);
  const Image picture = read_png("picture.png");
  EXPECT_TRUE(shows_profile(picture, {255, 255, 0, 0, 254, 255}, 8));  // row 14
  EXPECT_FALSE(shows_profile(picture, {255, 0, 255, 0, 255, 0}, 8));
}

TEST_F(Templates, SayWhatIsWrongWithThem) {
  const struct {
    Bytes bytes;
    std::string message;
  } cases[] = {
      {{}, "0 bytes, it ends within the header"},
      {{1, 0}, "2 bytes, it ends within the header"},
      {{1, 0, 4, 0, 2, 5}, "6 bytes, it ends within section 1"},
      {{1, 0, 3, 0, 1, 5, 1}, "7 bytes, it ends within the trailer"},
      {{0, 0, 3, 0, 1, 5, 1}, "7 bytes, it ends within the trailer"},
      {{1, 3, 253, 0, 1}, "at byte 1, the payload length 1021 is above 1020"},
      {{1, 0, 4, 0, 1, 5, 1, 0, 0, 1}, "at byte 7, section 2 does not fit in the payload length: 1 byte"},
      {{1, 0, 4, 0, 3, 5, 3, 1}, "at byte 3, section 1 of 3 positions does not fit in the payload length: 2 bytes"},
      {{1, 0, 4, 0, 2, 5, 0, 1}, "at byte 6, a run of section 1 has a count of 0"},
      {{1, 0, 4, 0, 2, 5, 9, 1}, "at byte 6, a run of section 1 has a count of 9, but 2 bytes"},
      {{1, 0, 4, 0, 2, 5, 2, 7}, "at byte 7, the trailer 7 is not the version 1"},
      {{1, 0, 4, 0, 2, 5, 2, 1, 1, 1}, "at byte 8, 2 bytes follow the trailer"},
  };
  write("good.sp", template_of(small_frame()));
  for (const auto& c : cases) {
    write("bad.sp", c.bytes);
    const std::string message = "quofp: bad.sp: not an Sp template: " + c.message;
    EXPECT_EQ(quofp("match good.sp bad.sp").err, expect_exit(3, "show bad.sp -o picture.png", message).err);
  }
  EXPECT_FALSE(exists("picture.png"));
}

TEST_F(Templates, MatchWithFramesAndTemplatesAlike) {
  const Image a = synth("a.png", "--seed 3"), b = synth("b.png", "--seed 3 --noise-seed 8");
  synth("c.png", "--size 120x200");
  quofp_done("template a.png -o a.sp");
  write("b.raw", b.pixels);
  uint32_t score = 0;
  ASSERT_EQ(FP_MatchSpTemplates(template_of(a).data(), template_of(b).data(), &score), QUO_OK);
  for (const char* const pair : {"a.sp b.png", "a.png b.png", "a.sp b.raw --size 160x160"}) {
    EXPECT_EQ(rows(std::string("match ") + pair)[1].back(), std::to_string(score)) << pair;
  }
  EXPECT_EQ(quofp_done("match a.sp a.png --format csv"), "first,second,score\na.sp,a.png,100\n");
  expect_exit(1, "match a.sp c.png", "FP_MatchSpTemplates returned 8: the templates are of frames of different sizes");
  expect_misuse("match", {"", "a.sp", "a.sp a.sp a.sp", "--matrix . a.sp a.sp", "a.sp a.sp --summary"});
}

TEST_F(Templates, MatchAllOfAFolderWithOneAnother) {
  make_lot(1, " --size 64x48");
  synth("lot/finger-10-1.png", "--seed 10 --size 64x48");
  synth("two.png", "--seed 2 --size 64x48");
  quofp_done("template two.png -o lot/finger-2-1.sp");
  const Rows all = rows("match --matrix lot -o matrix.png");
  const std::string names[] = {"lot/finger-1-1.png", "lot/finger-1-2.png", "lot/finger-2-1.sp", "lot/finger-10-1.png"};
  Rows pairs = {{"first", "second", "score"}};
  for (size_t i = 0; i < 4; i++) {
    for (size_t j = i + 1; j < 4; j++) pairs.push_back(rows("match " + names[i] + " " + names[j])[1]);
  }
  EXPECT_EQ(all, pairs);
  // Four cells of 40 pixels: on the diagonal the brightest colour there is.
  const Image picture = read_png("matrix.png");
  EXPECT_GT(picture.width, 160 + 100);
  EXPECT_GT(std::count_if(picture.pixels.begin(), picture.pixels.end(), [](uint8_t p) { return p > 200 && p < 235; }),
            4 * 40 * 40 / 2);

  synth("lot/other-1.png", "--size 48x64");
  write("lot/notes.txt", "no template");
  const Outcome run = expect_exit(3, "match --matrix lot --format csv", "lot/notes.txt: not an Sp template");
  EXPECT_THAT(run.err, HasSubstr("4 of 10 pairs are of frames of different sizes"));
  EXPECT_EQ(csv_rows(run.out).size(), 11U);
  EXPECT_THAT(csv_rows(run.out)[4], ElementsAre("lot/finger-1-1.png", "lot/other-1.png", ""));
  expect_exit(3, "match --matrix missing");
  expect_exit(3, "match --matrix .");  // one frame alone
}

TEST_F(Templates, TellSameFromOtherFingers) {
  make_lot(4);
  const Rows summary = rows("match --matrix lot --summary");
  ASSERT_EQ(summary.size(), 3U);
  EXPECT_THAT(summary[0], ElementsAre("finger", "pairs", "lowest", "mean", "highest"));
  EXPECT_TRUE(summary[1][1] == "4" && summary[2][1] == "24");
  EXPECT_GT(std::stoi(summary[1][2]), std::stoi(summary[2][4]) + 20);  // lowest of the same, highest of others
}

TEST_F(Templates, MatchWithABarOnATerminalOnly) {
  if (!std::filesystem::exists("/usr/bin/script")) GTEST_SKIP() << "needs script(1) for a terminal";
  make_lot(1, " --size 48x48");
  EXPECT_EQ(quofp("match --matrix lot").err, "");
  quofp_done("--version; script -qec \"" QUOFP_BINARY " match --matrix lot\" /dev/null >terminal.txt");
  const std::string terminal = read("terminal.txt");
  EXPECT_THAT(terminal, HasSubstr("matching [####################....................] 50 %"));
  EXPECT_THAT(terminal, HasSubstr("] 100 %\r\x1B[K"));
}
