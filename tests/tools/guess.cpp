// Guesses of frame sizes: right first for dumps of several kinds, and what they offer works.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/tool.h"

using namespace quo_test;

class Guess : public Tool {
 protected:
  // The pixels as wide values with noise in the bits below them.
  void widen(const std::string& from, const std::string& to, int bits, bool big_endian) const {
    Random random(3);
    Bytes bytes;
    for (const char c : read(from)) {
      const uint32_t low = static_cast<uint32_t>(random.next()) & ((1U << (bits - 8)) - 1);
      const uint32_t value = static_cast<uint32_t>(static_cast<uint8_t>(c)) << (bits - 8) | low;
      bytes.push_back(static_cast<uint8_t>(big_endian ? value >> 8 : value));
      bytes.push_back(static_cast<uint8_t>(big_endian ? value : value >> 8));
    }
    write(to, bytes);
  }
};

TEST_F(Guess, FindsTheSizeOfDumpsOfEveryKind) {
  quofp_done("synth -o one.raw --size 144x112 --seed 4");
  quofp_done("synth -o four.raw --size 96x160 --count 4 --noise 10");
  write("header.raw", std::string(77, 'h') + read("one.raw"));
  widen("one.raw", "little.raw", 12, false);
  widen("one.raw", "big.raw", 10, true);
  const struct {
    std::string file, width, height, frames, bits, options;
  } dumps[] = {{"one", "144", "112", "1", "8", "--size 144x112"},
               {"four", "96", "160", "4", "8", "--size 96x160 --count 0"},
               {"header", "144", "112", "1", "8", "--size 144x112 --offset 77"},
               {"little", "144", "112", "1", "12", "--size 144x112 --bits 12"},
               {"big", "144", "112", "1", "10", "--size 144x112 --bits 10 --endian big"}};
  for (const auto& dump : dumps) {
    const auto best = rows("guess " + dump.file + ".raw")[1];
    EXPECT_THAT((std::vector<std::string>{best[0], best[1], best[2], best[3], best[7]}),
                testing::ElementsAre(dump.width, dump.height, dump.frames, dump.bits, dump.options));
    quofp_done("info " + dump.file + ".raw " + dump.options);
  }
  quofp_done("guess one.raw -o pictures");
  EXPECT_EQ(read_png("pictures/1-144x112-8bit.png").pixels, read_bytes("one.raw"));
  quofp_done("guess one.raw -o sheet.png --most 3");
  EXPECT_GE(read_png("sheet.png").width, 144);
}

TEST_F(Guess, SaysWhenNothingIsPlausible) {
  Bytes noise(20000);
  Random random(1);
  for (uint8_t& byte : noise) byte = static_cast<uint8_t>(random.next());
  write("noise.raw", noise);
  write("short.raw", "xyz");
  write("flat.raw", std::string(5000, 'x'));
  synth("frame.png");
  expect_exit(3, "guess frame.png", "frame.png: no raw file: quofp info tells its size");
  for (const std::string file : {"noise.raw", "short.raw", "flat.raw"}) {
    expect_exit(3, "guess " + file, file + ": no width makes neighbouring rows alike");
  }
}
