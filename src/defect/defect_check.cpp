#include <cstddef>

#include "defect/bad_lines.h"
#include "defect/half_frame.h"

using quo::BadLines;
using quo::HalfFrame;

namespace {

struct Frame {
  uint8_t* pixels;
  int32_t width;
  int32_t height;

  uint8_t* row(int32_t y) const { return pixels + static_cast<ptrdiff_t>(y) * width; }
};

// Counts no further than the allowance needs: a quarter of it, and one pixel more when the frame fails.
int64_t count_bad_pixels(const HalfFrame& half, int32_t allowance) {
  uint32_t count = 0;
  CheckBadPixelsNum(half.pixels.get(), half.width, half.height, allowance >> 2, &count, nullptr, half.background);
  return int64_t{quo::kPixelsPerHalfPixel} * count;
}

// The first column and the first row are never marked, so each line has one before it.
void repair_columns(const Frame& frame, const uint8_t* columns) {
  for (int32_t x = 1; x < frame.width; x++) {
    if (columns[x] == 0) continue;
    for (int32_t y = 0; y < frame.height; y++) frame.row(y)[x] = frame.row(y)[x - 1];
  }
}

void repair_rows(const Frame& frame, const uint8_t* rows) {
  for (int32_t y = 1; y < frame.height; y++) {
    if (rows[y] != 0) quo_memcpy(frame.row(y), frame.row(y - 1), static_cast<uint32_t>(frame.width));
  }
}

// Holds the line defects against the allowance and repairs those that it covers.
uint32_t check_lines(const Frame& frame, uint8_t background, int32_t allowance, uint8_t* fail) {
  *fail = 0;
  BadLines lines;
  if (!quo::find_bad_lines(frame.pixels, frame.width, frame.height, background, lines)) return QUO_NO_MEMORY;
  if (lines.none()) return QUO_OK;
  if (int64_t{lines.column_pixels} + lines.row_pixels > allowance) {
    *fail = 1;
    return QUO_OK;
  }
  repair_columns(frame, lines.columns.get());
  repair_rows(frame, lines.rows.get());
  return QUO_OK;
}

}  // namespace

uint32_t FP_CheckBadPixelsNum_MCU(uint8_t* frame, int32_t width, int32_t height, int32_t allowance, uint8_t* fail) {
  if (fail == nullptr) return QUO_NO_OUTPUT;
  HalfFrame half;
  if (!half.take(frame, width, height)) {
    *fail = allowance < 0;
    return QUO_NO_MEMORY;
  }
  if (count_bad_pixels(half, allowance) > allowance) {
    *fail = 1;
    return QUO_OK;
  }
  half.pixels.reset();
  return check_lines({frame, width, height}, half.background, allowance, fail);
}

uint32_t FP_CheckBadPixelsNum(uint8_t* frame, int32_t width, int32_t height, int32_t allowance, uint8_t* fail) {
  return FP_CheckBadPixelsNum_MCU(frame, width, height, allowance, fail);
}
