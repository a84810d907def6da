// Templates as files: writing, showing and matching them, and what is said about damaged ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "quoFPAlg.h"
#include "tools/tool.h"

using namespace quo_test;
using testing::ElementsAre;
using testing::HasSubstr;
using Bytes = std::vector<uint8_t>;
using Rows = std::vector<std::vector<std::string>>;

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

// A small frame with runs of all three values, and the profile of its row 14.
Image small_frame() {
  return Image(30, 29, [](int32_t x, int32_t y) { return x == 16 ? 254 : (x + y) / 2 % 2 == 0 ? 60 : 180; });
}
const Bytes kRow14 = {255, 255, 0, 0, 254, 255};

// Whether some row of the picture holds the profile, dark, saturated and bright as ever lighter blocks of `zoom` pixels.
bool shows_profile(const Image& picture, const Bytes& profile, int32_t zoom) {
  const auto length = static_cast<int32_t>(profile.size());
  const auto matches_at = [&](int32_t x0, int32_t y) {
    for (int32_t x = 1; x < length * zoom - 1; x++) {  // the outline covers the ends
      const uint8_t gray = picture.at(x0 + x, y);
      const uint8_t value = profile[static_cast<size_t>(x / zoom)];
      if (gray < 60 ? value != 0 : gray < 200 ? value != 254 : value != 255) return false;
    }
    return true;
  };
  for (int32_t y = 0; y < picture.height; y++) {
    for (int32_t x = 0; x + length * zoom < picture.width; x++) {
      if (matches_at(x, y)) return true;
    }
  }
  return false;
}

}  // namespace

class Templates : public Tool {
 protected:
  void write_bytes(const std::string& name, const Bytes& bytes) const {
    write(name, std::string(bytes.begin(), bytes.end()));
  }
  Bytes read_bytes(const std::string& name) const {
    const std::string content = read(name);
    return {content.begin(), content.end()};
  }
  Rows rows(const std::string& arguments) const { return csv_rows(quofp_done(arguments + " --format csv")); }

  // Two exposures each of some fingers, as lot/finger-<seed>-<exposure>.png.
  void make_lot(int fingers, const std::string& options = "") const {
    std::filesystem::create_directory(path("lot"));
    for (int finger = 1; finger <= fingers; finger++) {
      for (const char* const exposure : {"1", "2"}) {
        const std::string seed = std::to_string(finger);
        quofp_done("synth --seed " + seed + " --noise-seed " + exposure + " -o lot/finger-" + seed + "-" + exposure +
                   ".png " + options);
      }
    }
  }
};

TEST_F(Templates, AreTheBytesOfTheLibrary) {
  write_pgm("a.pgm", small_frame());
  quofp_done("synth -o b.png --size 131x117");
  quofp_done("template a.pgm -o a.sp");
  EXPECT_EQ(read_bytes("a.sp"), template_of(small_frame()));
  EXPECT_THAT(rows("template a.pgm b.png -o all"),
              ElementsAre(ElementsAre("file", "width", "height", "bytes", "output"),
                          ElementsAre("a.pgm", "30", "29", "60", "all/a.sp"),
                          ElementsAre("b.png", "131", "117", testing::_, "all/b.sp")));
  EXPECT_EQ(read_bytes("all/b.sp"), template_of(read_png("b.png")));

  write_pgm("flat.pgm", Image(100, 24, 9));
  EXPECT_EQ(quofp("template flat.pgm -o flat.sp").exit, 1);
  EXPECT_THAT(quofp("template flat.pgm -o flat.sp").err, HasSubstr("wider and higher than 24 pixels"));
  EXPECT_FALSE(exists("flat.sp"));
  write_pgm("large.pgm", Image(200, 185, 9));
  EXPECT_THAT(quofp("template large.pgm -o large.sp").err, HasSubstr("note: large.pgm: width + height is above 384"));
  EXPECT_EQ(quofp("match large.pgm large.pgm").exit, 1);
}

TEST_F(Templates, ShowTheirSectionsRunsAndProfiles) {
  write_bytes("a.sp", template_of(small_frame()));
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
  EXPECT_TRUE(shows_profile(picture, kRow14, 8));
  EXPECT_FALSE(shows_profile(picture, {255, 0, 255, 0, 255, 0}, 8));
}

