#include <algorithm>
#include <cstddef>

#include "frame/kept_pixels.h"
#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

constexpr int32_t kSegment = 1024;  // columns looked at together
static_assert(kSegment <= quo::kMostKept);

// A row of the mask and its neighbours. Outside the image the row itself stands in for them, which adds no condition.
struct Rows {
  const uint8_t* above;
  const uint8_t* middle;
  const uint8_t* below;
};

// A pixel stays when the bits that it has in common with its neighbours are 255.
QUO_MULTIVERSION uint32_t keep_set(const uint8_t* above, const uint8_t* left, const uint8_t* middle,
                                   const uint8_t* right, const uint8_t* below, uint8_t* output, int32_t count) {
  const auto stays = [=](int32_t i) { return quo::all_set(middle[i] & above[i] & below[i] & left[i] & right[i]); };
  return quo::keep_passing(stays, output, count);
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
