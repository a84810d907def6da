#include <cstddef>

#include "frame/eight_bytes.h"
#include "quoFPAlg.h"

namespace {

struct Half {
  const uint8_t* source;
  uint8_t* destination;
  int32_t width;   // of the source
  int32_t height;  // of the source
  int32_t half_width;
  int32_t half_height;

  const uint8_t* source_row(int32_t y) const { return source + static_cast<ptrdiff_t>(y) * width; }
  uint8_t* half_row(int32_t y) const { return destination + static_cast<ptrdiff_t>(y) * half_width; }
};

// Loads the odd columns too: a loop that leaves them out would take the last columns one by one.
void take_even_columns(const uint8_t* __restrict source, uint8_t* __restrict half, int32_t half_width) {
  for (int32_t x = 0; x < half_width; x++) half[x] = static_cast<uint8_t>(quo::load_two(source + 2 * x));
}

// Binomial means centred on the even columns 2, 4, ... of the middle row; `half` points at the output of column 2.
void smooth_row(const uint8_t* __restrict above, const uint8_t* __restrict middle, const uint8_t* __restrict below,
                uint8_t* __restrict half, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    const int32_t x = 2 * i + 2;
    const int left = above[x - 1] + 2 * middle[x - 1] + below[x - 1];
    const int centre = above[x] + 2 * middle[x] + below[x];
    const int right = above[x + 1] + 2 * middle[x + 1] + below[x + 1];
    half[i] = static_cast<uint8_t>((left + 2 * centre + right) >> 4);  // at most 4080 / 16
  }
}

void subsample(const Half& half) {
  for (int32_t y = 0; y < half.half_height; y++) {
    take_even_columns(half.source_row(2 * y), half.half_row(y), half.half_width);
  }
}

// The rows come after the columns, so the corners are theirs.
void copy_edges(const Half& half) {
  for (int32_t y = 0; y < half.half_height; y++) {
    half.half_row(y)[0] = half.source_row(2 * y)[0];
    half.half_row(y)[half.half_width - 1] = half.source_row(2 * y)[half.width - 1];
  }
  take_even_columns(half.source_row(0), half.half_row(0), half.half_width);
  take_even_columns(half.source_row(half.height - 1), half.half_row(half.half_height - 1), half.half_width);
}

void smooth_interior(const Half& half) {
  const int32_t count =
      (half.width - 3) / 2;  // even columns from 2 below width - 2; for odd widths also the last output
  for (int32_t y = 2; y < half.height - 2; y += 2) {
    const uint8_t* const middle = half.source_row(y);
    smooth_row(middle - half.width, middle, middle + half.width, half.half_row(y / 2) + 1, count);
  }
}

}  // namespace

void ZoomImg(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height, uint8_t mode) {
  const Half half{source, destination, width, height, width >> 1, height >> 1};
  if (half.half_width < 1 || half.half_height < 1) return;
  if (mode == 0) {
    subsample(half);
    return;
  }
  copy_edges(half);
  smooth_interior(half);
}
