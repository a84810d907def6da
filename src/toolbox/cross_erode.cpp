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

// Distances in memory to the neighbours of a pixel. Outside the image the pixel itself stands in for them, which adds
// no condition.
struct Neighbours {
  ptrdiff_t above;
  ptrdiff_t left;
  ptrdiff_t right;
  ptrdiff_t below;

  Neighbours(const Image& image, int32_t x, int32_t y)
      : above(y > 0 ? -ptrdiff_t{image.width} : 0),
        left(x > 0 ? -1 : 0),
        right(x < image.width - 1 ? 1 : 0),
        below(y < image.height - 1 ? ptrdiff_t{image.width} : 0) {}
};

// Pixels that have the same neighbours as the first of them. One stays when the bits that it has in common with its
// neighbours are 255.
QUO_MULTIVERSION uint32_t erode_area(const Image& image, int32_t x, int32_t y, int32_t columns, int32_t rows) {
  const ptrdiff_t first = static_cast<ptrdiff_t>(y) * image.width + x;
  const Neighbours neighbours(image, x, y);
  const uint8_t* const middle = image.mask + first;
  const uint8_t *const above = middle + neighbours.above, *const below = middle + neighbours.below;
  const uint8_t *const left = middle + neighbours.left, *const right = middle + neighbours.right;
  const auto stays = [=](ptrdiff_t i) { return quo::all_set(middle[i] & above[i] & below[i] & left[i] & right[i]); };
  uint8_t* const output = image.output != nullptr ? image.output + first : nullptr;
  return quo::keep_pixels(stays, output, {columns, rows, image.width});
}

// The first and the last column of rows that have the same neighbours.
uint32_t erode_edges(const Image& image, int32_t y, int32_t rows) {
  const Neighbours neighbours(image, 0, y);
  const ptrdiff_t last = image.width - 1, end = ptrdiff_t{y + rows} * image.width;
  const auto stays = [&](const uint8_t* pixel, ptrdiff_t inward) {
    return quo::all_set(*pixel & pixel[neighbours.above] & pixel[neighbours.below] & pixel[inward]);
  };
  uint32_t kept = 0;
  for (ptrdiff_t row = ptrdiff_t{y} * image.width; row < end; row += image.width) {
    const uint8_t left = stays(image.mask + row, neighbours.right);
    const uint8_t right = stays(image.mask + row + last, -neighbours.right);
    kept += (left & 1U) + (last > 0 ? right & 1U : 0U);  // one column is both the first and the last
    if (image.output == nullptr) continue;
    image.output[row] |= left;
    image.output[row + last] |= right;
  }
  return kept;
}

// The pixels from the border on in both directions. The first and the last row have neighbours of their own.
uint32_t erode_rows(const Image& image, int32_t border) {
  uint32_t kept = 0;
  const int32_t first = std::max(border, 1), end = image.width - first;
  for (int32_t y = border, rows = 0; y < image.height - border; y += rows) {
    rows = y == 0 || y == image.height - 1 ? 1 : image.height - first - y;
    if (first < end) kept += erode_area(image, first, y, end - first, rows);
    if (border == 0) kept += erode_edges(image, y, rows);
  }
  return kept;
}

}  // namespace

void MyCrossErode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border,
                  uint32_t* count) {
  const bool empty = width < 1 || height < 1;
  const uint32_t kept = empty ? 0 : erode_rows({mask, output, width, height}, std::max(border, 0));
  if (count != nullptr) *count = kept;
}
