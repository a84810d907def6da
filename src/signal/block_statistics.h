// The block grid on which both signal measurements stand.
#pragma once

#include <cstdint>

#include "quoFPAlg.h"

namespace quo {

inline constexpr uint8_t kBlockMargin = 4;  // pixels left out along each edge
inline constexpr int32_t kBlockSize = 16;   // pixels along the side of a block

/** The median of `count` values, at least one; the upper of the two middle ones for an even count. Sorts them. */
inline double upper_median(double* values, uint32_t count) {
  quo_short(values, static_cast<int32_t>(count));
  return values[count / 2];
}

}  // namespace quo
