// Quality scores and orientation fields in their literal form, for comparison.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <tuple>
#include <vector>

#include "quoFPAlg.h"
#include "support/frames.h"

inline bool operator==(const quo_block_record& a, const quo_block_record& b) {
  return a.direction == b.direction && std::bit_cast<uint64_t>(a.mean) == std::bit_cast<uint64_t>(b.mean) &&
         std::bit_cast<uint64_t>(a.deviation) == std::bit_cast<uint64_t>(b.deviation) && a.bright == b.bright;
}

inline std::ostream& operator<<(std::ostream& out, const quo_block_record& block) {
  return out << "{" << int{block.direction} << ", " << block.mean << ", " << block.deviation << ", " << block.bright
             << "}";
}

namespace reference {

using quo_test::Image;
using Records = std::vector<quo_block_record>;

/** Mean, deviation and bright percentage of at least one value, in their order. */
inline void measure(const std::vector<uint8_t>& values, quo_block_record& block) {
  const double n = static_cast<double>(values.size());
  double sum = 0, deviation = 0;
  for (const uint8_t value : values) sum += value;
  block.mean = sum / n;
  int brighter = 0;
  for (const uint8_t value : values) {
    deviation += std::fabs(value - block.mean);
    if (value > static_cast<int>(block.mean + 3.5)) brighter++;
  }
  block.deviation = deviation / n;
  block.bright = brighter * 100 / static_cast<int>(values.size());
}

inline int8_t line_code(const Image& image, int32_t cx, int32_t cy) {
  // Each line by its three points to the right of the centre, or below it for the vertical one.
  static constexpr int kDx[8][3] = {{2, 4, 6}, {2, 4, 6}, {2, 4, 6}, {1, 2, 3},
                                    {0, 0, 0}, {1, 2, 3}, {2, 4, 6}, {2, 4, 6}};
  static constexpr int kDy[8][3] = {{0, 0, 0}, {-1, -2, -3}, {-2, -4, -6}, {-2, -4, -6},
                                    {2, 4, 6}, {2, 4, 6},    {2, 4, 6},    {1, 2, 3}};
  float sums[8] = {}, lowest = 65535.0F, highest = 0.0F;
  for (size_t line = 0; line < 8; line++) {
    for (size_t i = 0; i < 3; i++) {
      for (const int side : {-1, 1}) {
        const int value = image.at(cx + side * kDx[line][i], cy + side * kDy[line][i]);
        sums[line] += static_cast<float>(std::abs(image.at(cx, cy) - value));
      }
    }
  }
  int code = 0;
  for (size_t pair = 0; pair < 4; pair++) {
    const float first = sums[pair], second = sums[pair + 4];
    if (!(first + second > 50.0F)) continue;
    const float ratio = second >= first ? first / second : second / first;
    if (ratio < lowest) {
      lowest = ratio;
      code = static_cast<int>(second >= first ? pair + 1 : pair + 5);
    }
    highest = std::max(highest, ratio);
  }
  return static_cast<int8_t>(highest - lowest >= 0.45F && lowest < 0.5F ? code : 0);
}

/** The records of BlockOrientation_MCU. */
inline Records sparse_blocks(const Image& image) {
  const int32_t shorter = std::min(image.width, image.height), size = shorter >= 192 ? 16 : shorter >= 160 ? 10 : 8;
  Records blocks;
  for (int32_t by = 0; by < image.height / size; by++) {
    for (int32_t bx = 0; bx < image.width / size; bx++) {
      std::vector<uint8_t> samples;
      for (int32_t y = by * size; y < (by + 1) * size; y += size / 4) {
        for (int32_t x = bx * size; x < (bx + 1) * size; x += size / 4) {
          if (image.at(x, y) != 255) samples.push_back(image.at(x, y));
        }
      }
      quo_block_record block{-1, 255.0, 0.0, 0.0};
      if (!samples.empty()) {
        measure(samples, block);
        const bool background = block.deviation < 10.0 && block.mean >= 180.0;
        block.direction = background ? -1 : 0;
        if (!background && block.deviation > 6.0 && shorter >= 13) {
          const int32_t cx = std::clamp(bx * size + size / 2, 6, image.width - 7);
          block.direction = line_code(image, cx, std::clamp(by * size + size / 2, 6, image.height - 7));
        }
      }
      blocks.push_back(block);
    }
  }
  return blocks;
}

/** Sums of E, P and Q over the window around a pixel, pixel by pixel. */
inline std::array<int32_t, 3> window_sums(const Image& half, int32_t cx, int32_t cy, int64_t radius) {
  std::array<uint32_t, 3> sums = {};
  for (int64_t y = std::max<int64_t>(1, cy - radius); y <= std::min<int64_t>(half.height - 2, cy + radius); y++) {
    for (int64_t x = std::max<int64_t>(1, cx - radius); x <= std::min<int64_t>(half.width - 2, cx + radius); x++) {
      const auto at = [&](int dx, int dy) {
        return int{half.at(static_cast<int32_t>(x) + dx, static_cast<int32_t>(y) + dy)};
      };
      const int gx = at(1, -1) + 2 * at(1, 0) + at(1, 1) - at(-1, -1) - 2 * at(-1, 0) - at(-1, 1);
      const int gy = at(-1, 1) + 2 * at(0, 1) + at(1, 1) - at(-1, -1) - 2 * at(0, -1) - at(1, -1);
      sums[0] += static_cast<uint32_t>(2 * std::abs(gx));
      sums[1] += static_cast<uint32_t>(2 * gx * gy);
      sums[2] += static_cast<uint32_t>(gx * gx - gy * gy);
    }
  }
  return std::bit_cast<std::array<int32_t, 3>>(sums);
}

/** The orientation that belongs to the sums of P and Q. */
inline uint8_t orientation(double p, double q) {
  double angle = std::atan2(q, p);
  if (angle < 0) angle += 6.2831852;
  const int t = static_cast<int>(angle * 57.295780490442965 * 0.5 + 0.5);
  return static_cast<uint8_t>(t <= 135 ? 135 - t : 315 - t);
}

inline Image half_of(const Image& image) {
  Image half(image.width / 2, image.height / 2);
  ZoomImg(image.data(), half.data(), image.width, image.height, 1);
  return half;
}

/** The output of Orientation. */
inline Image orientation_field(const Image& image, int64_t radius) {
  const Image half = half_of(image);
  const Image field(half.width, half.height, [&](int32_t x, int32_t y) {
    const auto [e, p, q] = window_sums(half, x, y, radius);
    return orientation(p, q);
  });
  return Image(image.width, image.height, [&](int32_t x, int32_t y) {
    return field.at(std::min(x / 2, half.width - 1), std::min(y / 2, half.height - 1));
  });
}

struct DenseBlocks {
  Records blocks;
  uint8_t area;
};

/** The outputs of BlockOrientation. */
inline DenseBlocks dense_blocks(const Image& image, int32_t nbx, int32_t nby, int64_t radius) {
  const Image half = half_of(image);
  const double threshold = 20.0 * static_cast<double>(2 * radius + 1) * static_cast<double>(2 * radius + 1);
  const Image field(half.width, half.height, [&](int32_t x, int32_t y) {
    const auto [e, p, q] = window_sums(half, x, y, radius);
    return e > threshold ? orientation(p, q) : half.at(x, y) > 179 ? 255 : 254;
  });
  const size_t cells = half.pixels.size();
  const auto background = static_cast<size_t>(std::count(field.pixels.begin(), field.pixels.end(), 255));
  DenseBlocks result{{}, static_cast<uint8_t>(cells == 0 ? 0 : (cells - background) * 100 / cells)};
  if (nbx <= 0 || nby <= 0) return result;
  const int32_t bw = image.width / nbx / 2, bh = image.height / nby / 2, size = bw * bh;
  for (int32_t block = 0; block < nbx * nby; block++) {
    const int32_t left = block % nbx * bw, top = block / nbx * bh;
    std::array<int, 9> counts = {};
    std::vector<uint8_t> all, below_white;
    int n = 0;
    for (int32_t y = top; y < top + bh; y++) {
      for (int32_t x = left; x < left + bw; x++) {
        const uint8_t gray = half.at(x, y), mark = field.at(x, y);
        all.push_back(gray);
        if (gray < 255) below_white.push_back(gray);
        if (mark == 255) continue;
        counts[mark == 254 ? 0 : DDIndex8(mark) + 1]++;
        n++;
      }
    }
    quo_block_record record{-1, 255.0, 0.0, 0.0};
    if (size > 0 && static_cast<int>(size * 0.8) <= n) {
      const auto fullest = std::max_element(counts.begin(), counts.end());
      const bool dominant = static_cast<float>(*fullest) > static_cast<float>(n) * 0.8F;
      record = {static_cast<int8_t>(dominant ? fullest - counts.begin() : 0), 0.0, 0.0, 0.0};
      const auto& values = n == size ? all : below_white;
      if (!values.empty()) measure(values, record);
    }
    result.blocks.push_back(record);
  }
  return result;
}

struct Scores {
  uint8_t quality = 0;
  uint8_t area = 0;
  uint8_t bright = 0;
  int mean_gray = -1;  // not written
};

/** Score and averages of records, by the rules of ImageQuality_MCU when `sparse`, else by those of ImageQuality. */
inline Scores score(const Records& blocks, bool sparse) {
  double v = 0, k = 0, m = 0, dv = 0, br = 0, sm = 0, sd = 0;
  for (const auto& block : blocks) {
    if (block.direction == -1) continue;
    v++;
    k += block.direction != 0;
    m += block.mean;
    dv += block.deviation;
    br += block.bright;
  }
  if (v == 0) return {};
  m /= v, dv /= v, br /= v;
  for (const auto& block : blocks) {
    if (block.direction == -1) continue;
    sm += std::fabs(block.mean - m);
    sd += std::fabs(block.deviation - dv);
  }
  sm /= v, sd /= v;
  const auto floor0 = [](double x) { return x < 0 ? 0 : x; };
  const double a = k * 100.0 / v;
  double b, d;
  if (sparse) {
    d = 60 * floor0(1 - sm / 40) + 40 * std::clamp(1 - std::fabs(m - 128) / 255, 0.0, 1.0);
    b = 60 * floor0(1 - sd / 20) + 40 * std::clamp(dv / 30, 0.0, 1.0);
  } else {
    d = sm >= 100 && sm <= 150 ? 100 : 100 * floor0(1 - sm * 0.0078125);
    b = 40 * floor0(1 - sd / 60) + 60 * std::clamp(dv / 30, 0.0, 1.0);
  }
  Scores result;
  const double exact = (100 - a) * (100 - a) + (100 - b) * (100 - b) + (100 - d) * (100 - d);
  if (exact != 0) {
    const double w = static_cast<double>(static_cast<float>(exact)), s = (a + b) + d;
    const double ta = (100 - a) * ((100 - a) * (a * ((s - a) / 200))) / w;
    const double tb = (100 - b) * ((100 - b) * (b * ((s - b) / 200))) / w;
    const double td = (100 - d) * ((100 - d) * (d * ((s - d) / 200))) / w;
    result.quality = static_cast<uint8_t>(std::clamp((sparse ? 1.3 : 1.1) * (ta + tb + td), 0.0, 100.0));
  }
  result.area = static_cast<uint8_t>(static_cast<int>(v) * 100 / static_cast<int>(blocks.size()));
  result.bright = static_cast<uint8_t>(br);
  result.mean_gray = static_cast<uint8_t>(m);
  return result;
}

}  // namespace reference
