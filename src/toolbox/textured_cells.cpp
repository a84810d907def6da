#include "toolbox/textured_cells.h"

#include <algorithm>

#include "frame/multiversion.h"

namespace {

// Of the two pairs of pixels in each column of a row of cells.
QUO_MULTIVERSION void add_differences(const uint8_t* __restrict first, const uint8_t* __restrict second,
                                      const uint8_t* __restrict third, const uint8_t* __restrict fourth,
                                      uint16_t* __restrict sums, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    sums[i] = static_cast<uint16_t>(quo::foreground_distance(first[i], third[i]) +
                                    quo::foreground_distance(second[i], fourth[i]));
  }
}

QUO_MULTIVERSION void mark_cells(const uint32_t* __restrict before, const uint32_t* __restrict last, uint32_t enough,
                                 uint32_t* __restrict marks, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    marks[i] = static_cast<int32_t>(last[i] - before[i]) > static_cast<int32_t>(enough) ? 0x01010101U : 0U;
  }
}

// Cells to either side that are in the windows of all pixels of a cell; negative when not even its own is.
int32_t reach(int32_t half) { return half < 3 ? -1 : (half - 3) / quo::TexturedCells::kSide; }

}  // namespace

quo::TexturedCells::TexturedCells(const Columns& columns, const Half& half, int32_t left, int32_t count)
    : columns_(columns),
      reach_x_(reach(half.width)),
      reach_y_(reach(half.height)),
      before_(std::clamp(reach_x_, 0, left / kSide)),
      cells_(0),
      marked_((count + kSide - 1) / kSide),
      enough_(static_cast<uint32_t>((2 * half.width + 1) * (2 * half.height + 1))) {
  if (reach_x_ < 0 || reach_y_ < 0) return;
  const int32_t skipped = left - before_ * kSide;
  columns_.first += skipped;
  cells_ = std::min((columns.count - skipped) / kSide, before_ + marked_ + reach_x_);
  for (int32_t i = 0; i < cells_; i++) sums_[i] = 0;
  for (int32_t k = 0; k < std::min(reach_y_, columns.rows / kSide); k++) add_cells(k, true);
}

void quo::TexturedCells::mark_row(int32_t y, uint32_t* marks) {
  const int32_t row = y / kSide;
  if (cells_ > 0) {
    if (row + reach_y_ < columns_.rows / kSide) add_cells(row + reach_y_, true);
    if (row - reach_y_ > 0) add_cells(row - reach_y_ - 1, false);
  }
  // The sums of the cells before each, for all that are in reach of a marked one; outside the image there are none.
  uint32_t running[kMostCells + 2];
  const int32_t reach = std::max(reach_x_, 0), missing = reach - before_, all = marked_ + 2 * reach;
  uint32_t sum = 0;
  for (int32_t i = 0; i < all; i++) {
    running[i] = sum;
    if (i >= missing && i < missing + cells_) sum += sums_[i - missing];
  }
  running[all] = sum;
  mark_cells(running, running + 2 * reach + 1, enough_, marks, marked_);
}

void quo::TexturedCells::add_cells(int32_t cell_row, bool entering) {
  uint16_t differences[kStripColumns];
  const uint8_t* const rows = columns_.row(cell_row * kSide);
  const ptrdiff_t stride = columns_.stride;
  add_differences(rows, rows + stride, rows + 2 * stride, rows + 3 * stride, differences, cells_ * kSide);
  for (int32_t i = 0; i < cells_; i++) {
    const uint16_t* const cell = differences + i * kSide;
    const auto sum = static_cast<uint32_t>(cell[0] + cell[1] + cell[2] + cell[3]);
    sums_[i] += entering ? sum : -sum;
  }
}
