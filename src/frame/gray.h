// Small helpers on gray values.
#pragma once

#include <cstdint>

namespace quo {

inline constexpr uint8_t kWhite = 255;         // saturated or background
inline constexpr uint8_t kNoBackground = 255;  // stands in where no background value is found

inline uint32_t abs_diff(uint32_t a, uint32_t b) { return a > b ? a - b : b - a; }

/** A value limited to the gray range 0..255. */
inline uint8_t clamp_gray(int32_t value) { return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value); }

}  // namespace quo
