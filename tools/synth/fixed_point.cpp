#include "synth/fixed_point.h"

namespace quofp::synth {
namespace {

// round(32767 * sin(i * pi / 128))
constexpr int32_t kQuarterWave[65] = {0,     804,   1608,  2410,  3212,  4011,  4808,  5602,  6393,  7179,  7962,
                                      8739,  9512,  10278, 11039, 11793, 12539, 13279, 14010, 14732, 15446, 16151,
                                      16846, 17530, 18204, 18868, 19519, 20159, 20787, 21403, 22005, 22594, 23170,
                                      23731, 24279, 24811, 25329, 25832, 26319, 26790, 27245, 27683, 28105, 28510,
                                      28898, 29268, 29621, 29956, 30273, 30571, 30852, 31113, 31356, 31580, 31785,
                                      31971, 32137, 32285, 32412, 32521, 32609, 32678, 32728, 32757, 32767};

// round(2^32 * atan(2^-i) / (2 * pi)): the angles of CORDIC (J. Volder, 1959) in 1/65536 of an Angle step
constexpr uint32_t kRotations[16] = {536870912, 316933406, 167458907, 85004756, 42667331, 21354465, 10679838, 5340245,
                                     2670163,   1335087,   667544,    333772,   166886,   83443,    41722,    20861};

int32_t quarter_sine(int32_t angle) {
  const int32_t step = angle >> 8, rest = angle & 255;
  if (rest == 0) return kQuarterWave[step];
  return kQuarterWave[step] + ((kQuarterWave[step + 1] - kQuarterWave[step]) * rest + 128) / 256;
}

}  // namespace

int32_t sine(Angle angle) {
  const int32_t within = angle & (kTurn / 4 - 1);
  switch (angle / (kTurn / 4)) {
    case 0:
      return quarter_sine(within);
    case 1:
      return quarter_sine(kTurn / 4 - within);
    case 2:
      return -quarter_sine(within);
    default:
      return -quarter_sine(kTurn / 4 - within);
  }
}

Angle angle_of(int32_t x, int32_t y) {
  if (x == 0 && y == 0) return 0;
  int64_t u = int64_t{x} * 65536, v = int64_t{y} * 65536;
  uint32_t angle = 0;
  if (u < 0) {
    u = -u;
    v = -v;
    angle = 0x80000000U;
  }
  for (int i = 0; i < 16; i++) {
    const int64_t du = v / (int64_t{1} << i), dv = u / (int64_t{1} << i);
    if (v > 0) {
      u += du;
      v -= dv;
      angle += kRotations[i];
    } else {
      u -= du;
      v += dv;
      angle -= kRotations[i];
    }
  }
  return static_cast<Angle>((angle + 0x8000U) >> 16);
}

uint32_t square_root(uint64_t value) {
  uint64_t root = 0;
  for (uint64_t bit = uint64_t{1} << 31; bit != 0; bit >>= 1) {
    if ((root + bit) * (root + bit) <= value) root += bit;
  }
  return static_cast<uint32_t>(root);
}

int32_t Random::normal() {
  int32_t sum = -6 * 65536;
  for (int draw = 0; draw < 3; draw++) {
    for (uint64_t bits = next(), part = 0; part < 4; part++, bits >>= 16) sum += static_cast<int32_t>(bits & 0xFFFF);
  }
  return sum;
}

}  // namespace quofp::synth
