// The signal operators step by step as they are defined, one pixel at a time.
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "quoFPAlg.h"
#include "support/frames.h"

namespace reference {

using quo_test::Image;

/** Smooths the image; returns the scratch image. A missing neighbour mirrors, or is the pixel itself. */
inline Image smooth(Image& image) {
  const int32_t w = image.width, h = image.height;
  auto mirror = [](int32_t i, int32_t size) {
    if (size == 1) return 0;
    return i < 0 ? 1 : i == size ? size - 2 : i;
  };
  const Image rows(w, h, [&](int32_t x, int32_t y) {
    return (image.at(mirror(x - 1, w), y) + 2 * image.at(x, y) + image.at(mirror(x + 1, w), y)) / 4;
  });
  image = Image(w, h, [&](int32_t x, int32_t y) {
    return (rows.at(x, mirror(y - 1, h)) + 2 * rows.at(x, y) + rows.at(x, mirror(y + 1, h))) / 4;
  });
  return rows;
}

inline double variance(const std::vector<uint8_t>& values) {
  const auto count = static_cast<double>(values.size());
  double sum = 0;
  for (const uint8_t value : values) sum += value;
  const double mean = sum / count;
  double squares = 0;
  for (const uint8_t value : values) squares = std::fma(value - mean, value - mean, squares);
  return squares / count;
}

struct BlockVariances {
  int32_t across, down;
  std::vector<double> values;
};

inline BlockVariances block_variances(const Image& image, int32_t margin, int32_t size) {
  auto count = [&](int32_t length) { return static_cast<int32_t>(std::ceil((length - 2.0 * margin) / size)); };
  auto start = [&](int32_t index, int32_t length) {
    if (margin + (index + 1) * size <= length - margin) return margin + index * size;
    return std::max(length - margin - size, 0);
  };
  BlockVariances result{count(image.width), count(image.height), {}};
  for (int32_t j = 0; j < result.down; j++) {
    for (int32_t i = 0; i < result.across; i++) {
      const int32_t left = start(i, image.width), top = start(j, image.height);
      const Image block(size, size, [&](int32_t x, int32_t y) { return image.at(left + x, top + y); });
      result.values.push_back(variance(block.pixels));
    }
  }
  return result;
}

inline double upper_median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

struct Snr {
  int snr, signal, noise;
  bool operator==(const Snr&) const = default;
};

inline Snr snr(const Image& frame) {
  Image smoothed = frame;
  smooth(smoothed);
  uint32_t sum = 0;
  for (const uint8_t pixel : smoothed.pixels) sum += pixel;
  const int mean = static_cast<int>(sum / smoothed.pixels.size());
  const Image rest(frame.width, frame.height, [&](int32_t x, int32_t y) {
    return std::clamp(frame.at(x, y) - (smoothed.at(x, y) - mean), 0, 255);
  });
  const auto signals = block_variances(smoothed, 4, 16).values, noises = block_variances(rest, 4, 16).values;
  std::vector<double> ratios;
  for (size_t k = 0; k < signals.size(); k++) ratios.push_back(10.0 * signals[k] / (noises[k] + 1.0));
  const double median = upper_median(ratios);
  const auto k = static_cast<size_t>(std::find(ratios.begin(), ratios.end(), median) - ratios.begin());
  const double signal = static_cast<double>(quo_sqrt(static_cast<float>(10.0 * signals[k]))) + 0.5;
  const double noise = static_cast<double>(quo_sqrt(static_cast<float>(noises[k] + 1.0))) + 0.5;
  auto byte = [](double value) { return value > 255.0 ? 255 : static_cast<int>(value); };
  return {byte(median), byte(signal), byte(noise)};
}

/** Returns the number of pixels kept. */
inline uint32_t erode(const Image& mask, Image& output, int32_t border) {
  uint32_t count = 0;
  for (int32_t y = border; y < mask.height - border; y++) {
    for (int32_t x = border; x < mask.width - border; x++) {
      bool kept = true;
      for (int32_t j = -1; j <= 1; j++) {
        for (int32_t i = -1; i <= 1; i++) kept = kept && mask.at(x + i, y + j) == 255;
      }
      if (!kept) continue;
      output.at(x, y) = 255;
      count++;
    }
  }
  return count;
}

/** The threshold of a bright pixel; above 255 no pixel is. */
inline int bright_threshold(const Image& frame) {
  uint32_t sum = 0, white = 0;
  for (const uint8_t pixel : frame.pixels) {
    sum += pixel;
    white += pixel == 255 ? 1 : 0;
  }
  const auto pixels = static_cast<uint32_t>(frame.pixels.size());
  const float deviation = quo_sqrt(static_cast<float>(upper_median(block_variances(frame, 4, 16).values)));
  const float level = std::fma(deviation, 4.0F, static_cast<float>(sum / pixels));
  if (deviation > 60.0F && white > pixels * 0.1) return static_cast<int>(level);
  return level >= 255.0F ? 255 : static_cast<int>(level);
}

/** The bubble image, if any pixel is bright. */
inline std::optional<Image> bubbles(const Image& frame) {
  const int threshold = bright_threshold(frame);
  const Image mask(frame.width, frame.height,
                   [&](int32_t x, int32_t y) { return frame.at(x, y) >= threshold ? 255 : 0; });
  if (*std::max_element(mask.pixels.begin(), mask.pixels.end()) == 0) return std::nullopt;
  Image result(frame.width, frame.height);
  erode(mask, result, 2);
  return result;
}

}  // namespace reference
