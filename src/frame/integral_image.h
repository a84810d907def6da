// Running sums, of which summed-area tables are made.
#pragma once

#include <cstdint>

namespace quo {

/** Running sums of numbers, modulo 2^32. The two do not overlap. */
void add_up(const uint32_t* values, uint32_t* sums, int32_t count);
void add_up(const uint16_t* values, uint32_t* sums, int32_t count);

}  // namespace quo
