#include "preproc/enhance_coef.h"

#include <cstring>

#include "frame/gray.h"

namespace {

constexpr uint32_t kGrayLevels = 256;
constexpr uint32_t kFingerLevels = 230;  // levels from here on are background

// Mean absolute deviation of the gray levels below kFingerLevels, rounded down, from their mean, rounded down; 0 without
// such a pixel. The sums are modulo 2^32.
uint32_t finger_spread(const uint32_t (&histogram)[kGrayLevels]) {
  uint32_t pixels = 0;
  uint32_t sum = 0;
  for (uint32_t v = 0; v < kFingerLevels; v++) {
    pixels += histogram[v];
    sum += v * histogram[v];
  }
  if (pixels == 0) return 0;
  const uint32_t mean = sum / pixels;
  uint32_t deviation = 0;
  for (uint32_t v = 0; v < kFingerLevels; v++) deviation += quo::abs_diff(v, mean) * histogram[v];
  return deviation / pixels;
}

}  // namespace

double GetEnhanceCoef(const uint8_t* image, uint32_t width, uint32_t height, int32_t target) {
  if (target == 0) return 0.0;
  uint32_t histogram[kGrayLevels];
  std::memset(histogram, 0, sizeof histogram);  // stays so when the image is null
  const uint64_t pixels = uint64_t{width} * height;
  CalcHistogram(image, pixels <= INT32_MAX ? static_cast<int32_t>(pixels) : 0, histogram, kGrayLevels);
  const uint32_t spread = finger_spread(histogram);
  if (spread == 0) return 1.0;
  return static_cast<double>(target) / spread + 0.5;
}
