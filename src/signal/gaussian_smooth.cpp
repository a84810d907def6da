#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

// The mean of two gray values, rounded down.
inline uint8_t mean(uint8_t a, uint8_t b) { return static_cast<uint8_t>((a & b) + ((a ^ b) >> 1)); }

// (before + 2 x middle + after) / 4, rounded down, for a run of pixels. Rounding the mean of the outer two down first
// changes nothing, since floor((floor(a / 2) + b) / 2) = floor((a + 2b) / 4), and keeps every step within a byte.
// Never inlined: a compiler that sees the three runs to be one, shifted, carries pixels from step to step and then
// finds no vectors.
[[gnu::noinline]] void smooth_run(const uint8_t* __restrict before, const uint8_t* __restrict middle,
                                  const uint8_t* __restrict after, uint8_t* __restrict smoothed, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; i++) smoothed[i] = mean(mean(before[i], after[i]), middle[i]);
}

// Rows follow one another without gaps, so one run goes through all of them; the border columns, which it takes to
// neighbour those of the next row, are then put right. (2a + 2b) / 4 = (a + b) / 2.
void smooth_rows(const uint8_t* image, uint8_t* smoothed, ptrdiff_t width, ptrdiff_t height) {
  if (width * height > 2) smooth_run(image, image + 1, image + 2, smoothed + 1, width * height - 2);
  const ptrdiff_t last = width - 1;
  const ptrdiff_t inward = width > 1 ? 1 : 0;
  for (ptrdiff_t y = 0; y < height; y++) {
    const uint8_t* const row = image + y * width;
    smoothed[y * width] = mean(row[0], row[inward]);
    smoothed[y * width + last] = mean(row[last], row[last - inward]);
  }
}

void smooth_columns(const uint8_t* image, uint8_t* smoothed, ptrdiff_t width, ptrdiff_t height) {
  const ptrdiff_t last = (height - 1) * width;
  const ptrdiff_t inward = height > 1 ? width : 0;
  smooth_run(image + inward, image, image + inward, smoothed, width);
  if (height > 2) smooth_run(image, image + width, image + 2 * width, smoothed + width, last - width);
  smooth_run(image + last - inward, image + last, image + last - inward, smoothed + last, width);
}

}  // namespace

uint32_t GasssianSmooth(uint8_t* image, uint8_t* scratch, int32_t width, int32_t height) {
  // Sums never leave the registers; a row of them is reserved only because a call without that memory must fail.
  quo::Scratch<uint32_t> sums;
  if (!sums.allocate(static_cast<uint32_t>(std::max(width, 0)))) return 0;
  if (width < 1 || height < 1) return 1;
  smooth_rows(image, scratch, width, height);
  smooth_columns(scratch, image, width, height);
  return 1;
}
