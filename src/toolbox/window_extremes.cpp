#include "toolbox/window_extremes.h"

#include <algorithm>

#include "frame/multiversion.h"

namespace {

using quo::Extremes;

constexpr int32_t kTile = 64;  // columns whose extremes stay in registers from row to row

// A byte wraps at 255, so that 255 itself changes neither.
inline void widen(const uint8_t* __restrict pixels, uint8_t* __restrict lo, uint8_t* __restrict end, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    lo[i] = std::min(lo[i], pixels[i]);
    end[i] = std::max(end[i], static_cast<uint8_t>(pixels[i] + 1));
  }
}

inline void find_in_tile(const uint8_t* pixels, ptrdiff_t stride, int32_t rows, uint8_t* __restrict lo,
                         uint8_t* __restrict end, int32_t count) {
  uint8_t tile_lo[kTile], tile_end[kTile];
  for (int32_t i = 0; i < count; i++) {
    tile_lo[i] = 255;
    tile_end[i] = 0;
  }
  for (int32_t j = 0; j < rows; j++) widen(pixels + j * stride, tile_lo, tile_end, count);
  for (int32_t i = 0; i < count; i++) {
    lo[i] = tile_lo[i];
    end[i] = tile_end[i];
  }
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

QUO_MULTIVERSION void quo::find_column_extremes(const uint8_t* pixels, ptrdiff_t stride, int32_t rows, int32_t count,
                                                const Extremes& found) {
  int32_t x = 0;
  for (; x <= count - kTile; x += kTile) find_in_tile(pixels + x, stride, rows, found.lo + x, found.end + x, kTile);
  if (x == count) return;
  if (count < kTile) return find_in_tile(pixels, stride, rows, found.lo, found.end, count);
  x = count - kTile;  // the last tile overlaps the one before it
  find_in_tile(pixels + x, stride, rows, found.lo + x, found.end + x, kTile);
}

// Of 2, 4, 8 ... columns side by side.
const Extremes& quo::join_column_extremes(const Extremes& columns, const Extremes& spare, int32_t count,
                                          int32_t width) {
  const Extremes* found = &columns;
  const Extremes* joined = &spare;
  for (int32_t reach = 1, step; reach < width; reach += step) {
    step = std::min(reach, width - reach);
    join(found->lo, found->end, step, joined->lo, joined->end, count - reach - step + 1);
    std::swap(found, joined);
  }
  return *found;
}
