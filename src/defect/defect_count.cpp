#include <algorithm>
#include <cstddef>

#include "defect/bad_lines.h"
#include "defect/half_frame.h"
#include "frame/scratch.h"

using quo::BadLines;
using quo::HalfFrame;
using quo::Scratch;

namespace {

void double_row(const uint8_t* __restrict half, uint8_t* __restrict row, ptrdiff_t half_width) {
  for (ptrdiff_t x = 0; x < half_width; x++) row[2 * x] = row[2 * x + 1] = half[x];
}

// Each half-size mark becomes a block of 2 x 2; the last column and row of an odd size repeat the marks beside them.
void double_marks(const uint8_t* half_marks, const HalfFrame& half, uint8_t* mark_image, int32_t width,
                  int32_t height) {
  for (int32_t y = 0; y < height; y++) {
    const int32_t half_y = std::min(y >> 1, half.height - 1);
    uint8_t* const row = mark_image + static_cast<ptrdiff_t>(y) * width;
    double_row(half_marks + static_cast<ptrdiff_t>(half_y) * half.width, row, half.width);
    if (width % 2 != 0) row[width - 1] = row[width - 2];
  }
}

// The marks of all defects, or null when memory cannot be allocated. Without half-size marks, those of the lines alone.
uint8_t* new_mark_image(const uint8_t* half_marks, const HalfFrame& half, const BadLines& lines, int32_t width,
                        int32_t height) {
  Scratch<uint8_t> mark_image;
  const uint64_t pixels = quo::pixel_count(width, height);
  if (!mark_image.allocate(pixels)) return nullptr;
  if (half_marks == nullptr) {
    quo_memset(mark_image.get(), 0, static_cast<uint32_t>(pixels));
  } else {
    double_marks(half_marks, half, mark_image.get(), width, height);
  }
  quo::paint_bad_lines(lines, mark_image.get(), width, height);
  return mark_image.release();
}

}  // namespace

uint32_t FP_GetBadPixelsNum(const uint8_t* frame, int32_t width, int32_t height, uint32_t* defect_pixels,
                            uint8_t** mark_image) {
  if (defect_pixels == nullptr) return QUO_NO_OUTPUT;
  HalfFrame half;
  if (!half.take(frame, width, height)) return QUO_NO_MEMORY;

  uint32_t bad_pixels = 0;
  uint8_t* half_marks = nullptr;
  CheckBadPixelsNum(half.pixels.get(), half.width, half.height, half.whole(), &bad_pixels, &half_marks,
                    half.background);
  *defect_pixels = quo::kPixelsPerHalfPixel * bad_pixels;

  BadLines lines;
  uint32_t result = QUO_OK;
  if (quo::find_bad_lines(frame, width, height, half.background, lines)) {
    *defect_pixels += lines.column_pixels + lines.row_pixels;
  } else {
    result = QUO_NO_MEMORY;
  }
  if (mark_image != nullptr) {
    *mark_image = new_mark_image(half_marks, half, lines, width, height);
    if (*mark_image == nullptr) result = QUO_NO_MEMORY;
  }
  if (half_marks != nullptr) tev_quo_free(half_marks);
  return result;
}
