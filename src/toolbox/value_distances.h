// Distances of the pixels of windows from one gray value.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "frame/gray.h"

namespace quo {

/** Columns looked at together: those of a strip of pixels and, on either side, those that their windows reach. */
inline constexpr int32_t kStripColumns = 352;

/** The distance of two pixels, 0 where one is background. As max - a + max - b it stays in bytes; GCC 12 takes max -
 *  min apart into selections between 16-bit sums. */
inline uint8_t foreground_distance(uint8_t a, uint8_t b) {
  const uint8_t higher = std::max(a, b);
  const auto distance = static_cast<uint8_t>((higher - a) + (higher - b));
  return static_cast<uint8_t>(distance & (higher == kWhite ? 0 : 255));
}

/** Stands in for a row of a strip that there is none of: background counts nowhere. */
struct WhiteRow {
  uint8_t pixels[kStripColumns];

  constexpr WhiteRow() : pixels() {
    for (uint8_t& pixel : pixels) pixel = kWhite;
  }
};
inline constexpr WhiteRow kWhiteRow;

/** Columns and rows of a window on each side of its pixel. */
struct Half {
  int32_t width;
  int32_t height;
};

/** Columns side by side of the rows of a frame, beginning in the frame. */
struct Columns {
  const uint8_t* first;  // in row 0
  ptrdiff_t stride;
  int32_t count;
  int32_t rows;  // of the frame

  const uint8_t* row(int32_t y) const { return first + y * stride; }
};

/** Sums over columns of the distances of their pixels from a value, background left out, carried from row to row. */
class ValueDistances {
 public:
  static constexpr int32_t kMostRows = 257;  // of a window, whose distances add up to 16 bits

  uint8_t value() const { return value_; }
  int32_t row() const { return row_; }

  /** Forgets what is known. */
  void reset(uint8_t value) {
    value_ = value;
    row_ = kNone;
  }

  /** Over the rows from `y - half_height` to `y + half_height` as far as there are any; from scratch unless it was
   *  at the row above. */
  void move_to(int32_t y, const Columns& columns, int32_t half_height);

  const uint16_t* sums() const { return sums_; }

 private:
  static constexpr int32_t kNone = -1;

  int32_t row_ = kNone;
  uint8_t value_ = 0;
  uint16_t sums_[kStripColumns];
};

/** A window of pixels, `stride` apart from row to row, in a frame that ends at `end`. */
struct WindowPixels {
  const uint8_t* first;
  ptrdiff_t stride;
  int32_t columns;
  int32_t rows;
  const uint8_t* end;
};

/** Whether the distances of a window's pixels from a value below 255, background left out, add up to more than their
 *  number. Background is looked for where `may_have_white`. */
bool distances_exceed_number(const WindowPixels& window, uint8_t value, bool may_have_white);

}  // namespace quo
