#include "preproc/enhance_coef.h"

#include <algorithm>

namespace {

constexpr uint8_t kFingerLevels = 230;  // gray levels from here on are background

// The finger pixels of a frame; the sum is modulo 2^32.
struct Finger {
  uint32_t pixels = 0;
  uint32_t sum = 0;
};

// Pixels whose count and sum are taken in 16 bits, which a vector register holds twice as many of.
constexpr int32_t kPartial = 256;
static_assert(kPartial * (kFingerLevels - 1) <= UINT16_MAX);

Finger count_finger(const uint8_t* pixels, int32_t count) {
  Finger finger;
  for (int32_t i = 0; i < count;) {
    const int32_t end = i + std::min(kPartial, count - i);
    uint16_t counted = 0;
    uint16_t sum = 0;
    for (; i < end; i++) {
      const bool is_finger = pixels[i] < kFingerLevels;
      counted = static_cast<uint16_t>(counted + (is_finger ? 1 : 0));
      sum = static_cast<uint16_t>(sum + (is_finger ? pixels[i] : 0));
    }
    finger.pixels += counted;
    finger.sum += sum;
  }
  return finger;
}

// Sum, modulo 2^32, of the distances of the finger pixels from their mean.
uint32_t total_deviation(const uint8_t* pixels, int32_t count, uint8_t mean) {
  uint32_t total = 0;
  for (int32_t i = 0; i < count;) {
    const int32_t end = i + std::min(kPartial, count - i);
    uint16_t sum = 0;
    for (; i < end; i++) {
      const uint8_t value = pixels[i] < kFingerLevels ? pixels[i] : mean;
      const uint8_t larger = value > mean ? value : mean;
      const uint8_t smaller = value > mean ? mean : value;
      sum = static_cast<uint16_t>(sum + (larger - smaller));
    }
    total += sum;
  }
  return total;
}

}  // namespace

double GetEnhanceCoef(const uint8_t* image, uint32_t width, uint32_t height, int32_t target) {
  if (target == 0) return 0.0;
  const uint64_t pixels = uint64_t{width} * height;
  const int32_t count = image != nullptr && pixels <= INT32_MAX ? static_cast<int32_t>(pixels) : 0;
  const Finger finger = count_finger(image, count);
  if (finger.pixels == 0) return 1.0;
  const auto mean = static_cast<uint8_t>(finger.sum / finger.pixels);
  const uint32_t spread = total_deviation(image, count, mean) / finger.pixels;
  if (spread == 0) return 1.0;
  return static_cast<double>(target) / spread + 0.5;
}
