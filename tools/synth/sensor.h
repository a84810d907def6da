// A frame as a sensor would deliver it: a finger on the sensor, and what the sensor adds of its own.
#pragma once

#include <cstdint>
#include <optional>

#include "frame_io.h"
#include "synth/ridges.h"

namespace quofp::synth {

/** What lies on the sensor. */
struct Finger {
  uint64_t seed = 1;
  std::optional<Pattern> pattern;  // by default that of the seed
  int32_t ridge_period = 9;        // pixels from ridge to ridge
  int32_t coverage = 75;           // percent of the frame under the finger
  int32_t contrast = 100;          // percent; at 100 ridges and valleys are 110 gray levels apart
  int32_t bubbles = 0;             // air bubbles under the finger
  int32_t shift_x = 0;             // pixels to the right
  int32_t shift_y = 0;             // pixels down
};
inline constexpr int32_t kMinRidgePeriod = 5, kMaxRidgePeriod = 20;
inline constexpr int32_t kMaxShift = 32;

/** What the sensor adds. */
struct Sensor {
  Size size{160, 160};
  uint64_t seed = 1;         // of its fixed defects
  uint64_t noise_seed = 1;   // of one exposure
  int32_t background = 255;  // level of the uncovered sensor; at 255 it is saturated, so that noise does not show
  int32_t noise = 4;         // standard deviation in gray levels
  int32_t stripes = 0;       // largest column offset in gray levels
  int32_t bad_rows = 0;
  int32_t bad_columns = 0;
  int32_t bad_clusters = 0;
};

/** Makes one frame. The same arguments give the same bytes everywhere. */
Frame capture(const Finger& finger, const Sensor& sensor);

}  // namespace quofp::synth
