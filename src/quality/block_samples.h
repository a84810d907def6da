// Mean, deviation and brightness of blocks from a grid of their pixels.
#pragma once

#include <cstdint>

#include "frame/gray.h"
#include "quoFPAlg.h"

namespace quo {

/** Measures the blocks of size x size pixels, 8, 10 or 16, whose first row is row y of the frame, as many as fit beside
 *  each other. Samples are the pixels of every second row and column, in blocks of 16 of every fourth, without those of
 *  value 255. A block without samples has a mean of 255 and no deviation. Directions are not written. */
void measure_blocks(const GrayFrame& frame, int32_t size, int32_t y, quo_block_record* blocks);

}  // namespace quo
