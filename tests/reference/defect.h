// Line detection, erosion and counting of defects as they are defined, pixel by pixel.
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "quoFPAlg.h"
#include "reference/frame.h"
#include "reference/preproc.h"
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

struct FrameLines {
  Lines columns, rows;

  uint32_t pixels() const { return columns.pixels + rows.pixels; }
};

inline FrameLines bad_lines(const Image& image, uint8_t level) {
  return {bad_lines(image, level, true), bad_lines(image, level, false)};
}

inline void paint(const FrameLines& lines, Image& marks) {
  for (int32_t y = 0; y < marks.height; y++) {
    for (int32_t x = 0; x < marks.width; x++) {
      const size_t column = static_cast<size_t>(x), row = static_cast<size_t>(y);
      if (lines.columns.marks[column] != 0 || lines.rows.marks[row] != 0) marks.at(x, y) = 255;
    }
  }
}

struct BadPixels {
  uint32_t count = 0;
  std::optional<Image> marks;
};

/** CheckBadPixelsNum: whether there are marks, and what they count. */
inline BadPixels bad_pixels(const Image& image, int32_t allowance, uint8_t limit) {
  uint32_t levels[256] = {}, dark = 0, weighted = 0, squares = 0, lowest = 255, below = 0;
  for (const uint8_t pixel : image.pixels) levels[pixel]++;
  for (uint32_t v = 0; v < limit; v++) {
    dark += levels[v];
    weighted += v * levels[v];
    if (levels[v] != 0) lowest = std::min(lowest, v);
  }
  if (dark == 0 || levels[lowest] > 0.3 * dark) return {};
  const uint32_t mean = weighted / dark;
  for (uint32_t v = 0; v < limit; v++) squares += (v - mean) * (v - mean) * levels[v];
  const double cut = std::fma(-2.3, static_cast<double>(quo_sqrt(static_cast<float>(squares / dark))), mean);
  const auto threshold = static_cast<uint8_t>(std::max(lowest + 1.0, cut));
  for (uint32_t v = 0; v < threshold && v < limit; v++) below += levels[v];
  if (static_cast<int64_t>(below) <= allowance && static_cast<int64_t>(image.pixels.size()) > allowance) return {};
  BadPixels bad;
  bad.count = erode(image, 2, threshold, allowance, bad.marks.emplace());
  return bad;
}

struct Defects {
  uint32_t count;
  Image marks;
};

/** The outputs of FP_GetBadPixelsNum. */
inline Defects defects(const Image& image) {
  const Image half = half_image(image, 0);
  const uint8_t background = background_value(half).value_or(255);
  const BadPixels bad = bad_pixels(half, static_cast<int32_t>(half.pixels.size()), background);
  const FrameLines lines = bad_lines(image, background);
  Image marks(image.width, image.height, [&](int32_t x, int32_t y) {
    if (!bad.marks || bad.marks->pixels.empty()) return uint8_t{0};
    return bad.marks->at(std::min(x / 2, half.width - 1), std::min(y / 2, half.height - 1));
  });
  paint(lines, marks);
  return {4 * bad.count + lines.pixels(), marks};
}

}  // namespace reference
