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

/** Rows of pixels: `rows` of them, `stride` apart, that two windows one below the other share, and the rows above and
 *  below them that only the upper and only the lower has. */
struct SharedRows {
  const uint8_t* above;
  const uint8_t* shared;
  const uint8_t* below;
  ptrdiff_t stride;
  int32_t rows;
};

/** Of each of `count` columns in the upper and in the lower window. */
void find_column_extremes(const SharedRows& rows, int32_t count, const Extremes& upper, const Extremes& lower);

/** From those of `count` columns in two rows of windows, those of the windows `width` columns wide that begin at each
 *  column, as far as they fit. `found` and `spare` change places as often as needed for the result to be in `found`; each
 *  has `room` for that many columns. */
void join_column_extremes(Extremes (&found)[2], Extremes (&spare)[2], int32_t count, int32_t width, int32_t room);

}  // namespace quo
