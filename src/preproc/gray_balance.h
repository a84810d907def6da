// What the gray balance for any radius and that for a radius of 3 share.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quo {

inline constexpr uint8_t kBalanceLimit = 254;   // pixels from here on are saturated and stay as they are
inline constexpr int32_t kBalanceCentre = 128;  // gray level of a pixel that equals its local mean

/** Rows whose local means are taken over each other alone. */
struct Band {
  uint8_t* pixels;
  int32_t width;
  int32_t rows;
  int32_t top_context;  // rows that feed the means but are not changed
  int32_t bottom_context;

  uint8_t* row(int32_t y) const { return pixels + static_cast<ptrdiff_t>(y) * width; }
  bool changes(int32_t y) const { return y >= top_context && y < rows - bottom_context; }
};

inline constexpr uint32_t kBalanceRadius = 3;   // of the neighbourhoods below, pixels
inline constexpr int32_t kBalanceSmallest = 7;  // columns and rows of a band from which on they can be used

/** Balances a band of at least 7 x 7 pixels over neighbourhoods of 7 x 7 pixels, with a gain of at least 2. `work` is
 *  the memory of the integral image of the band, at least (width + 1) x 8 sums. */
void balance_band_7x7(const Band& band, uint8_t gain, uint32_t* work);

}  // namespace quo
