#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/gray.h"
#include "quoFPAlg.h"

namespace {

constexpr float kFlatDeviation = 3.0F;  // standard deviation of a window below which it holds no ridges

struct Frame {
  const uint8_t* source;
  int32_t width;
};

struct Window {
  double mean;
  bool flat;
};

Window examine(const Frame& frame, int32_t left, int32_t top, int32_t size) {
  const uint8_t* const first = frame.source + static_cast<ptrdiff_t>(top) * frame.width + left;
  const auto pixels = static_cast<double>(int64_t{size} * size);
  uint64_t sum = 0;
  for (int32_t y = 0; y < size; y++) {
    for (int32_t x = 0; x < size; x++) sum += first[static_cast<ptrdiff_t>(y) * frame.width + x];
  }
  const double mean = static_cast<double>(sum) / pixels;
  double squares = 0;
  for (int32_t y = 0; y < size; y++) {
    for (int32_t x = 0; x < size; x++) {
      const double distance = first[static_cast<ptrdiff_t>(y) * frame.width + x] - mean;
      squares = std::fma(distance, distance, squares);
    }
  }
  return {mean, quo_sqrt(static_cast<float>(squares) / static_cast<float>(pixels)) < kFlatDeviation};
}

}  // namespace

void AdaptiveThreshold(const uint8_t* source, uint8_t* output, int32_t width, int32_t height, int32_t window,
                       int32_t offset) {
  const int32_t size = std::clamp(window, 1, std::max(1, std::min(width, height)));
  const int32_t half = (size - 1) / 2;
  const Frame frame{source, width};
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const Window w =
          examine(frame, std::clamp(x - half, 0, width - size), std::clamp(y - half, 0, height - size), size);
      const ptrdiff_t i = static_cast<ptrdiff_t>(y) * width + x;
      output[i] = w.flat || source[i] > w.mean - offset ? quo::kWhite : 0;
    }
  }
}
