#include <cstddef>

#include "quoFPAlg.h"

namespace {

// Pixel `from` over pixel `to` in every row.
void copy_column(uint8_t* image, int32_t width, int32_t height, int32_t to, int32_t from) {
  for (int32_t y = 0; y < height; y++) {
    image[to] = image[from];
    image += width;
  }
}

}  // namespace

void FillBorders(uint8_t* image, int32_t width, int32_t height, uint8_t flags) {
  if (width <= 0 || height <= 0) return;
  const auto row_bytes = static_cast<uint32_t>(width);
  if (height >= 2) {  // a single row has no inner neighbour
    uint8_t* const last = image + static_cast<ptrdiff_t>(height - 1) * width;
    if ((flags & QUO_BORDER_TOP) != 0) quo_memcpy(image, image + width, row_bytes);
    if ((flags & QUO_BORDER_BOTTOM) != 0) quo_memcpy(last, last - width, row_bytes);
  }
  if (width >= 2) {
    if ((flags & QUO_BORDER_LEFT) != 0) copy_column(image, width, height, 0, 1);
    if ((flags & QUO_BORDER_RIGHT) != 0) copy_column(image, width, height, width - 1, width - 2);
  }
}