TEST_F(Templates, SayWhatIsWrongWithThem) {
  const struct {
    Bytes bytes;
    const char* message;
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
  write_bytes("good.sp", template_of(small_frame()));
  for (const auto& c : cases) {
    write_bytes("bad.sp", c.bytes);
    const Outcome shown = quofp("show bad.sp -o picture.png");
    EXPECT_EQ(shown.exit, 3);
    EXPECT_THAT(shown.err, HasSubstr(std::string("quofp: bad.sp: not an Sp template: ") + c.message));
    EXPECT_EQ(quofp("match good.sp bad.sp").err, shown.err);
  }
  EXPECT_FALSE(exists("picture.png"));
}

TEST_F(Templates, MatchWithFramesAndTemplatesAlike) {
  quofp_done("synth -o a.png --seed 3");
  quofp_done("synth -o b.png --seed 3 --noise-seed 8");
  quofp_done("synth -o c.png --size 120x200");
  quofp_done("template a.png -o a.sp");
  uint32_t score = 0;
  const Image a = read_png("a.png"), b = read_png("b.png");
  ASSERT_EQ(FP_MatchSpTemplates(template_of(a).data(), template_of(b).data(), &score), QUO_OK);
  write("b.raw", std::string(b.pixels.begin(), b.pixels.end()));
  for (const char* const pair : {"a.sp b.png", "a.png b.png", "a.sp b.raw --size 160x160"}) {
    EXPECT_EQ(rows(std::string("match ") + pair)[1].back(), std::to_string(score)) << pair;
  }
  EXPECT_THAT(rows("match a.sp a.png"),
              ElementsAre(ElementsAre("first", "second", "score"), ElementsAre("a.sp", "a.png", "100")));
  const Outcome misfit = quofp("match a.sp c.png");
  EXPECT_EQ(misfit.exit, 1);
  EXPECT_THAT(misfit.err, HasSubstr("FP_MatchSpTemplates returned 8: the templates are of frames of different sizes"));
  for (const char* const misuse : {"match", "match a.sp", "match a.sp a.sp a.sp", "match --matrix . a.sp a.sp",
                                   "match a.sp a.sp --summary", "match a.sp a.sp -o x.png"}) {
    EXPECT_EQ(quofp(misuse).exit, 2) << misuse;
  }
}

TEST_F(Templates, MatchAllOfAFolderWithOneAnother) {
  make_lot(1, "--size 64x48");
  quofp_done("synth -o lot/finger-10-1.png --seed 10 --size 64x48");
  quofp_done("synth -o two.png --seed 2 --size 64x48");
  quofp_done("template two.png -o lot/finger-2-1.sp");
  const Rows all = rows("match --matrix lot -o matrix.png");
  const std::string names[] = {"lot/finger-1-1.png", "lot/finger-1-2.png", "lot/finger-2-1.sp", "lot/finger-10-1.png"};
  size_t row = 1;
  ASSERT_EQ(all.size(), 7U);
  for (size_t i = 0; i < 4; i++) {
    for (size_t j = i + 1; j < 4; j++, row++) {
      const std::string score = rows("match " + names[i] + " " + names[j])[1].back();
      EXPECT_THAT(all[row], ElementsAre(names[i], names[j], score));
    }
  }
  // Four cells of 40 pixels: on the diagonal the brightest colour there is.
  const Image picture = read_png("matrix.png");
  EXPECT_GT(picture.width, 160 + 100);
  EXPECT_GT(std::count_if(picture.pixels.begin(), picture.pixels.end(), [](uint8_t p) { return p > 200 && p < 235; }),
            4 * 40 * 40 / 2);

  quofp_done("synth -o lot/other-1.png --size 48x64");
  write("lot/notes.txt", "no template");
  const Outcome run = quofp("match --matrix lot --format csv");
  EXPECT_EQ(run.exit, 3);
  EXPECT_THAT(run.err, HasSubstr("lot/notes.txt: not an Sp template"));
  EXPECT_THAT(run.err, HasSubstr("4 of 10 pairs are of frames of different sizes"));
  EXPECT_EQ(csv_rows(run.out).size(), 11U);
  EXPECT_THAT(csv_rows(run.out)[4], ElementsAre("lot/finger-1-1.png", "lot/other-1.png", ""));
  EXPECT_EQ(quofp("match --matrix missing").exit, 3);
  EXPECT_EQ(quofp("match --matrix .").exit, 3);  // one frame alone
}

TEST_F(Templates, TellSameFromOtherFingers) {
  make_lot(4);
  const Rows summary = rows("match --matrix lot --summary");
  ASSERT_EQ(summary.size(), 3U);
  EXPECT_THAT(summary[0], ElementsAre("finger", "pairs", "lowest", "mean", "highest"));
  EXPECT_EQ(summary[1][1], "4");
  EXPECT_EQ(summary[2][1], "24");
  EXPECT_GT(std::stoi(summary[1][2]), std::stoi(summary[2][4]) + 20);  // lowest of the same, highest of others
}

TEST_F(Templates, MatchWithABarOnATerminalOnly) {
  if (!std::filesystem::exists("/usr/bin/script")) GTEST_SKIP() << "needs script(1) for a terminal";
  make_lot(1, "--size 48x48");
  EXPECT_EQ(quofp("match --matrix lot").err, "");
  quofp_done("--version; script -qec \"" QUOFP_BINARY " match --matrix lot\" /dev/null >terminal.txt");
  const std::string terminal = read("terminal.txt");
  EXPECT_THAT(terminal, HasSubstr("matching [####################....................] 50 %"));
  EXPECT_THAT(terminal, HasSubstr("] 100 %\r\x1B[K"));
}
