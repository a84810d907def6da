// The eight bins of ridge orientations.
#pragma once

#include <cstdint>

#include "quoFPAlg.h"

namespace quo {

inline constexpr int32_t kFirstBinStart = 11;  // degrees; below it, and above the last bin, lies bin 0
inline constexpr int32_t kLastBinEnd = 168;    // degrees, included
inline constexpr int32_t kBinWidth = 23;       // degrees; bin 7 has three less

constexpr uint32_t direction_bin(int32_t degrees) {
  if (degrees < kFirstBinStart || degrees > kLastBinEnd) return 0;
  return static_cast<uint32_t>((degrees - kFirstBinStart) / kBinWidth + 1);
}

}  // namespace quo
