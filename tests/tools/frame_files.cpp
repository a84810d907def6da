// Reading frames: every accepted kind of file gives the right pixels, every damaged one a message with its name.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <sstream>

#include "tools/tool.h"

using namespace quo_test;

namespace {

struct PngKind {
  int depth;
  int colour;
  int interlace = PNG_INTERLACE_NONE;
};

// Writes rows of packed samples as they are.
void write_png(const std::filesystem::path& path, uint32_t width, uint32_t height, PngKind kind,
               std::vector<uint8_t> samples) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  FILE* const file = fopen(path.c_str(), "wb");
  png_init_io(png, file);
  png_set_IHDR(png, info, width, height, kind.depth, kind.colour, kind.interlace, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  const png_color palette[2] = {{10, 10, 10}, {0, 0, 255}};
  if (kind.colour == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, palette, 2);
  png_set_gAMA(png, info, 1.0);  // pixels are sensor readings: a gamma value changes nothing
  std::vector<png_bytep> rows;
  for (uint32_t y = 0; y < height; y++) rows.push_back(samples.data() + y * (samples.size() / height));
  png_set_rows(png, info, rows.data());
  png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  png_destroy_write_struct(&png, &info);
  fclose(file);
}

}  // namespace

class FrameFiles : public Tool {
 protected:
  // The pixels as the tool has read them. Stripe removal copies frames of up to nine columns.
  Image through_tool(const std::string& file, const std::string& options = "", const std::string& expected_note = "") {
    const Outcome run = quofp("preprocess " + file + " -o out.png --stage stripes " + options);
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(run.err, expected_note.empty() ? "" : "quofp: note: " + file + ": " + expected_note + "\n");
    return read_png("out.png");
  }

  // Every content, as a file of its own, is refused with code 3 and one line that begins with its name.
  void expect_refused(const std::vector<std::string>& contents) {
    std::string files, messages;
    for (const std::string& content : contents) {
      const std::string name = "bad" + std::to_string(messages.size());
      write(name, content);
      files += " " + name;
      messages += "quofp: " + name + ": [^\n]+\n";
    }
    const Outcome run = expect_exit(3, "info --format csv" + files);
    EXPECT_EQ(csv_rows(run.out).size(), 1U) << run.out;
    EXPECT_THAT(run.err, testing::MatchesRegex(messages));
  }
};

TEST_F(FrameFiles, ReadsGraymapsOfEveryKind) {
  const auto read_as = [&](const std::string& content, const char* note) {
    write("a.pgm", content);
    return through_tool("a.pgm", "", note);
  };
  const Image image(3, 2, {0, 17, 255, 34, 51, 68});
  EXPECT_EQ(read_as({"P5 3 2 255\n\0\x11\xFF\x22\x33\x44", 17}, ""), image);
  EXPECT_EQ(read_as("P2 # comment\n3 # width\n#\n2\n255\n0 17 255\n34\t51 68", ""), image);
  EXPECT_EQ(read_as("P2 3 2 15 0 1 15 2 3 4 ", "values 0 to 15 scaled to 0 to 255"), image);
  EXPECT_EQ(read_as({"P5\n3 2\n65535\n\0\0\x11\x11\xFF\xFF\x22\x22\x33\x33\x44\x44", 25},
                    "values 0 to 65535 scaled to 0 to 255"),
            image);
  EXPECT_EQ(read_as("P5 2 1 255 #9", ""), Image(2, 1, {'#', '9'}));  // one white space ends the header
}

TEST_F(FrameFiles, ReadsPicturesOfEveryKind) {
  const auto expect_pixels = [&](PngKind kind, const Bytes& samples, const Image& pixels, const std::string& note) {
    write_png(path("a.png"), static_cast<uint32_t>(pixels.width), static_cast<uint32_t>(pixels.height), kind, samples);
    EXPECT_EQ(through_tool("a.png", "", note.empty() ? "" : note + ", converted to 8-bit gray"), pixels) << note;
  };
  const Image image(3, 2, {0, 17, 255, 34, 51, 68});
  expect_pixels({8, PNG_COLOR_TYPE_GRAY}, image.pixels, image, "");
  expect_pixels({8, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_ADAM7}, image.pixels, image, "");
  expect_pixels({1, PNG_COLOR_TYPE_GRAY}, {0xA0}, {3, 1, {255, 0, 255}}, "1-bit gray");
  expect_pixels({16, PNG_COLOR_TYPE_GRAY}, {0x80, 0x80, 0x01, 0x7F}, {2, 1, {0x80, 1}}, "16-bit gray");
  expect_pixels({8, PNG_COLOR_TYPE_GRAY_ALPHA}, {9, 0, 200, 255}, {2, 1, {9, 200}}, "8-bit gray with alpha");
  expect_pixels({8, PNG_COLOR_TYPE_RGB}, {7, 7, 7, 255, 0, 0, 255, 255, 255}, {3, 1, {7, 54, 255}}, "8-bit colour");
  expect_pixels({16, PNG_COLOR_TYPE_RGBA}, {99, 99, 99, 99, 99, 99, 0, 0}, {1, 1, {99}}, "16-bit colour");
  expect_pixels({1, PNG_COLOR_TYPE_PALETTE}, {0x40}, {8, 1, {10, 19, 10, 10, 10, 10, 10, 10}}, "1-bit palette colour");
}

