// The toolbox operators in their literal form: pixel by pixel, every window read from scratch.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <vector>

#include "quoFPAlg.h"
#include "support/frames.h"

namespace reference {

using quo_test::Image;

inline bool inside(const Image& image, int32_t x, int32_t y) {
  return x >= 0 && x < image.width && y >= 0 && y < image.height;
}

/** One pass of the directional enhancement; `turn` is added to every direction class. */
inline Image directional(const Image& image, const Image& directions, const int (&weights)[7], uint32_t turn) {
  return Image(image.width, image.height, [&](int32_t x, int32_t y) {
    const uint32_t k = (DDIndex(directions.at(x, y)) + turn) % 12;
    int sum = 0, total = 0;
    for (int i = 0; i < 7; i++) {
      const int32_t sx = x + g_DDSite[k][i][0], sy = y + g_DDSite[k][i][1];
      if (!inside(image, sx, sy)) continue;
      sum += weights[i] * image.at(sx, sy);
      total += weights[i];
    }
    return std::clamp(sum / total, 0, 254);
  });
}

inline Image enhanced(const Image& image, const Image& directions) {
  return directional(directional(image, directions, {1, 1, 1, 1, 1, 1, 1}, 0), directions, {-3, -1, 3, 9, 3, -1, -3},
                     6);
}

/** FingerprintImageSegment: four scans, each told where its next pixel, its flanks and its edge pair lie. */
inline int32_t segment(Image& image, int32_t threshold) {
  const int32_t w = image.width, h = image.height;
  int32_t count = w * h;
  for (uint8_t& pixel : image.pixels) pixel = std::min<uint8_t>(pixel, 254);
  if (threshold > 253) return count;
  const auto dark = [&](int32_t x, int32_t y) { return image.at(x, y) <= threshold; };
  const auto stops = [&](int32_t x, int32_t y, bool along_row) {
    if (image.at(x, y) == 255 || dark(x, y)) return true;
    if (along_row) return y > 8 && y + 8 < h - 1 && dark(x, y - 8) && dark(x, y + 8);
    return x > 8 && x + 8 < w - 1 && dark(x - 8, y) && dark(x + 8, y);
  };
  const auto mark = [&](int32_t x, int32_t y) {
    image.at(x, y) = 255;
    count--;
  };
  for (int32_t y = 0; y < h; y++) {
    int32_t x = 2;
    while (x < w && !stops(x, y, true)) mark(x++, y);
    if (x > 2) mark(0, y), mark(1, y);
    const int32_t limit = std::min(x + 1, w);
    bool any = false;
    for (x = w - 3; x > limit && !stops(x, y, true); x--) mark(x, y), any = true;
    if (any) mark(w - 2, y), mark(w - 1, y);
  }
  if (count <= 0) return 0;
  for (int32_t x = 0; x < w; x++) {
    int32_t y = 2;
    while (y < h && !stops(x, y, false)) mark(x, y++);
    if (y > 2) mark(x, 0), mark(x, 1);
    const int32_t limit = std::min(y + 1, h);
    bool any = false;
    for (y = h - 3; y > limit; y--) {
      const bool stop = stops(x, y, false);
      if (!stop) mark(x, y);
      if (!stop || any) mark(x, h - 2), mark(x, h - 1);
      if (stop) break;
      any = true;
    }
  }
  return count;
}

/** AdaptiveThreshold for a window of 1 to the smaller of width and height. */
inline Image thresholded(const Image& image, int32_t window, int32_t offset) {
  const int32_t h = (window - 1) / 2;
  return Image(image.width, image.height, [&](int32_t x, int32_t y) {
    const int32_t left = std::clamp(x - h, 0, image.width - window), top = std::clamp(y - h, 0, image.height - window);
    double sum = 0, squares = 0;
    for (int32_t j = top; j < top + window; j++) {
      for (int32_t i = left; i < left + window; i++) sum += image.at(i, j);
    }
    const double mean = sum / (window * window);
    for (int32_t j = top; j < top + window; j++) {
      for (int32_t i = left; i < left + window; i++) {
        squares = std::fma(image.at(i, j) - mean, image.at(i, j) - mean, squares);
      }
    }
    const float deviation = quo_sqrt(static_cast<float>(squares) / static_cast<float>(window * window));
    return deviation < 3.0F || image.at(x, y) > mean - offset ? 255 : 0;
  });
}

inline int stretched(int value, int lo, int hi) { return (value - lo) * 254 / (hi - lo); }

/** AreaGrayStretch onto a prepared output, for half-sizes of 0 and more. */
inline uint32_t stretch_area(const Image& image, Image& output, int32_t half_width, int32_t half_height) {
  uint32_t count = 0;
  for (int32_t y = 0; y < image.height; y++) {
    for (int32_t x = 0; x < image.width; x++) {
      const int p = image.at(x, y);
      if (p != 0) output.at(x, y) = static_cast<uint8_t>(p);
      if (p == 0 || p == 255) continue;
      int lo = 255, hi = 0, n = 0;
      double distances = 0;
      for (int32_t j = std::max(y - half_height, 0); j <= std::min(y + half_height, image.height - 1); j++) {
        for (int32_t i = std::max(x - half_width, 0); i <= std::min(x + half_width, image.width - 1); i++) {
          const int q = image.at(i, j);
          if (q == 255) continue;
          lo = std::min(lo, q), hi = std::max(hi, q), n++;
          distances += std::abs(p - q);
        }
      }
      if (hi - lo <= 0 || !(distances / n > 1.0)) continue;
      output.at(x, y) = static_cast<uint8_t>(stretched(p, lo, hi));
      count++;
    }
  }
  return count;
}

inline uint32_t stretch_blocks(const Image& image, Image& output, int32_t block_width, int32_t block_height) {
  uint32_t count = 0;
  for (int32_t top = 0; top < image.height; top += block_height) {
    for (int32_t left = 0; left < image.width; left += block_width) {
      const int32_t bottom = std::min(top + block_height, image.height);
      const int32_t right = std::min(left + block_width + 1, image.width);
      int lo = 255, hi = 0;
      for (int32_t y = top; y < bottom; y++) {
        for (int32_t x = left; x < right; x++) {
          lo = std::min<int>(lo, image.at(x, y)), hi = std::max<int>(hi, image.at(x, y));
        }
      }
      if (hi - lo <= 10) continue;
      for (int32_t y = top; y < bottom; y++) {
        for (int32_t x = left; x < right; x++, count++) {
          output.at(x, y) = static_cast<uint8_t>(stretched(image.at(x, y), lo, hi));
        }
      }
    }
  }
  return count;
}

/** ValidAreaGrayStretch in place. */
inline uint32_t stretch_valid(Image& image) {
  double below[256] = {};
  for (const uint8_t pixel : image.pixels) {
    for (int i = pixel; pixel < 255 && i < 256; i++) below[i]++;
  }
  const double n = below[255];
  if (n == 0) return 0;
  int lo = 1, hi = 254;
  while (!(below[lo] / n > 0.001)) lo++;
  while (hi > 0 && !(below[hi] / n < 0.999)) hi--;
  if (hi == 0 || lo - 1 >= hi + 1) return 1;
  for (uint8_t& pixel : image.pixels) {
    if (pixel < 255) pixel = static_cast<uint8_t>(std::clamp(stretched(pixel, lo - 1, hi + 1), 0, 254));
  }
  return 1;
}

/** LocalGrayBalance onto an output, for half-sizes of 1 and more; every window sum from the pixels themselves. */
inline uint32_t balance(const Image& image, Image& output, int32_t half_width, int32_t half_height) {
  const int32_t w = image.width, h = image.height;
  double sum = 0, n = 0, deviations = 0;
  for (int32_t y = 1; y < h - 1; y++) {
    for (int32_t x = 1; x < w - 1; x++) {
      if (image.at(x, y) < 255) sum += image.at(x, y), n++;
    }
  }
  if (n == 0) return 0;
  const double mean = sum / n;
  for (int32_t y = 1; y < h - 1; y++) {
    for (int32_t x = 1; x < w - 1; x++) {
      if (image.at(x, y) < 255) deviations += std::fabs(image.at(x, y) - mean);
    }
  }
  const double twice_deviation = 2 * (deviations / n);
  if (twice_deviation == 0) return 0;
  const auto background = static_cast<uint32_t>(mean + 0.5);
  const auto to_16_bits = [](double value) {
    return static_cast<int16_t>(static_cast<int64_t>(std::clamp(value, double{INT32_MIN}, double{INT32_MAX})));
  };
  output = Image(w, h, [&](int32_t x, int32_t y) {
    if (image.at(x, y) == 255) return 255;
    const int32_t top = std::max(y - half_height, 1), bottom = std::min(y + half_height, h - 2);
    const int32_t left = std::max(x - half_width, 1), right = std::min(x + half_width, w - 2);
    uint32_t local_sum = 0;
    for (int32_t j = top; j <= bottom; j++) {
      for (int32_t i = left; i <= right; i++) local_sum += image.at(i, j) < 255 ? image.at(i, j) : background;
    }
    const double local = local_sum / double((bottom - top + 1) * (right - left + 1));
    const int16_t t = to_16_bits(std::fma(mean - local, 0.5, image.at(x, y)));
    const double u = std::fma(t - local, 100 / twice_deviation, local) + (128 - mean);
    const int v = to_16_bits(u);
    return v < 0 ? 0 : v > 253 ? 254 : v;
  });
  return 1;
}

/** The lower median of the neighbours that exist. */
inline Image median(const Image& image) {
  return Image(image.width, image.height, [&](int32_t x, int32_t y) {
    std::vector<uint8_t> values;
    for (int32_t j = y - 1; j <= y + 1; j++) {
      for (int32_t i = x - 1; i <= x + 1; i++) {
        if (inside(image, i, j)) values.push_back(image.at(i, j));
      }
    }
    std::sort(values.begin(), values.end());
    return values[(values.size() - 1) / 2];
  });
}

/** MyCrossErode onto a prepared output. */
inline uint32_t erode(const Image& mask, Image& output, int32_t border) {
  uint32_t count = 0;
  const auto set = [&](int32_t x, int32_t y) { return !inside(mask, x, y) || mask.at(x, y) == 255; };
  for (int32_t y = border; y < mask.height - border; y++) {
    for (int32_t x = border; x < mask.width - border; x++) {
      if (!set(x, y) || !set(x, y - 1) || !set(x, y + 1) || !set(x - 1, y) || !set(x + 1, y)) continue;
      output.at(x, y) = 255;
      count++;
    }
  }
  return count;
}

struct Box {
  uint32_t count, min_x, min_y, max_x, max_y;
  bool operator==(const Box&) const = default;
};

/** Breadth first, pixel by pixel, from a seed inside the image. */
inline Box grow(const Image& image, Image& labels, int32_t seed_x, int32_t seed_y, uint8_t label) {
  struct Point {
    int32_t x, y;
  };
  std::deque<Point> queue = {{seed_x, seed_y}};
  labels.at(seed_x, seed_y) = label;
  Point low = queue[0], high = queue[0];
  uint32_t count = 1;
  for (; !queue.empty(); queue.pop_front()) {
    const Point p = queue.front();
    for (int32_t y = p.y - 1; y <= p.y + 1; y++) {
      for (int32_t x = p.x - 1; x <= p.x + 1; x++) {
        if (x < 2 || x > image.width - 3 || y < 2 || y > image.height - 3) continue;
        if (labels.at(x, y) != 0 || image.at(x, y) != image.at(p.x, p.y)) continue;
        labels.at(x, y) = label;
        queue.push_back({x, y});
        count++;
        low = {std::min(low.x, x), std::min(low.y, y)};
        high = {std::max(high.x, x), std::max(high.y, y)};
      }
    }
  }
  return {count, static_cast<uint32_t>(low.x), static_cast<uint32_t>(low.y), static_cast<uint32_t>(high.x),
          static_cast<uint32_t>(high.y)};
}

}  // namespace reference
