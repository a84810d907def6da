#include <algorithm>
#include <cstddef>

#include "quoFPAlg.h"
#include "toolbox/gray_stretch.h"

namespace {

constexpr int32_t kFlatSpan = 10;  // gray levels; a block that spans no more is left alone

struct Range {
  uint8_t lo = 255;
  uint8_t hi = 0;
};

void widen(Range& range, const uint8_t* pixels, int32_t count) {
  uint8_t lo = range.lo, hi = range.hi;
  for (int32_t i = 0; i < count; i++) {
    lo = std::min(lo, pixels[i]);
    hi = std::max(hi, pixels[i]);
  }
  range = {lo, hi};
}

void stretch_row(const uint8_t* __restrict source, uint8_t* __restrict output, int32_t count, Range range) {
  for (int32_t i = 0; i < count; i++) {
    output[i] = static_cast<uint8_t>(quo::stretched(source[i], range.lo, range.hi));
  }
}

struct Block {
  ptrdiff_t offset;  // of its top left pixel
  int32_t width;
  int32_t height;
};

// Returns the number of pixels written.
uint32_t stretch_block(const uint8_t* source, uint8_t* output, ptrdiff_t stride, const Block& block) {
  Range range;
  for (int32_t y = 0; y < block.height; y++) widen(range, source + block.offset + y * stride, block.width);
  if (range.hi - range.lo <= kFlatSpan) return 0;
  for (int32_t y = 0; y < block.height; y++) {
    const ptrdiff_t row = block.offset + y * stride;
    stretch_row(source + row, output + row, block.width, range);
  }
  return static_cast<uint32_t>(block.width) * static_cast<uint32_t>(block.height);
}

}  // namespace

uint32_t BlockGrayStretch(const uint8_t* source, uint8_t* output, int32_t width, int32_t height, int32_t block_width,
                          int32_t block_height) {
  if (block_width < 1 || block_height < 1) return 0;
  uint32_t written = 0;
  for (int64_t y = 0; y < height; y += block_height) {
    const auto rows = static_cast<int32_t>(std::min<int64_t>(block_height, height - y));
    for (int64_t x = 0; x < width; x += block_width) {
      const auto columns = static_cast<int32_t>(std::min<int64_t>(int64_t{block_width} + 1, width - x));
      written += stretch_block(source, output, width, {static_cast<ptrdiff_t>(y * width + x), columns, rows});
    }
  }
  return written;
}