TEST_F(FrameFiles, ReadsRawFramesOfAnyLayout) {
  write("a.raw", "HEAD123.456.789.abc.XY");
  const std::string layout = "--size 3x2 --stride 4 --offset 4 ";
  quofp_done("preprocess a.raw -o out/ --stage stripes --count 2 " + layout);
  EXPECT_EQ(read_png("out/a-0.png"), Image(3, 2, {'1', '2', '3', '4', '5', '6'}));
  EXPECT_EQ(read_png("out/a-1.png"), Image(3, 2, {'7', '8', '9', 'a', 'b', 'c'}));
  EXPECT_EQ(through_tool("'a.raw#1'", layout).at(0, 0), '7');
  expect_exit(0, "info a.raw --count 2 " + layout, "a.raw: more bytes follow the 2 frames");
  // All of a file, as a pipe too; the last one is cut short, and says so.
  for (const char* const source : {"a.raw", "- <a.raw"}) {
    const Outcome run = expect_exit(3, "info --format csv --count 0 " + layout + source,
                                    "#2: the file ends at byte 22, but the frame has 7 bytes from byte 20 on");
    EXPECT_EQ(csv_rows(run.out).size(), 3U) << source;
  }

  write("wide.raw", std::string("\x34\x02\xFF\x03\x00\x00", 6));
  const auto wide = [&](const std::string& options, const std::string& range) {
    return through_tool("wide.raw", "--size 3x1 " + options, "values 0 to " + range);
  };
  EXPECT_EQ(wide("--bits 10", "1023 scaled to 0 to 255"), Image(3, 1, {141, 255, 0}));
  EXPECT_EQ(wide("--bits 16 --scale-to-8bit", "1023 scaled to 0 to 255"), Image(3, 1, {141, 255, 0}));
  EXPECT_EQ(wide("--bits 16 --endian big", "65535 scaled to 0 to 255"), Image(3, 1, {0x34, 0xFE, 0}));
  const std::string unused = "; none is above 1023, --scale-to-8bit would use the whole range";
  EXPECT_EQ(wide("--bits 16", "65535 scaled to 0 to 255" + unused), Image(3, 1, {2, 4, 0}));
  expect_exit(3, "info wide.raw --size 3x1 --bits 12 --endian big",
              "wide.raw: raw: pixel (0, 0) is 13314, above the 4095 of 12 bits");
  expect_misuse("info a.raw", {"--offset 3", "--size 3x2 --stride 2", "--size 3x2 --crop 1,1,2"});
}

// A size is for raw bytes alone, and files that are none of those kinds are told.
TEST_F(FrameFiles, TellsKindsByTheirContent) {
  write("like-a-graymap.raw", "P5 1 1 255 x");
  EXPECT_EQ(through_tool("like-a-graymap.raw", "--size 4x3").at(3, 2), 'x');
  EXPECT_EQ(through_tool("like-a-graymap.raw").width, 1);
  write_png(path("a.png"), 2, 1, {8, PNG_COLOR_TYPE_GRAY}, {1, 2});
  EXPECT_EQ(through_tool("a.png", "--size 3x2"), Image(2, 1, {1, 2}));
  write("a.raw", "123456");
  expect_exit(3, "info a.raw", "a.raw: neither PNG nor PGM; --size WxH");
  expect_exit(3, "info a.raw --size 3x3", "a.raw: 6 bytes, but a raw frame of 3x3 has 9");
  // One that claims more pixels than its bytes can hold is refused before memory is taken for them.
  std::string claim = read("a.png");
  claim.replace(16, 8, std::string("\0\0\x20\0\0\0\x20\0", 8));
  claim.replace(29, 4, "\x57\xC1\x95\x85");
  write("claim.png", claim);
  expect_exit(3, "info claim.png", "bytes are too few for 8192x8192");
  expect_exit(3, "info missing.pgm", "missing.pgm: ");
  expect_exit(3, "info /dev", "/dev: ");
}

