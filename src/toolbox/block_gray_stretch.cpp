#include <algorithm>
#include <cstddef>

#include "quoFPAlg.h"
#include "toolbox/gray_stretch.h"

namespace {

constexpr int32_t kFlatSpan = 10;  // gray levels; a block that spans no more is left alone
constexpr int32_t kChunk = 256;    // columns of a block whose extremes are found at a time

struct Range {
  uint8_t lo;
  uint8_t hi;
};

struct Block {
  ptrdiff_t offset;  // of its top left pixel
  int32_t width;
  int32_t height;
};

void widen(const uint8_t* __restrict pixels, uint8_t* __restrict lo, uint8_t* __restrict hi, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    lo[i] = std::min(lo[i], pixels[i]);
    hi[i] = std::max(hi[i], pixels[i]);
  }
}

// The extremes of each column first, so that rows of a few pixels are compared side by side.
Range range_of(const uint8_t* source, ptrdiff_t stride, const Block& block) {
  Range range{255, 0};
  for (int32_t x = 0, count = 0; x < block.width; x += count) {
    uint8_t lo[kChunk], hi[kChunk];
    count = std::min(kChunk, block.width - x);
    for (int32_t i = 0; i < count; i++) lo[i] = hi[i] = source[block.offset + x + i];
    for (int32_t y = 1; y < block.height; y++) widen(source + block.offset + y * stride + x, lo, hi, count);
    for (int32_t i = 0; i < count; i++) range = {std::min(range.lo, lo[i]), std::max(range.hi, hi[i])};
  }
  return range;
}

void stretch_row(const uint8_t* __restrict source, uint8_t* __restrict output, int32_t count,
                 const quo::StretchedRange& stretched) {
  for (int32_t i = 0; i < count; i++) output[i] = stretched(source[i]);
}

// Returns the number of pixels written.
uint32_t stretch_block(const uint8_t* source, uint8_t* output, ptrdiff_t stride, const Block& block) {
  const Range range = range_of(source, stride, block);
  if (range.hi - range.lo <= kFlatSpan) return 0;
  const quo::StretchedRange stretched(range.lo, range.hi);
  for (int32_t y = 0; y < block.height; y++) {
    const ptrdiff_t row = block.offset + y * stride;
    stretch_row(source + row, output + row, block.width, stretched);
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
