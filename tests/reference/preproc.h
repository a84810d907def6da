// Capture preprocessing, literally: one pixel at a time, in double precision where a mean is one.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "support/frames.h"

namespace reference {

using quo_test::Image;

inline std::optional<uint8_t> background_value(const Image& image) {
  if (image.width < 10 || image.height < 10) return std::nullopt;
  const int32_t right = image.width - 10, bottom = image.height - 10;
  const int32_t corners[4][2] = {{2, 2}, {right, 2}, {right, bottom}, {2, bottom}};
  double means[4], variances[4], low = 255;
  for (int i = 0; i < 4; i++) {
    double sum = 0, squares = 0;
    const auto for_each_pixel = [&](auto use) {
      for (int32_t y = 0; y < 8; y++) {
        for (int32_t x = 0; x < 8; x++) use(image.at(corners[i][0] + x, corners[i][1] + y));
      }
    };
    for_each_pixel([&](uint8_t pixel) { sum += pixel; });
    means[i] = sum * 0.015625;
    for_each_pixel([&](uint8_t pixel) { squares += (means[i] - pixel) * (means[i] - pixel); });
    variances[i] = squares * 0.015625;
    low = std::min(low, means[i]);
  }
  double sum = 0;
  int count = 0;
  for (int i = 0; i < 4; i++) {
    if (!(variances[i] < 50 && (means[i] > 160 || means[i] - low > 100))) continue;
    sum += means[i];
    count++;
  }
  if (count == 0) return std::nullopt;
  return static_cast<uint8_t>(static_cast<uint32_t>(sum / count * 0.93));
}

struct ValidArea {
  uint8_t percentage = 0;
  uint8_t mean = 255;
  int32_t x = 0;
  int32_t y = 0;
  bool operator==(const ValidArea&) const = default;
};

inline ValidArea valid_area(const Image& image, uint8_t bg) {
  uint32_t blocks = 0, valid = 0, sum = 0;
  int32_t left = 0, top = 0;
  for (int32_t y = 0; y <= image.height - 8; y += 8) {
    for (int32_t x = 0; x <= image.width - 8; x += 8) {
      uint32_t block = 0;
      for (int32_t i = 0; i < 64; i++) block += image.at(x + i % 8, y + i / 8);
      blocks++;
      if (block >= bg * 64U) continue;
      valid++;
      sum += block;
      left += x;
      top += y;
    }
  }
  if (valid == 0) return {};
  return {static_cast<uint8_t>(valid * 100 / blocks), static_cast<uint8_t>(sum / (valid * 64)),
          left / static_cast<int32_t>(valid), top / static_cast<int32_t>(valid)};
}

inline Image bordered(Image image, int flags) {
  const int32_t w = image.width, h = image.height;
  for (int32_t x = 0; x < w && h >= 2; x++) {
    if (flags & 1) image.at(x, 0) = image.at(x, 1);
    if (flags & 2) image.at(x, h - 1) = image.at(x, h - 2);
  }
  for (int32_t y = 0; y < h && w >= 2; y++) {
    if (flags & 4) image.at(0, y) = image.at(1, y);
    if (flags & 8) image.at(w - 1, y) = image.at(w - 2, y);
  }
  return image;
}

/** Mean of a column over its pixels up to `limit`; 255 without one. */
inline int column_mean(const Image& image, int32_t x, uint8_t limit) {
  uint64_t sum = 0, count = 0;
  for (int32_t y = 0; y < image.height; y++) {
    if (image.at(x, y) > limit) continue;
    sum += image.at(x, y);
    count++;
  }
  return count > 0 ? static_cast<int>(sum / count) : 255;
}

inline void correct_column(const Image& source, Image& destination, int32_t x, int offset, uint8_t limit) {
  for (int32_t y = 0; y < source.height; y++) {
    const uint8_t pixel = source.at(x, y);
    destination.at(x, y) = pixel > limit ? pixel : static_cast<uint8_t>(std::clamp(pixel - offset, 0, 254));
  }
}

inline Image without_stripes(const Image& source) {
  Image destination = source;
  for (int32_t x = 5; x <= source.width - 5; x++) {
    int neighbours = 0;
    for (int32_t i = x - 4; i <= x + 4; i++) neighbours += i == x ? 0 : column_mean(source, i, 234);
    correct_column(source, destination, x, column_mean(source, x, 234) - neighbours / 8, 234);
  }
  return destination;
}

inline Image without_sector_stripes(const Image& source, Image destination) {
  for (int32_t x = 0; x + 16 <= source.width; x += 16) {
    for (int32_t j = 1; j <= 2; j++) {
      int sum = 0;
      for (int32_t i = j - 1; i <= j + 1; i++) sum += column_mean(source, x + i, 254);
      const int offset = column_mean(source, x + j, 254) - sum / 3;
      if (offset != 0) correct_column(source, destination, x + j, offset, 254);
    }
  }
  return destination;
}

inline double enhance_coefficient(const Image& image, int32_t target) {
  uint32_t histogram[256] = {}, count = 0, sum = 0, deviation = 0;
  if (target == 0) return 0.0;
  for (const uint8_t pixel : image.pixels) histogram[pixel]++;
  for (uint32_t v = 0; v < 230; v++) {
    count += histogram[v];
    sum += v * histogram[v];
  }
  if (count == 0) return 1.0;
  const uint32_t mean = sum / count;
  for (uint32_t v = 0; v < 230; v++) deviation += (v > mean ? v - mean : mean - v) * histogram[v];
  const uint32_t spread = deviation / count;
  return spread == 0 ? 1.0 : static_cast<double>(target) / spread + 0.5;
}

struct Balance {
  int32_t radius = 3;
  int32_t band_rows = 1;
  int gain = 2;
  int32_t top = 0;
  int32_t bottom = 0;
};

inline Image balanced(const Image& image, const Balance& how) {
  Image result = image;
  if (how.gain < 2) return result;
  for (int32_t first = 0; first < image.height; first += how.band_rows) {
    const int32_t last = std::min(first + how.band_rows, image.height);
    for (int32_t y = first + how.top; y < last - how.bottom; y++) {
      for (int32_t x = 0; x < image.width; x++) {
        uint8_t& pixel = result.at(x, y);
        if (pixel >= 254) continue;
        int sum = 0, area = 0;
        for (int32_t j = std::max(y - how.radius, first); j < std::min(y + how.radius + 1, last); j++) {
          for (int32_t i = std::max(x - how.radius, 0); i < std::min(x + how.radius + 1, image.width); i++, area++) {
            sum += image.at(i, j);
          }
        }
        pixel = static_cast<uint8_t>(std::clamp(how.gain * (pixel - sum / area) + 128, 0, 255));
      }
    }
  }
  return result;
}

/** The frame balanced as a whole by the coefficient for a target, as FP_ImagePreproc_Step2 does for 100. */
inline Image contrasted(const Image& image, int32_t target) {
  if (image.pixels.empty()) return image;
  const double coefficient = std::max(0.0, enhance_coefficient(image, target));
  return balanced(image, {.band_rows = image.height, .gain = static_cast<uint8_t>(static_cast<uint32_t>(coefficient))});
}

}  // namespace reference
