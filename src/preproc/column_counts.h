// Sums and counts of the darker pixels of each column, over as many rows as small counters hold.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quo {

inline constexpr int32_t kPartialRows = 255;  // an 8-bit count and a 16-bit sum of gray levels hold as many
static_assert(kPartialRows * 255 <= UINT16_MAX);

inline void count_row(const uint8_t* __restrict row, int32_t columns, uint8_t limit, uint16_t* __restrict sums,
                      uint8_t* __restrict counts) {
  for (int32_t x = 0; x < columns; x++) {
    const uint8_t counted = row[x] <= limit;
    sums[x] = static_cast<uint16_t>(sums[x] + row[x] * counted);
    counts[x] = static_cast<uint8_t>(counts[x] + counted);
  }
}

/** Sums and counts, for each of some columns, the pixels of at most `limit` in `rows` rows, at most kPartialRows. */
inline void count_columns(const uint8_t* top_left, int32_t stride, int32_t columns, int32_t rows, uint8_t limit,
                          uint16_t* sums, uint8_t* counts) {
  for (int32_t x = 0; x < columns; x++) {
    sums[x] = 0;
    counts[x] = 0;
  }
  for (int32_t y = 0; y < rows; y++) {
    count_row(top_left + static_cast<ptrdiff_t>(y) * stride, columns, limit, sums, counts);
  }
}

}  // namespace quo
