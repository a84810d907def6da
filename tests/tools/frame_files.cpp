// Reading frames: every accepted kind of file gives the right pixels, every damaged one a message with its name.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>

#include "tools/tool.h"

using namespace quo_test;
using testing::HasSubstr;

namespace {

size_t lines_in(const std::string& text) { return static_cast<size_t>(std::count(text.begin(), text.end(), '\n')); }

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

  // Every file given is refused with code 3 and one line that begins with its name.
  void expect_refused(const std::vector<std::string>& files, const std::string& options = "") {
    std::string arguments;
    for (const std::string& file : files) arguments += " " + file;
    const Outcome run = quofp("info --format csv" + arguments + " " + options);
    EXPECT_EQ(run.exit, 3);
    EXPECT_EQ(lines_in(run.out), 1U) << run.out;
    EXPECT_EQ(lines_in(run.err), files.size()) << run.err;
    for (const std::string& file : files) EXPECT_THAT(run.err, HasSubstr("quofp: " + file + ": ")) << file;
  }
};

TEST_F(FrameFiles, ReadsGraymapsOfEveryKind) {
  const Image image(3, 2, {0, 17, 255, 34, 51, 68});
  write_pgm("a.pgm", image);
  EXPECT_EQ(through_tool("a.pgm"), image);
  write("b.pgm", "P2 # comment\n3 # width\n#\n2\n255\n0 17 255\n34\t51 68");
  EXPECT_EQ(through_tool("b.pgm"), image);
  write("c.pgm", "P2 3 2 15 0 1 15 2 3 4 ");
  EXPECT_EQ(through_tool("c.pgm", "", "values 0 to 15 scaled to 0 to 255"), image);
  const std::string pixels("\0\0\x11\x11\xFF\xFF\x22\x22\x33\x33\x44\x44", 12);
  write("d.pgm", "P5\n3 2\n65535\n" + pixels);
  EXPECT_EQ(through_tool("d.pgm", "", "values 0 to 65535 scaled to 0 to 255"), image);
  write("e.pgm", "P5 2 1 255 #9");  // one white space ends the header: these are pixels
  EXPECT_EQ(through_tool("e.pgm"), Image(2, 1, {'#', '9'}));
}

TEST_F(FrameFiles, ReadsPicturesOfEveryKind) {
  write_png(path("gray8.png"), 3, 2, {8, PNG_COLOR_TYPE_GRAY}, {0, 17, 255, 34, 51, 68});
  EXPECT_EQ(through_tool("gray8.png"), Image(3, 2, {0, 17, 255, 34, 51, 68}));
  write_png(path("adam7.png"), 3, 2, {8, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_ADAM7}, {0, 17, 255, 34, 51, 68});
  EXPECT_EQ(through_tool("adam7.png"), Image(3, 2, {0, 17, 255, 34, 51, 68}));
  const std::string converted = ", converted to 8-bit gray";
  write_png(path("gray1.png"), 3, 1, {1, PNG_COLOR_TYPE_GRAY}, {0xA0});
  EXPECT_EQ(through_tool("gray1.png", "", "1-bit gray" + converted), Image(3, 1, {255, 0, 255}));
  write_png(path("gray16.png"), 2, 1, {16, PNG_COLOR_TYPE_GRAY}, {0x80, 0x80, 0x01, 0x7F});
  EXPECT_EQ(through_tool("gray16.png", "", "16-bit gray" + converted), Image(2, 1, {0x80, 1}));
  write_png(path("alpha.png"), 2, 1, {8, PNG_COLOR_TYPE_GRAY_ALPHA}, {9, 0, 200, 255});
  EXPECT_EQ(through_tool("alpha.png", "", "8-bit gray with alpha" + converted), Image(2, 1, {9, 200}));
  write_png(path("rgb.png"), 3, 1, {8, PNG_COLOR_TYPE_RGB}, {7, 7, 7, 255, 0, 0, 255, 255, 255});
  EXPECT_EQ(through_tool("rgb.png", "", "8-bit colour" + converted), Image(3, 1, {7, 54, 255}));
  write_png(path("rgba.png"), 1, 1, {16, PNG_COLOR_TYPE_RGBA}, {99, 99, 99, 99, 99, 99, 0, 0});
  EXPECT_EQ(through_tool("rgba.png", "", "16-bit colour" + converted), Image(1, 1, {99}));
  write_png(path("palette.png"), 8, 1, {1, PNG_COLOR_TYPE_PALETTE}, {0x40});
  EXPECT_EQ(through_tool("palette.png", "", "1-bit palette colour" + converted),
            Image(8, 1, {10, 19, 10, 10, 10, 10, 10, 10}));
}

