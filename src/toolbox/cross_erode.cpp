#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "quoFPAlg.h"

namespace {

using quo::kWhite;

constexpr int32_t kStrip = 1024;  // columns eroded at a time, for a buffer on the stack

// A row of the mask and its neighbours. Outside the image the row itself stands in for them, which adds no condition.
struct Rows {
  const uint8_t* above;
  const uint8_t* middle;
  const uint8_t* below;
};

uint8_t survives(int pixels_in_common) { return pixels_in_common == kWhite ? kWhite : 0; }

// Not for the first and the last column of the image, whose outer neighbours do not exist.
void find_survivors(const Rows& rows, int32_t first, uint8_t* __restrict survivors, int32_t count) {
  const uint8_t* const above = rows.above + first;
  const uint8_t* const middle = rows.middle + first;
  const uint8_t* const below = rows.below + first;
  for (int32_t i = 0; i < count; i++) {
    survivors[i] = survives(middle[i] & above[i] & below[i] & middle[i - 1] & middle[i + 1]);
  }
}

void find_edge_survivor(const Rows& rows, int32_t x, int32_t width, uint8_t* survivor) {
  const uint8_t left = rows.middle[std::max(x - 1, 0)];
  const uint8_t right = rows.middle[std::min(x + 1, width - 1)];
  *survivor = survives(rows.middle[x] & rows.above[x] & rows.below[x] & left & right);
}

uint32_t count_set(const uint8_t* survivors, int32_t count) {
  uint32_t set = 0;
  for (int32_t i = 0; i < count; i++) set += survivors[i] & 1U;
  return set;
}

void add_to(uint8_t* __restrict output, const uint8_t* __restrict survivors, int32_t count) {
  for (int32_t i = 0; i < count; i++) output[i] |= survivors[i];
}

// Erodes the columns of a row from `first` to `end`, not included. `output` may be null. Returns how many stay.
uint32_t erode_row(const Rows& rows, uint8_t* output, int32_t first, int32_t end, int32_t width) {
  uint32_t set = 0;
  for (int32_t x = first, count = 0; x < end; x += count) {
    uint8_t survivors[kStrip];
    count = std::min(kStrip, end - x);
    const int32_t skipped = x == 0 ? 1 : 0;
    const int32_t inner_end = std::min(x + count, width - 1);
    if (skipped > 0) find_edge_survivor(rows, 0, width, survivors);
    find_survivors(rows, x + skipped, survivors + skipped, inner_end - x - skipped);
    if (x + count == width) find_edge_survivor(rows, width - 1, width, survivors + count - 1);
    set += count_set(survivors, count);
    if (output != nullptr) add_to(output + x, survivors, count);
  }
  return set;
}

uint32_t erode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border) {
  if (width < 1 || height < 1) return 0;
  uint32_t set = 0;
  for (int32_t y = border; y < height - border; y++) {
    const ptrdiff_t row = static_cast<ptrdiff_t>(y) * width;
    const uint8_t* const middle = mask + row;
    const Rows rows{y > 0 ? middle - width : middle, middle, y < height - 1 ? middle + width : middle};
    set += erode_row(rows, output != nullptr ? output + row : nullptr, border, width - border, width);
  }
  return set;
}

}  // namespace

void MyCrossErode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border,
                  uint32_t* count) {
  const uint32_t set = erode(mask, output, width, height, std::max(border, 0));
  if (count != nullptr) *count = set;
}
