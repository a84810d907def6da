// Small helpers on gray values.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quo {

inline constexpr uint8_t kWhite = 255;         // saturated or background
inline constexpr uint8_t kNoBackground = 255;  // stands in where no background value is found

inline uint32_t abs_diff(uint32_t a, uint32_t b) { return a > b ? a - b : b - a; }

/** A value limited to the gray range 0..255. */
inline uint8_t clamp_gray(int32_t value) { return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value); }

/** A gray image to be read, without padding between its rows. */
struct GrayFrame {
  const uint8_t* pixels;
  int32_t width;
  int32_t height;

  const uint8_t* row(int32_t y) const { return pixels + static_cast<ptrdiff_t>(y) * width; }
};

}  // namespace quo