TEST_F(FrameFiles, ReadsRawBytesOfTheSizeGiven) {
  write("a.raw", "123456");
  EXPECT_EQ(through_tool("a.raw", "--size 3x2"), Image(3, 2, {'1', '2', '3', '4', '5', '6'}));
  write("like-a-graymap.raw", "P5 1 1 255 x");
  EXPECT_EQ(through_tool("like-a-graymap.raw", "--size 4x3").at(3, 2), 'x');
  EXPECT_EQ(through_tool("like-a-graymap.raw").width, 1);
  write_png(path("a.png"), 2, 1, {8, PNG_COLOR_TYPE_GRAY}, {1, 2});
  EXPECT_EQ(through_tool("a.png", "--size 3x2"), Image(2, 1, {1, 2}));
  // A file that claims more pixels than its bytes can hold: refused before memory is taken for them.
  std::string claim = read("a.png");
  claim.replace(16, 8, std::string("\0\0\x20\0\0\0\x20\0", 8));
  claim.replace(29, 4, "\x57\xC1\x95\x85");
  write("claim.png", claim);
  EXPECT_THAT(quofp("info claim.png").err, HasSubstr("bytes are too few for 8192x8192"));
  EXPECT_THAT(quofp("info a.raw").err, HasSubstr("a.raw: neither PNG nor PGM; --size WxH"));
  EXPECT_THAT(quofp("info a.raw --size 3x3").err, HasSubstr("a.raw: 6 bytes, but a raw frame of 3x3 has 9"));
}

TEST_F(FrameFiles, ReadsRawFramesOfAnyLayout) {
  write("a.raw", "HEAD123.456.789.abc.XY");
  const std::string layout = "--size 3x2 --stride 4 --offset 4 ";
  quofp_done("preprocess a.raw -o out/ --stage stripes --count 2 " + layout);
  EXPECT_EQ(read_png("out/a-0.png"), Image(3, 2, {'1', '2', '3', '4', '5', '6'}));
  EXPECT_EQ(read_png("out/a-1.png"), Image(3, 2, {'7', '8', '9', 'a', 'b', 'c'}));
  EXPECT_EQ(through_tool("'a.raw#1'", layout).at(0, 0), '7');
  EXPECT_THAT(quofp("info a.raw --count 2 " + layout).err, HasSubstr("a.raw: more bytes follow the 2 frames"));

  // All of a file, as a pipe too; the last one is cut short, and says so.
  for (const char* const source : {"a.raw", "- <a.raw"}) {
    const Outcome run = quofp("info --format csv --count 0 " + layout + source);
    EXPECT_EQ(run.exit, 3);
    EXPECT_EQ(csv_rows(run.out).size(), 3U) << source;
    EXPECT_THAT(run.err, HasSubstr("#2: the file ends at byte 22, but the frame has 7 bytes from byte 20 on"));
  }

  const std::string wide("\x34\x02\xFF\x03\x00\x00", 6);
  write("wide.raw", wide);
  EXPECT_EQ(through_tool("wide.raw", "--size 3x1 --bits 10", "values 0 to 1023 scaled to 0 to 255"),
            Image(3, 1, {141, 255, 0}));
  const std::string unused = "; none is above 1023, --scale-to-8bit would use the whole range";
  EXPECT_EQ(through_tool("wide.raw", "--size 3x1 --bits 16", "values 0 to 65535 scaled to 0 to 255" + unused),
            Image(3, 1, {2, 4, 0}));
  EXPECT_EQ(through_tool("wide.raw", "--size 3x1 --bits 16 --scale-to-8bit", "values 0 to 1023 scaled to 0 to 255"),
            Image(3, 1, {141, 255, 0}));
  EXPECT_EQ(through_tool("wide.raw", "--size 3x1 --bits 16 --endian big", "values 0 to 65535 scaled to 0 to 255"),
            Image(3, 1, {0x34, 0xFE, 0}));
  EXPECT_THAT(quofp("info wide.raw --size 3x1 --bits 12 --endian big").err,
              HasSubstr("wide.raw: raw: pixel (0, 0) is 13314, above the 4095 of 12 bits"));
  EXPECT_EQ(quofp("info a.raw --offset 3").exit, 2);
  EXPECT_EQ(quofp("info a.raw --size 3x2 --stride 2").exit, 2);
}

