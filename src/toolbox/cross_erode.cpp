#include <algorithm>
#include <cstddef>

#include "frame/kept_pixels.h"
#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

using quo::KeptPixels;

// A row of the mask and its neighbours. Outside the image the row itself stands in for them, which adds no condition.
struct Rows {
  const uint8_t* above;
  const uint8_t* middle;
  const uint8_t* below;
};

// A pixel of the first or the last column, which stands in for the neighbour that does not exist.
void erode_edge(const Rows& rows, uint8_t* output, int32_t x, int32_t width, KeptPixels& kept) {
  const uint8_t left = rows.middle[std::max(x - 1, 0)], right = rows.middle[std::min(x + 1, width - 1)];
  kept.keep_one(quo::all_set(rows.middle[x] & rows.above[x] & rows.below[x] & left & right), *output);
}

// A pixel stays when the bits that it has in common with its neighbours are 255.
[[gnu::always_inline]] inline void erode_segment(const Rows& rows, uint8_t* output, int32_t x, int32_t count,
                                                 KeptPixels& kept) {
  const uint8_t* const above = rows.above + x;
  const uint8_t* const middle = rows.middle + x;
  const uint8_t* const below = rows.below + x;
  const auto stays = [=](int32_t i) {
    return quo::all_set(middle[i] & above[i] & below[i] & middle[i - 1] & middle[i + 1]);
  };
  kept.keep(stays, output, count);
}

// Without an output every segment goes to the same place and is forgotten.
QUO_MULTIVERSION uint32_t erode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border) {
  uint8_t forgotten[KeptPixels::kMost];
  if (output == nullptr) quo_memset(forgotten, 0, sizeof forgotten);
  KeptPixels kept;
  const int32_t first = std::max(border, 1), end = width - first;
  for (int32_t y = border; y < height - border; y++) {
    const ptrdiff_t row = static_cast<ptrdiff_t>(y) * width;
    const uint8_t* const middle = mask + row;
    const Rows rows{y > 0 ? middle - width : middle, middle, y < height - 1 ? middle + width : middle};
    const auto eroded = [&](int32_t x) { return output != nullptr ? output + row + x : forgotten; };
    if (border == 0) erode_edge(rows, eroded(0), 0, width, kept);
    for (int32_t x = first, count = 0; x < end; x += count) {
      count = std::min(KeptPixels::kMost, end - x);
      erode_segment(rows, eroded(x), x, count, kept);
    }
    if (border == 0 && width > 1) erode_edge(rows, eroded(width - 1), width - 1, width, kept);
  }
  return kept.number();
}

}  // namespace

void MyCrossErode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border,
                  uint32_t* count) {
  const bool empty = width < 1 || height < 1;
  const uint32_t kept = empty ? 0 : erode(mask, output, width, height, std::max(border, 0));
  if (count != nullptr) *count = kept;
}
