// A small generator with the same sequence everywhere; the standard library's distributions differ between systems.
#pragma once

#include <cstdint>

namespace quo_test {

/** splitmix64 by S. Vigna. */
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}

  uint64_t next() {
    uint64_t z = state_ += 0x9E3779B97F4A7C15U;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31);
  }

  /** A value from low to high, both included. */
  int32_t between(int32_t low, int32_t high) {
    const uint64_t span = static_cast<uint64_t>(static_cast<int64_t>(high) - low) + 1;
    return static_cast<int32_t>(low + static_cast<int64_t>(next() % span));
  }

  uint8_t byte() { return static_cast<uint8_t>(next() >> 56); }

  bool chance(uint32_t percent) { return next() % 100 < percent; }

 private:
  uint64_t state_;
};

}  // namespace quo_test
