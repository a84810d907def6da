// The enhancement coefficient as the gain of the gray balance.
#pragma once

#include <cstdint>

#include "quoFPAlg.h"

namespace quo {

/** The enhancement coefficient of a frame as a gain: truncated, its low 8 bits; 0 below 0. */
inline uint8_t enhance_gain(const uint8_t* image, int32_t width, int32_t height, int32_t target) {
  const double coefficient = GetEnhanceCoef(image, static_cast<uint32_t>(width), static_cast<uint32_t>(height), target);
  if (coefficient < 0) return 0;
  return static_cast<uint8_t>(static_cast<uint32_t>(coefficient));  // at most INT32_MAX + 0.5
}

}  // namespace quo
