// The stretch rule of the contrast operators.
#pragma once

#include <cstdint>

namespace quo {

inline constexpr int32_t kStretchedWhite = 254;  // 255 stays the mark of background

/** A value moved from the range lo < hi to 0..254, rounded towards zero; outside the range it leaves 0..254 too. */
inline int32_t stretched(int32_t value, int32_t lo, int32_t hi) { return (value - lo) * kStretchedWhite / (hi - lo); }

/** The same for many values of one range, without a division each.
 *
 *  The factor 254 / (hi - lo) is rounded up to a multiple of 2^-16. For a distance d from lo, at most 255, that adds
 *  less than 255 * 2^-16 to the quotient, less than the 1 / (hi - lo) by which it lies below the next integer. The
 *  whole part and both bytes of the fraction are multiplied apart, in 16 bits; rounded down byte by byte, a product
 *  is what it is rounded down at once.
 */
class StretchedRange {
 public:
  StretchedRange(uint8_t lo, uint8_t hi) : lo_(lo) {
    const uint32_t range = static_cast<uint32_t>(hi - lo);
    const uint32_t factor = ((kStretchedWhite << 16) + range - 1) / range;
    whole_ = static_cast<uint16_t>(factor >> 16);
    high_ = static_cast<uint8_t>(factor >> 8);
    low_ = static_cast<uint8_t>(factor);
  }

  /** `value` within the range. */
  uint8_t operator()(uint8_t value) const {
    const auto distance = static_cast<uint16_t>(value - lo_);
    const auto low = static_cast<uint16_t>(static_cast<uint16_t>(distance * low_) >> 8);
    const auto part = static_cast<uint16_t>(static_cast<uint16_t>(distance * high_ + low) >> 8);
    return static_cast<uint8_t>(distance * whole_ + part);
  }

 private:
  uint16_t lo_;
  uint16_t whole_;
  uint16_t high_;
  uint16_t low_;
};

}  // namespace quo
