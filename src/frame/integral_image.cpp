#include <cstddef>

#include "quoFPAlg.h"

namespace {

// One row of the table: the sums of the row above plus the running sum of the source row.
void accumulate_row(const uint8_t* __restrict source, const uint32_t* __restrict above, uint32_t* __restrict sums,
                    int32_t width) {
  uint32_t run = 0;
  for (int32_t x = 0; x < width; x++) {
    run += source[x];
    sums[x] = run + above[x];
  }
}

}  // namespace

void GetGrayIntegralImage(const uint8_t* source, uint32_t* integral, int32_t width, int32_t height, int32_t stride) {
  if (width < 0 || height < 0) return;
  const size_t row = static_cast<size_t>(width) + 1;
  for (size_t x = 0; x < row; x++) integral[x] = 0;
  for (int32_t y = 0; y < height; y++) {
    uint32_t* const above = integral;
    integral += row;
    integral[0] = 0;
    accumulate_row(source, above + 1, integral + 1, width);
    source += stride;
  }
}
