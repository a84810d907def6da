// What the two removals of vertical stripes share: column means, and taking an offset off a pixel.
#pragma once

#include <cstdint>

namespace quo {

inline constexpr int32_t kColumnStrip = 1024;  // columns whose statistics are taken together

/** Means of the pixels of at most `limit` in each column of an image, truncated; kWhite for a column without one.
 *
 *  @param image    top left pixel, rows of `stride` pixels
 *  @param columns  number of columns; sums, counts and means hold as many entries
 *  @param height   rows
 *  @param sums     work array
 *  @param counts   work array
 *  @param means    written
 */
void column_means(const uint8_t* image, int32_t stride, int32_t columns, int32_t height, uint8_t limit, uint32_t* sums,
                  uint8_t* counts, uint8_t* means);

inline constexpr int16_t kBrightest = 254;  // a corrected pixel stays below the mark of saturated pixels

/** pixel - offset, limited to 0..kBrightest; offset from -255 to 255. */
inline uint8_t correct_pixel(uint8_t pixel, int16_t offset) {
  const auto corrected = static_cast<int16_t>(pixel - offset);
  const int16_t limited = corrected < kBrightest ? corrected : kBrightest;
  return static_cast<uint8_t>(limited > 0 ? limited : 0);
}

}  // namespace quo
