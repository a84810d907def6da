// Rows of pixels side by side: the sums of their windows, and what these settle about them.
#pragma once

#include <cstdint>

#include "toolbox/window_extremes.h"

namespace quo {

/** What is known of a pixel: whether the distances of the pixels of its window from it exceed their number. */
enum Settled : uint8_t { kOpen, kFlat, kTextured };

/** Running sums before and in the windows of pixels; the left halves end at the pixels. */
struct RunningSums {
  const uint32_t* before;
  const uint32_t* middle;
  const uint32_t* last;
};

/** Whether one of the pixels is background. */
bool has_white(const uint8_t* pixels, int32_t count);

/** Takes a row of pixels into sums over columns, and one out of them, without background. */
void slide_values(const uint8_t* entering, const uint8_t* leaving, uint32_t* values, int32_t count);

/** The same for the numbers of these pixels. */
void slide_numbers(const uint8_t* entering, const uint8_t* leaving, uint16_t* numbers, int32_t count);

/** Settles pixels, by a value of Settled for each, from the extremes of their windows and what is known to be textured,
 *  a byte of 1 or 0 for each. */
void settle(const uint8_t* pixels, const uint8_t* textured, const Extremes& windows, uint8_t* settled, int32_t count);

/** Settles open pixels by the sums and the extremes of their windows, of `numbers` pixels each. */
void settle_by_sums(const uint8_t* pixels, const Extremes& windows, const float* numbers, const RunningSums& sums,
                    uint8_t* settled, int32_t count);

/** Settles open pixels by the sums of the halves of their windows, the left ones of `left_numbers` pixels. */
void settle_by_halves(const uint8_t* pixels, const float* numbers, const float* left_numbers, const RunningSums& sums,
                      uint8_t* settled, int32_t count);

/** Settles open pixels of one value by the sums of the distances from it. Returns the number of these pixels. */
uint32_t settle_by_distances(const uint8_t* pixels, uint8_t value, const float* numbers, const RunningSums& sums,
                             uint8_t* settled, int32_t count);

/** Writes the stretched gray of textured pixels, and the pixels themselves elsewhere, unless they are 0. The smallest
 *  values of the windows are lost. Returns the number of textured pixels. */
uint32_t write_settled(const uint8_t* pixels, const Extremes& windows, const uint8_t* settled, uint8_t* output,
                       int32_t count);

}  // namespace quo
