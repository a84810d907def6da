#include <algorithm>
#include <cstddef>

#include "frame/kept_pixels.h"
#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

using quo::KeptPixels;

// The pixels of the rows and columns from the border on, up to `right` and `bottom`, not included. A 3 x 3
// neighbourhood is all 255 exactly when the bits that its pixels have in common are 255.
QUO_MULTIVERSION uint32_t erode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t border, int32_t right,
                                int32_t bottom) {
  const auto of_three = [](const uint8_t* row, int32_t i) { return row[i - 1] & row[i] & row[i + 1]; };
  const auto stride = static_cast<size_t>(width);
  KeptPixels kept;
  for (int32_t y = border; y < bottom; y++) {
    for (int32_t x = border, count = 0; x < right; x += count) {
      const size_t at = static_cast<size_t>(y) * stride + static_cast<size_t>(x);
      const uint8_t* const middle = mask + at;
      const uint8_t* const above = middle - stride;
      const uint8_t* const below = middle + stride;
      const auto stays = [=](int32_t i) {
        return quo::all_set(of_three(above, i) & of_three(middle, i) & of_three(below, i));
      };
      count = std::min(KeptPixels::kMost, right - x);
      kept.keep(stays, output + at, count);
    }
  }
  return kept.number();
}

}  // namespace

void MyRectErode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border, uint32_t* count) {
  border = std::max(border, 1);
  const int64_t right = int64_t{width} - border, bottom = int64_t{height} - border;  // first column and row left out
  const bool empty = border >= right || border >= bottom;
  const uint32_t kept =
      empty ? 0 : erode(mask, output, width, border, static_cast<int32_t>(right), static_cast<int32_t>(bottom));
  if (count != nullptr) *count = kept;
}
