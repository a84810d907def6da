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

// Values, not references to pixels: nested choices between references do not become vectors.
inline uint8_t smaller(uint8_t a, uint8_t b) { return std::min(a, b); }
inline uint8_t larger(uint8_t a, uint8_t b) { return std::max(a, b); }

// Of each column and the ones `step`, `next` and both further.
QUO_MULTIVERSION void join(const uint8_t* __restrict lo, const uint8_t* __restrict end, ptrdiff_t step, ptrdiff_t next,
                           uint8_t* __restrict joined_lo, uint8_t* __restrict joined_end, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    joined_lo[i] = smaller(smaller(lo[i], lo[i + step]), smaller(lo[i + next], lo[i + step + next]));
    joined_end[i] = larger(larger(end[i], end[i + step]), larger(end[i + next], end[i + step + next]));
  }
}

}  // namespace

void quo::find_column_extremes(const SharedRows& rows, int32_t count, const Extremes& upper, const Extremes& lower) {
  find_in_tiles(rows, count, upper, lower);
}

// Of 4, 16 ... columns side by side. Where there is room, whole vectors of them: those at the end mean nothing. What was
// just stored is loaded again, shifted, for which a processor waits: the other row gives it something to do.
void quo::join_column_extremes(Extremes (&found)[2], Extremes (&spare)[2], int32_t count, int32_t width, int32_t room) {
  for (int32_t reach = 1; reach < width;) {
    const int32_t step = std::min(reach, width - reach), next = std::min(reach + step, width - reach - step);
    reach += step + next;
    const int32_t fitting = count - reach + 1;
    const int32_t vectors = (fitting + kVector - 1) / kVector * kVector;
    const int32_t joined = vectors + step + next <= room ? vectors : fitting;
    for (int i = 0; i < 2; i++) join(found[i].lo, found[i].end, step, next, spare[i].lo, spare[i].end, joined);
    std::swap(found, spare);
  }
}
