// Line detection and erosion as they are defined, pixel by pixel.
#pragma once

#include <cmath>
#include <vector>

#include "support/frames.h"

namespace reference {

using quo_test::Image;

struct Lines {
  std::vector<uint8_t> marks;  // one a line
  uint32_t pixels = 0;         // on marked lines
};

/** The rows of an image, or its columns, whose jump limit is met exactly. */
inline Lines bad_lines(const Image& image, uint8_t reference, bool columns) {
  const int32_t lines = columns ? image.width : image.height, length = columns ? image.height : image.width;
  std::vector<uint32_t> sums(static_cast<size_t>(lines));
  for (int32_t y = 0; y < image.height; y++) {
    for (int32_t x = 0; x < image.width; x++) sums[static_cast<size_t>(columns ? x : y)] += image.at(x, y);
  }
  const auto threshold = static_cast<uint32_t>(std::min<int>(reference, 230) * 0.9 * length);
  uint8_t a = 0, b = 0;
  bool found = false;
  for (int32_t i = 2; i <= lines - 3; i++) {
    if (sums[static_cast<size_t>(i)] >= threshold) continue;
    if (!found) a = static_cast<uint8_t>(i);
    found = true;
    b = static_cast<uint8_t>(i);
  }
  Lines result{std::vector<uint8_t>(static_cast<size_t>(lines))};
  for (size_t i = a + size_t{1}; i < b; i++) {
    const int64_t difference = std::abs(int64_t{sums[i]} - sums[i - 1]);
    const bool jump = columns ? difference >= 50 * length : difference > 50 * length;
    result.marks[i] = (result.marks[i - 1] != 0) != jump;
    if (result.marks[i] != 0) result.pixels += static_cast<uint32_t>(length);
  }
  return result;
}

/** Counts into the result and marks in `marks`, until the count exceeds the allowance. */
inline uint32_t erode(const Image& image, int32_t border, uint8_t threshold, int32_t allowance, Image& marks) {
  auto dark = [&](int32_t x, int32_t y) {
    return x >= 0 && x < image.width && y >= 0 && y < image.height && image.at(x, y) < threshold;
  };
  marks = Image(image.width, image.height);
  uint32_t count = 0;
  for (int32_t y = border; y < image.height - border; y++) {
    for (int32_t x = border; x < image.width - border; x++) {
      if (!dark(x, y)) continue;
      if (!dark(x, y - 1) && !dark(x, y + 1) && !dark(x - 1, y) && !dark(x + 1, y)) continue;
      marks.at(x, y) = 255;
      if (static_cast<int32_t>(++count) > allowance) return count;
    }
  }
  return count;
}

}  // namespace reference
