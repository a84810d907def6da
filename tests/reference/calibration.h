// Calibration as it is defined, block by block.
#pragma once

#include <cstdint>

#include "support/frames.h"

namespace reference {

using quo_test::Image;

struct Finger {
  uint8_t mean = 0, coverage = 0;
  bool operator==(const Finger&) const = default;
};

/** The blocks with a mean below 220. */
inline Finger finger(const Image& frame) {
  uint32_t all = 0, blocks = 0, total = 0;
  for (int32_t top = 0; top + 8 <= frame.height; top += 8) {
    for (int32_t left = 0; left + 8 <= frame.width; left += 8) {
      uint32_t sum = 0;
      for (int32_t i = 0; i < 64; i++) sum += frame.at(left + i % 8, top + i / 8);
      all++;
      if (sum > 14079) continue;
      blocks++;
      total += sum;
    }
  }
  if (blocks == 0) return {255, 0};
  return {static_cast<uint8_t>(total / (64 * blocks)), static_cast<uint8_t>(100 * blocks / all)};
}

}  // namespace reference
