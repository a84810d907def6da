// Mean and mean absolute deviation of an image's gray values.
#pragma once

#include <cstdint>

#include "frame/gray.h"

namespace quo {

/** Of the pixels below 255 of an image, the outermost rows and columns left out. */
struct GlobalContrast {
  uint64_t count;    // pixels
  double mean;       // of their grays
  double deviation;  // mean absolute deviation
};

/** Of a frame of at least 3 x 3 pixels: counts and mean as they are defined, and the deviation from exact integer sums.
 *  That differs from defined_deviation() by at most (count + 1024) * 2^-53 of it where it is 1 or more and there are at
 *  most 2^26 pixels.
 *  @return false without pixels, or when all have the same gray */
bool measure_contrast(const GrayFrame& frame, GlobalContrast& contrast);

/** The deviation by the steps that define it: distances from the mean, added up one by one in the order of rows. */
double defined_deviation(const GrayFrame& frame, const GlobalContrast& contrast);

}  // namespace quo
