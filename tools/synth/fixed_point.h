// Trigonometry and randomness in integers, so that a synthetic frame has the same bytes on every machine.
#pragma once

#include <cstdint>

namespace quofp::synth {

/** Angles are fractions of a turn: 65536 is one turn, and sums wrap around by themselves. */
using Angle = uint16_t;
inline constexpr int32_t kTurn = 65536;

/** Scale of sine and cosine. */
inline constexpr int32_t kUnit = 32767;

/** Sine, from a quarter-wave table with straight lines in between; within 6 of the exact value. */
int32_t sine(Angle angle);
inline int32_t cosine(Angle angle) { return sine(static_cast<Angle>(angle + kTurn / 4)); }

/** Angle of the vector (x, y), both within 2^24; within 2/65536 of a turn of the exact value. */
Angle angle_of(int32_t x, int32_t y);

/** Largest integer whose square is at most `value`. */
uint32_t square_root(uint64_t value);

/** The mixing step of splitmix64 by S. Vigna. */
constexpr uint64_t mix(uint64_t z) {
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
  return z ^ (z >> 31);
}

/** splitmix64. Generators for different purposes start from one seed and their own stream number. */
class Random {
 public:
  Random(uint64_t seed, uint64_t stream) : state_(mix(seed + 0x9E3779B97F4A7C15U * (stream + 1))) {}

  uint64_t next() { return mix(state_ += 0x9E3779B97F4A7C15U); }

  /** A value from low to high, both included. */
  int32_t between(int32_t low, int32_t high) {
    const auto span = static_cast<uint64_t>(int64_t{high} - low + 1);
    return static_cast<int32_t>(low + static_cast<int64_t>(next() % span));
  }

  /** A nearly normal value with mean 0 and standard deviation 65536: twelve uniform ones summed. */
  int32_t normal();

 private:
  uint64_t state_;
};

}  // namespace quofp::synth