TEST_F(FrameFiles, CropsAndInverts) {
  write_pgm("a.pgm", Image(3, 2, {0, 17, 255, 34, 51, 68}));
  EXPECT_EQ(through_tool("a.pgm", "--crop 1,0,2,2"), Image(2, 2, {17, 255, 51, 68}));
  EXPECT_EQ(through_tool("a.pgm", "--crop 0,1,3,1 --invert"), Image(3, 1, {221, 204, 187}));
  EXPECT_EQ(through_tool("a.pgm", "--crop 0,1,3,1 --scale-to-8bit"), Image(3, 1, {0, 128, 255}));
  EXPECT_THAT(quofp("info a.pgm --crop 1,1,2,2").err, HasSubstr("a.pgm: the part 2x2 at (1, 1) goes beyond"));
  EXPECT_EQ(quofp("info a.pgm --crop 1,1,2").exit, 2);
}

TEST_F(FrameFiles, TakesFoldersPatternsAndStandardInput) {
  for (const char* const name : {"lot/f-10.png", "lot/f-9.PNG", "lot/g.png"}) {
    std::filesystem::create_directories(path("lot/empty"));
    quofp_done(std::string("synth --size 24x24 -o ") + name);
  }
  write("lot/notes.txt", "no frame");
  const auto files = [&](const std::string& arguments) {
    const Outcome run = quofp("info --format csv " + arguments);
    std::vector<std::string> names;
    for (const auto& row : csv_rows(run.out)) names.push_back(row[0]);
    names.push_back(std::to_string(run.exit));
    return names;
  };
  using testing::ElementsAre;
  EXPECT_THAT(files("lot"), ElementsAre("file", "lot/f-9.PNG", "lot/f-10.png", "lot/g.png", "0"));
  EXPECT_THAT(files("'lot/f-*' - <lot/g.png"), ElementsAre("file", "lot/f-9.PNG", "lot/f-10.png", "-", "0"));
  EXPECT_THAT(files("'no*' lot/empty lot/g.png"), ElementsAre("file", "lot/g.png", "3"));
  quofp_done("preprocess lot -o cleaned");
  EXPECT_TRUE(exists("cleaned/f-9.png"));
  EXPECT_EQ(quofp("orientation lot -o a.png").exit, 2);
}

TEST_F(FrameFiles, RefusesGraymapsThatDoNotHoldWhatTheySay) {
  const char* const contents[] = {"",
                                  "P5",
                                  "P5 3",
                                  "P5 3 2 255",
                                  "P5 3 2 255\n12345",
                                  "P5 3 2 255\n1234567",
                                  "P5 -3 2 255\n123456",
                                  "P5 0 2 255\n",
                                  "P5 3 2 0\n123456",
                                  "P5 3 2 65536\n123456123456",
                                  "P5 3 2 256\n123456",
                                  "P5 2 1 50\n1z",
                                  "P5 20000 1 255\n1",
                                  "P5 16384 16384 255\n1",
                                  "P5 99999999999999999999 2 255\n1",
                                  "P2 3 2 255 1 2 3 4 5",
                                  "P2 3 2 255 1 2 3 4 5 6 7",
                                  "P2 3 2 255 1 2 3 4 5 256",
                                  "P2 3 2 255 1 2 3 x 5 6",
                                  "P2 9999 6000 255 1",
                                  "P6 1 1 255 123",
                                  "GIF89a"};
  std::vector<std::string> files;
  for (const char* const content : contents) {
    files.push_back("bad" + std::to_string(files.size()) + ".pgm");
    write(files.back(), content);
  }
  expect_refused(files);
  expect_refused({"missing.pgm", "/dev"});
}

TEST_F(FrameFiles, RefusesPicturesCutShortOrDamaged) {
  quofp_done("synth -o good.png --size 24x20");
  const std::string good = read("good.png");
  std::vector<std::string> cut;
  for (size_t length = 0; length < good.size(); length += length < 80 ? 1 : 7) {
    cut.push_back("cut" + std::to_string(length) + ".png");
    write(cut.back(), good.substr(0, length));
  }
  expect_refused(cut);

  std::string damaged_files;
  for (size_t i = 8; i < good.size(); i += i < 80 ? 1 : 5) {
    std::string damaged = good;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x41);
    const std::string name = "damaged" + std::to_string(i) + ".png";
    write(name, damaged);
    damaged_files += " " + name;
  }
  const Outcome run = quofp("info --format csv good.png" + damaged_files);
  EXPECT_EQ(run.exit, 3);
  const auto rows = csv_rows(run.out);
  ASSERT_GE(rows.size(), 2U);
  EXPECT_EQ(rows[1][0], "good.png");
  // What is still read has its checksum intact, so it has the good pixels.
  for (size_t i = 2; i < rows.size(); i++) {
    EXPECT_TRUE(std::equal(rows[i].begin() + 1, rows[i].end(), rows[1].begin() + 1)) << rows[i][0];
  }
}