TEST_F(FrameFiles, CropsAndInverts) {
  write_pgm("a.pgm", Image(3, 2, {0, 17, 255, 34, 51, 68}));
  EXPECT_EQ(through_tool("a.pgm", "--crop 1,0,2,2"), Image(2, 2, {17, 255, 51, 68}));
  EXPECT_EQ(through_tool("a.pgm", "--crop 0,1,3,1 --invert"), Image(3, 1, {221, 204, 187}));
  EXPECT_EQ(through_tool("a.pgm", "--crop 0,1,3,1 --scale-to-8bit"), Image(3, 1, {0, 128, 255}));
  expect_exit(3, "info a.pgm --crop 1,1,2,2", "a.pgm: the part 2x2 at (1, 1) goes beyond");
}

TEST_F(FrameFiles, TakesFoldersPatternsAndStandardInput) {
  std::filesystem::create_directories(path("lot/empty"));
  for (const char* const name : {"lot/f-10.png", "lot/f-9.PNG", "lot/g.png"}) synth(name, "--size 24x24");
  write("lot/notes.txt", "no frame");
  const auto files = [&](const std::string& arguments) {
    const Outcome run = quofp("info --format csv " + arguments);
    std::string names = std::to_string(run.exit);
    for (const auto& row : csv_rows(run.out)) names += " " + row[0];
    return names;
  };
  EXPECT_EQ(files("lot"), "0 file lot/f-9.PNG lot/f-10.png lot/g.png");
  EXPECT_EQ(files("'lot/f-*' - <lot/g.png"), "0 file lot/f-9.PNG lot/f-10.png -");
  EXPECT_EQ(files("'no*' lot/empty lot/g.png"), "3 file lot/g.png");
  quofp_done("preprocess lot -o cleaned");
  EXPECT_TRUE(exists("cleaned/f-9.png"));
  expect_exit(2, "orientation lot -o a.png");
}

TEST_F(FrameFiles, RefusesGraymapsThatDoNotHoldWhatTheySay) {
  // One after every bar.
  std::istringstream graymaps(
      "|P5|P5 3|P5 3 2 255|P5 3 2 255\n12345|P5 3 2 255\n1234567|P5 -3 2 255\n123456|P5 0 2 255\n|P5 3 2 0\n123456|"
      "P5 3 2 65536\n123456123456|P5 3 2 256\n123456|P5 2 1 50\n1z|P5 20000 1 255\n1|P5 16384 16384 255\n1|"
      "P5 99999999999999999999 2 255\n1|P2 3 2 255 1 2 3 4 5|P2 3 2 255 1 2 3 4 5 6 7|P2 3 2 255 1 2 3 4 5 256|"
      "P2 3 2 255 1 2 3 x 5 6|P2 9999 6000 255 1|P6 1 1 255 123|GIF89a");
  std::vector<std::string> contents;
  for (std::string content; std::getline(graymaps, content, '|');) contents.push_back(content);
  EXPECT_EQ(contents.size(), 22U);
  expect_refused(contents);
}

TEST_F(FrameFiles, RefusesPicturesCutShortOrDamaged) {
  synth("good.png", "--size 24x20");
  const std::string good = read("good.png");
  std::vector<std::string> cut;
  for (size_t length = 0; length < good.size(); length += length < 80 ? 1 : 7) cut.push_back(good.substr(0, length));
  expect_refused(cut);

  std::string files;
  for (size_t i = 8; i < good.size(); i += i < 80 ? 1 : 5) {
    std::string damaged = good;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x41);
    write("damaged" + std::to_string(i), damaged);
    files += " damaged" + std::to_string(i);
  }
  const Rows read = csv_rows(expect_exit(3, "info --format csv good.png" + files).out);
  ASSERT_GE(read.size(), 2U);
  EXPECT_EQ(read[1][0], "good.png");
  // What is still read has its checksum intact, so it has the good pixels.
  for (size_t i = 2; i < read.size(); i++) {
    EXPECT_TRUE(std::equal(read[i].begin() + 1, read[i].end(), read[1].begin() + 1)) << read[i][0];
  }
}
