// Line defects as the entry points use them.
#pragma once

#include <cstdint>

#include "frame/scratch.h"

namespace quo {

/** The line defects of a frame: for each column and each row 1 when it lies on a defect and 0 otherwise, and the number
 *  of pixels on them. A pixel on a marked column and a marked row counts in both. */
struct BadLines {
  Scratch<uint8_t> columns;
  Scratch<uint8_t> rows;
  uint32_t column_pixels = 0;
  uint32_t row_pixels = 0;

  bool none() const { return (column_pixels | row_pixels) == 0; }
};

/** Finds the line defects of a frame, as CheckBadLine() does.
 *  @return false, with `lines` empty, when memory cannot be allocated */
[[nodiscard]] bool find_bad_lines(const uint8_t* image, int32_t width, int32_t height, uint8_t reference,
                                  BadLines& lines);

/** Sets every pixel of the marked lines to 255 in a width x height mark image. */
void paint_bad_lines(const BadLines& lines, uint8_t* mark_image, int32_t width, int32_t height);

}  // namespace quo
