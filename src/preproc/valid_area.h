// The valid blocks of an area: those that are darker than the background.
#pragma once

#include <cstdint>

#include "frame/gray.h"

namespace quo {

/** What is known of the valid blocks of an area. */
struct ValidBlocks {
  static constexpr int32_t kSide = 8;  // pixels
  static constexpr uint32_t kPixels = kSide * kSide;

  uint32_t blocks = 0;  // of the whole grid
  uint32_t count = 0;   // valid ones
  uint32_t sum = 0;     // of their pixels, modulo 2^32
  // Of their top left corners. 2^26 blocks of a 32-bit pixel count, coordinates below 2^31: 57 bits.
  int64_t left = 0;
  int64_t top = 0;

  /** Mean gray of their pixels; 255 where there are none. */
  uint8_t mean() const { return count > 0 ? static_cast<uint8_t>(sum / (uint64_t{count} * kPixels)) : kWhite; }
};

/** Finds those of an area of width x height pixels in a frame whose rows are `stride` pixels apart. */
ValidBlocks find_valid_blocks(const uint8_t* area, int32_t stride, int32_t width, int32_t height, uint8_t bg);

}  // namespace quo
