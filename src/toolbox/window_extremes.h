// Smallest and largest pixels of windows side by side.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quo {

/** Smallest value, and largest plus one, of pixels below 255; 255 and 0 where there are none. */
struct Extremes {
  uint8_t* lo;
  uint8_t* end;
};

/** Of each of `count` columns, over so many rows of pixels, `stride` apart. */
void find_column_extremes(const uint8_t* pixels, ptrdiff_t stride, int32_t rows, int32_t count, const Extremes& found);

/** From those of `count` columns, those of the windows `width` columns wide that begin at each column, as far as they fit.
 *  `spare` holds as many; the result is in one of the two. */
const Extremes& join_column_extremes(const Extremes& columns, const Extremes& spare, int32_t count, int32_t width);

}  // namespace quo
