#include <algorithm>
#include <cstddef>

#include "frame/kept_pixels.h"
#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

// The pixels of an area of which all neighbours are in the image too. A 3 x 3 neighbourhood is all 255 exactly when the
// bits that its pixels have in common are 255.
QUO_MULTIVERSION uint32_t erode(const uint8_t* mask, uint8_t* output, const quo::Area& area) {
  const auto of_three = [](const uint8_t* row, ptrdiff_t i) { return row[i - 1] & row[i] & row[i + 1]; };
  const uint8_t* const above = mask - area.width;
  const uint8_t* const below = mask + area.width;
  const auto stays = [=](ptrdiff_t i, uint8_t, uint8_t) {
    return quo::all_set(of_three(above, i) & of_three(mask, i) & of_three(below, i));
  };
  return quo::keep_pixels(stays, output, area);
}

}  // namespace

void MyRectErode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border, uint32_t* count) {
  border = std::max(border, 1);
  const int32_t right = std::max(width, 0) - border, bottom = std::max(height, 0) - border;  // where the area ends
  uint32_t kept = 0;
  if (border < right && border < bottom) {
    const ptrdiff_t first = ptrdiff_t{border} * width + border;
    kept = erode(mask + first, output + first, {right - border, bottom - border, width});
  }
  if (count != nullptr) *count = kept;
}
