// The ridge pattern of a finger that does not exist.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quofp::synth {

enum class Pattern { kArch, kLeftLoop, kRightLoop, kWhorl, kTwinLoop };
inline constexpr int kPatterns = 5;

/** The pattern that a seed has by itself. */
Pattern pattern_of(uint64_t seed);

/** Skin seen from above: a signed level a pixel, from -127 (ridge) to 127 (valley). */
struct Skin {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<int8_t> levels;

  int8_t at(int32_t x, int32_t y) const {
    return levels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
};

/** Grows ridges `period` pixels apart over a width x height piece of skin; the same for the same arguments. */
Skin grow_skin(uint64_t seed, Pattern pattern, int32_t width, int32_t height, int32_t period);

}  // namespace quofp::synth
