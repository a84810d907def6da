// The half-size copy of a frame on which bad pixels are counted.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/scratch.h"
#include "preproc/background_value.h"

namespace quo {

inline constexpr uint32_t kPixelsPerHalfPixel = 4;  // of the frame

struct HalfFrame {
  Scratch<uint8_t> pixels;
  int32_t width = 0;
  int32_t height = 0;
  uint8_t background = kNoBackground;

  /** Takes every second pixel of every second row. False when memory cannot be allocated. */
  [[nodiscard]] bool take(const uint8_t* frame, int32_t frame_width, int32_t frame_height) {
    width = frame_width >> 1;
    height = frame_height >> 1;
    if (!pixels.allocate(pixel_count(width, height))) return false;
    ZoomImg(frame, pixels.get(), frame_width, frame_height, 0);
    background = background_value(pixels.get(), width, height);
    return true;
  }

  /** All of its pixels: the allowance with which every bad one is counted. */
  int32_t whole() const { return static_cast<int32_t>(std::min<uint64_t>(pixel_count(width, height), INT32_MAX)); }
};

}  // namespace quo
