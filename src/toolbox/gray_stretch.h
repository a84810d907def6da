// The stretch rule of the contrast operators.
#pragma once

#include <cstdint>

namespace quo {

inline constexpr int32_t kStretchedWhite = 254;  // 255 stays the mark of background

/** A value moved from the range lo < hi to 0..254, rounded towards zero; outside the range it leaves 0..254 too. */
inline int32_t stretched(int32_t value, int32_t lo, int32_t hi) { return (value - lo) * kStretchedWhite / (hi - lo); }

}  // namespace quo
