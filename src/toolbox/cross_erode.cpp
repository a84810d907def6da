#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "quoFPAlg.h"

namespace {

using quo::kWhite;

constexpr int32_t kSegment = 240;  // columns, of which as many may stay as a byte can count
static_assert(kSegment <= UINT8_MAX);

// A row of the mask and its neighbours. Outside the image the row itself stands in for them, which adds no condition.
struct Rows {
  const uint8_t* above;
  const uint8_t* middle;
  const uint8_t* below;
};

// The bits that a pixel has in common with its neighbours are 255 exactly when all of them are.
uint8_t survives(int pixels_in_common) { return pixels_in_common == kWhite ? kWhite : 0; }

// Sets the outputs of the pixels that stay and returns how many; of the others no bit changes.
// Never inlined: a compiler that sees the neighbours to be one row shifted carries pixels from step to step, and then
// finds no vectors.
[[gnu::noinline]] uint8_t keep_set(const uint8_t* __restrict above, const uint8_t* __restrict left,
                                   const uint8_t* __restrict middle, const uint8_t* __restrict right,
                                   const uint8_t* __restrict below, uint8_t* __restrict output, int32_t count) {
  uint8_t kept = 0;
  for (int32_t i = 0; i < count; i++) {
    const uint8_t set = survives(middle[i] & above[i] & below[i] & left[i] & right[i]);
    output[i] |= set;
    kept = static_cast<uint8_t>(kept + (set & 1));
  }
  return kept;
}

// Erodes the columns of a row from `first` to `end`, not included; returns how many pixels stay. The first and the last
// column of the image make segments of their own, in which the pixel stands in for the neighbour that does not exist.
// Without an output every segment goes to the same place and is forgotten.
uint32_t erode_row(const Rows& rows, uint8_t* output, int32_t first, int32_t end, int32_t width) {
  uint8_t forgotten[kSegment];
  if (output == nullptr) {
    for (uint8_t& byte : forgotten) byte = 0;
  }
  uint32_t kept = 0;
  for (int32_t x = first, count = 0; x < end; x += count) {
    const bool at_left = x == 0, at_right = x == width - 1;
    count = at_left || at_right ? 1 : std::min(kSegment, std::min(end, width - 1) - x);
    const uint8_t* const middle = rows.middle + x;
    kept += keep_set(rows.above + x, at_left ? middle : middle - 1, middle, at_right ? middle : middle + 1,
                     rows.below + x, output != nullptr ? output + x : forgotten, count);
  }
  return kept;
}

uint32_t erode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border) {
  uint32_t kept = 0;
  for (int32_t y = border; y < height - border; y++) {
    const ptrdiff_t row = static_cast<ptrdiff_t>(y) * width;
    const uint8_t* const middle = mask + row;
    const Rows rows{y > 0 ? middle - width : middle, middle, y < height - 1 ? middle + width : middle};
    kept += erode_row(rows, output != nullptr ? output + row : nullptr, border, width - border, width);
  }
  return kept;
}

}  // namespace

void MyCrossErode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border,
                  uint32_t* count) {
  const bool empty = width < 1 || height < 1;
  const uint32_t kept = empty ? 0 : erode(mask, output, width, height, std::max(border, 0));
  if (count != nullptr) *count = kept;
}
