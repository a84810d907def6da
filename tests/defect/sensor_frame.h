// Frames for the defect tests: a sound one, and ways to spoil it.
#pragma once

#include "support/testing.h"

namespace quo_test {

/** A sound frame of 160 x 160: a finger of grays 140 to 171 in the middle, on a background of 230 (value 213). */
inline Image sound_frame() {
  return Image(160, 160, [](int32_t x, int32_t y) {
    const bool finger = x >= 24 && x < 136 && y >= 24 && y < 136;
    return finger ? 140 + (7 * x + 13 * y) % 32 : 230;
  });
}

inline void fill_column(Image& image, int32_t x, uint8_t value) {
  for (int32_t y = 0; y < image.height; y++) image.at(x, y) = value;
}

inline void fill_row(Image& image, int32_t y, uint8_t value) {
  for (int32_t x = 0; x < image.width; x++) image.at(x, y) = value;
}

/** Darkens the block of 2 x 2 frame pixels that is half-size pixel (x, y). */
inline void darken_half_pixel(Image& image, int32_t x, int32_t y) {
  for (const int32_t j : {0, 1}) {
    for (const int32_t i : {0, 1}) image.at(2 * x + i, 2 * y + j) = 5;
  }
}

}  // namespace quo_test
