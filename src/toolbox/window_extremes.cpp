#include "toolbox/window_extremes.h"

#include <algorithm>

#include "frame/multiversion.h"

namespace {

using quo::Extremes;
using quo::SharedRows;

constexpr int32_t kVector = 32;
constexpr int32_t kTile = 64;  // columns whose extremes stay in registers from row to row

// A byte wraps at 255, so that 255 itself changes neither.
inline void widen(const uint8_t* __restrict pixels, uint8_t* __restrict lo, uint8_t* __restrict end, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    lo[i] = std::min(lo[i], pixels[i]);
    end[i] = std::max(end[i], static_cast<uint8_t>(pixels[i] + 1));
  }
}

// Of each column and a row more.
inline void widen_into(const uint8_t* __restrict pixels, const uint8_t* __restrict lo, const uint8_t* __restrict end,
                       uint8_t* __restrict wider_lo, uint8_t* __restrict wider_end, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    wider_lo[i] = std::min(lo[i], pixels[i]);
    wider_end[i] = std::max(end[i], static_cast<uint8_t>(pixels[i] + 1));
  }
}

inline void find_in_tile(const SharedRows& rows, const Extremes& upper, const Extremes& lower, int32_t x,
                         int32_t count) {
  uint8_t lo[kTile], end[kTile];
  for (int32_t i = 0; i < count; i++) {
    lo[i] = 255;
    end[i] = 0;
  }
  for (int32_t j = 0; j < rows.rows; j++) widen(rows.shared + x + j * rows.stride, lo, end, count);
  widen_into(rows.above + x, lo, end, upper.lo + x, upper.end + x, count);
  widen_into(rows.below + x, lo, end, lower.lo + x, lower.end + x, count);
}

QUO_MULTIVERSION void find_in_tiles(const SharedRows& rows, int32_t count, const Extremes& upper,
                                    const Extremes& lower) {
  int32_t x = 0;
  for (; x <= count - kTile; x += kTile) find_in_tile(rows, upper, lower, x, kTile);
  if (x == count) return;
  if (count < kTile) return find_in_tile(rows, upper, lower, 0, count);
  find_in_tile(rows, upper, lower, count - kTile, kTile);  // overlaps the one before it
}

// Of each column and the one `step` further.
QUO_MULTIVERSION void join(const uint8_t* __restrict lo, const uint8_t* __restrict end, ptrdiff_t step,
                           uint8_t* __restrict joined_lo, uint8_t* __restrict joined_end, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    joined_lo[i] = std::min(lo[i], lo[i + step]);
    joined_end[i] = std::max(end[i], end[i + step]);
  }
}

}  // namespace

void quo::find_column_extremes(const SharedRows& rows, int32_t count, const Extremes& upper, const Extremes& lower) {
  find_in_tiles(rows, count, upper, lower);
}

// Of 2, 4, 8 ... columns side by side. Where there is room, whole vectors of them: those at the end mean nothing.
const Extremes& quo::join_column_extremes(const Extremes& columns, const Extremes& spare, int32_t count, int32_t width,
                                          int32_t room) {
  const Extremes* found = &columns;
  const Extremes* joined = &spare;
  for (int32_t reach = 1, step; reach < width; reach += step) {
    step = std::min(reach, width - reach);
    const int32_t fitting = count - reach - step + 1;
    const int32_t vectors = (fitting + kVector - 1) / kVector * kVector;
    join(found->lo, found->end, step, joined->lo, joined->end, vectors + step <= room ? vectors : fitting);
    std::swap(found, joined);
  }
  return *found;
}
