// Variance of gray values from exact integer sums.
#pragma once

#include <bit>
#include <cstdint>

namespace quo {

/** Sum of gray values and of their squares; exact for up to 66,051 values. */
struct GraySums {
  uint32_t values = 0;
  uint32_t squares = 0;
};

inline constexpr uint32_t kLargestExactCount = 4096;  // see has_exact_variance
static_assert(uint64_t{kLargestExactCount} * 255 * 255 <= UINT32_MAX);

/** Whether every step of the variance of this many gray values is exact in double precision.
 *
 *  For a count of 2^k the mean is a multiple of 2^-k, so are the deviations, and their squares are multiples of 2^-2k.
 *  A sum of 2^k squares stays below 2^(16 + k). It therefore needs at most 16 + 3k bits: 52 for the 4096 values of
 *  k = 12, within the 53 bits of a double. Nothing rounds, whatever the order of the steps. */
inline bool has_exact_variance(uint32_t count) { return count <= kLargestExactCount && std::has_single_bit(count); }

/** The variance of `count` values with these sums, where has_exact_variance(count).
 *
 *  The squared deviations add up to squares - values^2 / count. Multiplied by the count this is an integer below
 *  2^(16 + 2k), and dividing by the power of two 2^2k is exact. */
inline double exact_variance(GraySums sums, uint32_t count) {
  const uint64_t scaled = uint64_t{count} * sums.squares - uint64_t{sums.values} * sums.values;
  return static_cast<double>(scaled) / static_cast<double>(uint64_t{count} * count);
}

/** Population variance of `count` gray values, at least one. */
double population_variance(const uint8_t* data, uint32_t count);

}  // namespace quo
