// Areas whose texture alone shows that no pixel of theirs can be close to what surrounds it.
#pragma once

#include <cstdint>

#include "toolbox/value_distances.h"

namespace quo {

/** The differences inside cells of 4 x 4 pixels, and which cells lie amid so many that all their pixels are textured.
 *
 *  The distances of two pixels from a third add up to their own distance or more, and so the distances of a window's
 *  pixels to at least the differences of any of its pairs that share no pixel. Here pairs are the pixels two rows apart
 *  in a cell, without background; all pixels of a cell have the cells up to (half - 3) / 4 cells away in their
 *  windows. */
class TexturedCells {
 public:
  /** Under a strip of `count` pixels that begins `left` pixels right of where the columns do. */
  TexturedCells(const Columns& columns, const Half& half, int32_t left, int32_t count);

  static constexpr int32_t kSide = 4;
  static constexpr int32_t kMostCells = kStripColumns / kSide;

  /** Of the row of cells that pixel row `y` is in, for each cell a byte of 1 for each of its four columns when its
   *  pixels are textured, and 0 otherwise. Rows are to be asked for from the top, each once. */
  void mark_row(int32_t y, uint32_t* marks);

 private:
  void add_cells(int32_t cell_row, bool entering);

  Columns columns_;  // from the first cell on
  int32_t reach_x_, reach_y_;
  int32_t before_;  // cells left of the first pixel
  int32_t cells_;
  int32_t marked_;  // cells that hold pixels of the strip, in part at least
  uint32_t enough_;
  uint32_t sums_[kMostCells];  // of the differences in the cells of a column that are in reach
};

}  // namespace quo
