// Running sums, of which summed-area tables are made.
#pragma once

#include <cstdint>

namespace quo {

/** Adds to the sums of the row above the running sums of a row of pixels, which go on from `run`; modulo 2^32. Returns
 *  the last running sum. The three rows do not overlap. */
uint32_t add_running_sums(const uint8_t* source, const uint32_t* above, uint32_t* sums, int32_t width, uint32_t run);

/** Running sums of numbers, modulo 2^32. The two do not overlap. */
void add_up(const uint32_t* values, uint32_t* sums, int32_t count);
void add_up(const uint16_t* values, uint32_t* sums, int32_t count);

}  // namespace quo
