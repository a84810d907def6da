// What both removals of vertical stripes do to a pixel.
#pragma once

#include <cstdint>

namespace quo {

inline constexpr int16_t kBrightestCorrected = 254;  // so that 255 stays the mark of saturated pixels

/** pixel - offset, limited to 0..kBrightestCorrected; offset from -255 to 255. */
inline uint8_t take_offset_off(uint8_t pixel, int16_t offset) {
  const auto corrected = static_cast<int16_t>(pixel - offset);
  const int16_t limited = corrected < kBrightestCorrected ? corrected : kBrightestCorrected;
  return static_cast<uint8_t>(limited > 0 ? limited : 0);
}

}  // namespace quo
