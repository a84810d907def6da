// What decides the threshold of a pixel: the sums over its window.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace quo {

/** The smallest pixel value that becomes white, 0 for a flat window; kUnclear where the sums leave open if it is
 *  flat. */
using Limit = int16_t;
inline constexpr Limit kUnclear = -1;

/** A window holds no ridges when its variance is below this, and so its standard deviation below 3. */
inline constexpr int32_t kFlatVariance = 9;

struct Rule {
  int32_t size;    // side of the window
  int32_t offset;  // subtracted from the mean, within +-256

  double pixels() const { return static_cast<double>(size) * size; }
};

/** Sums over the windows at positions side by side, carried from row to row, for windows of any size. */
class LargeWindowSums {
 public:
  static constexpr int32_t kPositions = 512;

  void clear(int32_t positions);

  /** Takes a row of pixels in, and one out unless it is null: those that begin at the first position. */
  void move_down(const uint8_t* entering, const uint8_t* leaving, const Rule& rule, int32_t positions);

  void find_limits(const Rule& rule, Limit* limits, int32_t positions) const;

 private:
  // Below 2^48 and so exact.
  double values_[kPositions];
  double squares_[kPositions];
};

/** The same for windows of up to kLargestSize pixels a side, in vectors of 32-bit sums. */
class SmallWindowSums {
 public:
  static constexpr int32_t kLargestSize = 64;
  static constexpr int32_t kPositions = 640;

  void clear(int32_t positions);
  void move_down(const uint8_t* entering, const uint8_t* leaving, const Rule& rule, int32_t positions);
  void find_limits(const Rule& rule, Limit* limits, int32_t positions) const;

 private:
  static constexpr int32_t kColumns = kPositions + kLargestSize;

  uint32_t values_[kColumns];  // of each column, over the rows of the window
  uint32_t squares_[kColumns];
  uint32_t running_values_[kColumns];  // over the columns before
  uint32_t running_squares_[kColumns];
};

/** From floor(mean) - offset + 1 on a pixel is white: p > mean - offset in double precision. An integer k = p + offset
 *  and the exact mean differ by at least 1 / n or not at all; roundings of 2^-44 do not bridge that. */
inline Limit contrast_limit(int32_t whole_mean, int32_t offset) {
  return static_cast<Limit>(std::clamp(whole_mean - offset + 1, 0, 256));
}

}  // namespace quo
