// Guesses of frame sizes: right first for dumps of several kinds, and what they offer works.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/tool.h"

using namespace quo_test;
using testing::HasSubstr;

class Guess : public Tool {
 protected:
  // Width, height, frames, bits and options of the best guess.
  std::vector<std::string> best(const std::string& file) const {
    const auto rows = csv_rows(quofp_done("guess " + file + " --format csv"));
    return {rows[1][0], rows[1][1], rows[1][2], rows[1][3], rows[1][7]};
  }

  // The pixels as wide values with noise in the bits below them.
  void widen(const std::string& from, const std::string& to, int bits, bool big_endian) const {
    Random random(3);
    std::string bytes;
    for (const char c : read(from)) {
      const uint32_t low = static_cast<uint32_t>(random.next()) & ((1U << (bits - 8)) - 1);
      const uint32_t value = static_cast<uint32_t>(static_cast<uint8_t>(c)) << (bits - 8) | low;
      const char pair[] = {static_cast<char>(value >> 8), static_cast<char>(value & 0xFF)};
      bytes += big_endian ? pair[0] : pair[1];
      bytes += big_endian ? pair[1] : pair[0];
    }
    write(to, bytes);
  }
};

TEST_F(Guess, FindsTheSizeOfDumpsOfEveryKind) {
  using testing::ElementsAre;
  quofp_done("synth -o one.raw --size 144x112 --seed 4");
  EXPECT_THAT(best("one.raw"), ElementsAre("144", "112", "1", "8", "--size 144x112"));
  quofp_done("synth -o four.raw --size 96x160 --count 4 --noise 10");
  EXPECT_THAT(best("four.raw"), ElementsAre("96", "160", "4", "8", "--size 96x160 --count 0"));
  write("header.raw", std::string(77, 'h') + read("one.raw"));
  EXPECT_THAT(best("header.raw"), ElementsAre("144", "112", "1", "8", "--size 144x112 --offset 77"));
  widen("one.raw", "little.raw", 12, false);
  EXPECT_THAT(best("little.raw"), ElementsAre("144", "112", "1", "12", "--size 144x112 --bits 12"));
  widen("one.raw", "big.raw", 10, true);
  EXPECT_THAT(best("big.raw"), ElementsAre("144", "112", "1", "10", "--size 144x112 --bits 10 --endian big"));
  quofp_done("info big.raw " + best("big.raw").back());
  quofp_done("info four.raw " + best("four.raw").back());
}

TEST_F(Guess, ShowsWhatItWouldBe) {
  quofp_done("synth -o one.raw --size 144x112 --seed 4; true");
  quofp_done("guess one.raw -o pictures");
  const std::string raw = read("one.raw");
  EXPECT_EQ(read_png("pictures/1-144x112-8bit.png").pixels, std::vector<uint8_t>(raw.begin(), raw.end()));
  quofp_done("guess one.raw -o sheet.png --most 3");
  EXPECT_GE(read_png("sheet.png").width, 144);
}

TEST_F(Guess, SaysWhenNothingIsPlausible) {
  std::string noise;
  Random random(1);
  for (int i = 0; i < 20000; i++) noise += static_cast<char>(random.next());
  write("noise.raw", noise);
  write("short.raw", "xyz");
  write("flat.raw", std::string(5000, 'x'));
  for (const char* const file : {"noise.raw", "short.raw", "flat.raw"}) {
    const Outcome run = quofp(std::string("guess ") + file);
    EXPECT_EQ(run.exit, 3) << file;
    EXPECT_THAT(run.err, HasSubstr(std::string(file) + ": no width makes neighbouring rows alike"));
  }
}
