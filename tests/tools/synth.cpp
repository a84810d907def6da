// Synthetic frames: the same everywhere, and of the character that their options ask for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "tools/tool.h"

using namespace quo_test;

namespace {

uint64_t hash(const Image& image) {
  uint64_t h = static_cast<uint64_t>(image.width);
  for (const uint8_t pixel : image.pixels) h = (h ^ pixel) * 0x100000001B3U;
  return h;
}

double share(const Image& image, uint8_t low, uint8_t high) {
  const auto within = [=](uint8_t p) { return p >= low && p <= high; };
  return static_cast<double>(std::count_if(image.pixels.begin(), image.pixels.end(), within)) /
         static_cast<double>(image.pixels.size());
}

double mean_difference(const Image& a, const Image& b) {
  double sum = 0;
  for (size_t i = 0; i < a.pixels.size(); i++) sum += std::abs(a.pixels[i] - b.pixels[i]);
  return sum / static_cast<double>(a.pixels.size());
}

}  // namespace

class Synth : public Tool {
 protected:
  Image make(const std::string& options) const { return synth("frame.png", options); }
};

// Fixed for good: stored samples and measured figures rest on these pixels.
TEST_F(Synth, HasTheSamePixelsOnEveryMachine) {
  EXPECT_EQ(hash(make("")), 10496383961574498426U);
  EXPECT_EQ(hash(make("--seed 2 --size 97x131 --pattern arch --ridge-period 7 --shift-x -5")), 3166391167511469764U);
  EXPECT_EQ(hash(make("--seed 18446744073709551615 --pattern whorl --coverage 40 --contrast 30 --noise 9 --stripes 8 "
                      "--bad-rows 2 --bad-columns 1 --bad-clusters 3 --bubbles 4 --background 240")),
            11593243644732166127U);
}

TEST_F(Synth, KeepsTheFingerOverExposures) {
  const Image first = make("--seed 4"), second = make("--seed 4 --noise-seed 9"), other = make("--seed 5");
  EXPECT_NE(first.pixels, second.pixels);
  EXPECT_LT(mean_difference(first, second), 6);
  EXPECT_GT(mean_difference(first, other), 20);
  const Image shifted = make("--seed 4 --noise 0 --coverage 100 --shift-x 7 --shift-y -3");
  const Image still = make("--seed 4 --noise 0 --coverage 100");
  double difference = 0;
  for (int32_t y = 30; y < 130; y++) {
    for (int32_t x = 30; x < 130; x++) difference += std::abs(shifted.at(x + 7, y - 3) - still.at(x, y));
  }
  EXPECT_LT(difference / 10000, 6);  // the unevenness of light stays where it is
}

TEST_F(Synth, CoversTheShareAskedFor) {
  for (const int coverage : {0, 10, 40, 75, 99, 100}) {
    const Image frame = make("--noise 0 --coverage " + std::to_string(coverage));
    EXPECT_NEAR(100 * share(frame, 0, 254), coverage, 1.5) << coverage;
  }
  const Image blank = make("--coverage 0 --background 200 --noise 0");
  EXPECT_THAT(blank.pixels, testing::Each(200));
}

TEST_F(Synth, AddsTheDefectsAskedFor) {
  const Image flat = make("--coverage 0 --background 200 --noise 5");
  double sum = 0, squares = 0;
  for (const uint8_t p : flat.pixels) sum += p, squares += p * p;
  const double mean = sum / 25600;
  EXPECT_NEAR(mean, 200, 0.2);
  EXPECT_NEAR(squares / 25600 - mean * mean, 25, 1);

  const Image striped = make("--coverage 0 --background 200 --noise 0 --stripes 9");
  for (int32_t x = 0; x < 160; x++) {
    EXPECT_NEAR(striped.at(x, 0), 200, 9);
    EXPECT_EQ(striped.at(x, 0), striped.at(x, 159));
  }
  EXPECT_GT(share(striped, 203, 209), 0.1);

  const Image lines = make("--coverage 0 --background 128 --noise 0 --bad-rows 3 --bad-columns 2");
  int rows = 0, columns = 0;
  for (int32_t i = 0; i < 160; i++) {
    rows += std::abs(lines.at(0, i) - 128) > 90;
    columns += std::abs(lines.at(i, 0) - 128) > 90;
  }
  EXPECT_TRUE(rows == 3 && columns == 2) << rows << " " << columns;

  const double dead = 25600 * share(make("--coverage 0 --background 200 --noise 0 --bad-clusters 6"), 0, 9);
  EXPECT_TRUE(dead > 6 * 5 && dead < 6 * 50) << dead;
  const double bubbles = 25600 * share(make("--coverage 100 --contrast 0 --noise 0 --bubbles 5"), 255, 255);
  EXPECT_TRUE(bubbles > 5 * 9 && bubbles < 5 * 85) << bubbles;
  EXPECT_LT(share(make("--contrast 15 --noise 0"), 0, 90), 0.001);
}

TEST_F(Synth, WritesALotAndOtherFormats) {
  quofp_done("synth -o lot --count 3 --seed 11 --size 48x40");
  for (const char* const name : {"one.png", "one.pgm", "one.raw"}) {
    quofp_done(std::string("synth --seed 12 --size 48x40 -o ") + name);
  }
  EXPECT_EQ(read("lot/finger-12.png"), read("one.png"));
  EXPECT_TRUE(exists("lot/finger-11.png") && exists("lot/finger-13.png"));
  EXPECT_EQ(read_bytes("one.raw"), read_png("one.png").pixels);
  EXPECT_EQ(read("one.pgm"), "P5\n48 40\n255\n" + read("one.raw"));
  expect_exit(3, "synth -o one.pgm --count 2");  // a file is no folder
}

// The commands in their description make the committed samples, pixel by pixel.
TEST_F(Synth, ReproducesTheCommittedSamples) {
  std::filesystem::create_directory(path("samples"));
  std::istringstream description(Tool::read(QUO_SAMPLES "/README.md"));
  for (std::string line; std::getline(description, line);) {
    if (line.rfind("quofp synth -o samples/", 0) == 0) quofp_done(line.substr(6));
  }
  size_t committed = 0;
  for (const auto& entry : std::filesystem::directory_iterator(QUO_SAMPLES)) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() != ".png") continue;
    EXPECT_EQ(read_png("samples/" + name), read_png(entry.path())) << name;
    committed++;
  }
  EXPECT_GE(committed, 6U);
}
