#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "quoFPAlg.h"
#include "toolbox/gray_stretch.h"

namespace {

struct Window {
  int32_t left, right, top, bottom;  // inclusive
};

// What a window says about its pixels below 255.
struct Statistics {
  int32_t lo = 255;
  int32_t hi = 0;
  uint64_t deviation = 0;  // sum of the distances from the pixel in question
  uint64_t count = 0;
};

Statistics examine(const uint8_t* source, int32_t width, const Window& window, uint8_t pixel) {
  Statistics s;
  for (int32_t y = window.top; y <= window.bottom; y++) {
    const uint8_t* const row = source + static_cast<ptrdiff_t>(y) * width;
    for (int32_t x = window.left; x <= window.right; x++) {
      if (row[x] == quo::kWhite) continue;
      s.lo = std::min<int32_t>(s.lo, row[x]);
      s.hi = std::max<int32_t>(s.hi, row[x]);
      s.deviation += quo::abs_diff(pixel, row[x]);
      s.count++;
    }
  }
  return s;
}

// Half a window size as a 16-bit value; negative, and the window empty, for sizes beyond 65536.
int32_t half_size(int32_t window_size) { return static_cast<int16_t>((std::max(window_size, 1) - 1) / 2); }

}  // namespace

uint32_t AreaGrayStretch(const uint8_t* source, uint8_t* output, int32_t width, int32_t height, int32_t window_width,
                         int32_t window_height) {
  const int32_t half_width = half_size(window_width);
  const int32_t half_height = half_size(window_height);
  uint32_t stretched = 0;
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const ptrdiff_t i = static_cast<ptrdiff_t>(y) * width + x;
      const uint8_t pixel = source[i];
      if (pixel == 0) continue;
      output[i] = pixel;
      if (pixel == quo::kWhite) continue;
      const Window window{
          std::max(x - half_width, 0), static_cast<int32_t>(std::min<int64_t>(int64_t{x} + half_width, width - 1)),
          std::max(y - half_height, 0), static_cast<int32_t>(std::min<int64_t>(int64_t{y} + half_height, height - 1))};
      const Statistics s = examine(source, width, window, pixel);
      if (s.deviation <= s.count) continue;
      output[i] = static_cast<uint8_t>(quo::stretched(pixel, s.lo, s.hi));
      stretched++;
    }
  }
  return stretched;
}
