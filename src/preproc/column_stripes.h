// What the two removals of vertical stripes share: column means, and taking an offset off a pixel.
#pragma once

#include <algorithm>
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

inline constexpr uint8_t kBrightest = 254;  // a corrected pixel stays below the mark of saturated pixels

/** The offset of a column in two steps that stay within 8 bits: `darken` is taken off, then `lift` is put on. One of
 *  them is 0. */
struct StripeOffset {
  uint8_t darken;
  uint8_t lift;
};

/** Splits an offset from -255 to 255. A lift beyond kBrightest acts like one of kBrightest. */
inline StripeOffset split_offset(int32_t offset) {
  return {static_cast<uint8_t>(std::max(offset, 0)), static_cast<uint8_t>(std::clamp(-offset, 0, int{kBrightest}))};
}

/** pixel - darken + lift, limited to 0..kBrightest. */
inline uint8_t correct_pixel(uint8_t pixel, uint8_t darken, uint8_t lift) {
  const auto darkened = static_cast<uint8_t>(std::max(pixel, darken) - darken);
  const auto room = static_cast<uint8_t>(kBrightest - lift);
  return static_cast<uint8_t>(std::min(darkened, room) + lift);
}

}  // namespace quo
