#include <algorithm>
#include <cstddef>

#include "frame/kept_pixels.h"
#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

struct Image {
  const uint8_t* mask;
  uint8_t* output;
  int32_t width;
  int32_t height;
};

// One pixel; its neighbours outside the image add no condition.
uint32_t erode_pixel(const Image& image, int32_t x, int32_t y) {
  const ptrdiff_t i = static_cast<ptrdiff_t>(y) * image.width + x;
  int common = image.mask[i];
  if (y > 0) common &= image.mask[i - image.width];
  if (y < image.height - 1) common &= image.mask[i + image.width];
  if (x > 0) common &= image.mask[i - 1];
  if (x < image.width - 1) common &= image.mask[i + 1];
  if (common != quo::kWhite) return 0;
  if (image.output != nullptr) image.output[i] = quo::kWhite;
  return 1;
}

// Pixels from (x, y) on in rows of which all have a row above, or none has, and so below. A pixel stays when the bits
// that it has in common with its neighbours are 255. In place of rows outside the image it is looked at itself.
QUO_MULTIVERSION uint32_t erode_area(const Image& image, int32_t x, int32_t y, int32_t columns, int32_t rows) {
  const ptrdiff_t first = static_cast<ptrdiff_t>(y) * image.width + x;
  const uint8_t* const middle = image.mask + first;
  const uint8_t* const above = y > 0 ? middle - image.width : middle;
  const uint8_t* const below = y < image.height - 1 ? middle + image.width : middle;
  const uint8_t *const left = middle - 1, *const right = middle + 1;
  const auto stays = [=](ptrdiff_t i, uint8_t starts_row, uint8_t ends_row) {
    return quo::all_set(middle[i] & above[i] & below[i] & (left[i] | starts_row) & (right[i] | ends_row));
  };
  uint8_t* const output = image.output != nullptr ? image.output + first : nullptr;
  return quo::keep_pixels(stays, output, {columns, rows, image.width});
}

// The first or the last row of the image, whose ends may have no pixel before or after them in memory.
uint32_t erode_outer_row(const Image& image, int32_t y) {
  const int32_t last = image.width - 1;
  uint32_t kept = last > 1 ? erode_area(image, 1, y, last - 1, 1) : 0;
  kept += erode_pixel(image, 0, y);
  if (last > 0) kept += erode_pixel(image, last, y);
  return kept;
}

uint32_t erode_rows(const Image& image, int32_t border) {
  if (border >= image.width - border || border >= image.height - border) return 0;
  const int32_t last = image.height - 1, first = std::max(border, 1), end = image.height - first;
  uint32_t kept = first < end ? erode_area(image, border, first, image.width - 2 * border, end - first) : 0;
  if (border == 0) kept += erode_outer_row(image, 0);
  if (border == 0 && last > 0) kept += erode_outer_row(image, last);
  return kept;
}

}  // namespace

void MyCrossErode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border,
                  uint32_t* count) {
  const Image image{mask, output, std::max(width, 0), std::max(height, 0)};
  const uint32_t kept = erode_rows(image, std::max(border, 0));
  if (count != nullptr) *count = kept;
}
