// Ridge orientations in whole degrees from averaged gradient products.
#pragma once

#include <cstdint>

namespace quo {

/** The orientations, 0 to 179, that belong to pairs of sums of 2 Gx Gy and Gx^2 - Gy^2: one call of tev_quo_atan2() for
 *  each, in their order. */
void take_degrees_by_hook(const int32_t* product, const int32_t* difference, int32_t count, uint8_t* degrees);

/** The same degrees while the hook is an arctangent: most come from an approximation, and the hook is called only where
 *  that is too close to a step between two degrees. At most kMostPairs at once. */
void take_degrees_where_clear(const int32_t* product, const int32_t* difference, int32_t count, uint8_t* degrees);

inline constexpr int32_t kMostPairs = 1024;

}  // namespace quo
