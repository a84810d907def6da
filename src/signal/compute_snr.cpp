#include <algorithm>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "signal/block_statistics.h"

namespace {

constexpr double kSignalGain = 10.0;  // on the signal variance
constexpr double kNoiseFloor = 1.0;   // added to the noise variance; keeps the ratio of a noise-free block finite

using Variances = quo::Scratch<double>;

// Whether pixels of 16 bits and a row of 32-bit sums have byte counts of 32 bits.
bool fits_memory(uint32_t width, uint32_t height) {
  return uint64_t{width} * height <= UINT32_MAX / sizeof(int16_t) && width <= UINT32_MAX / sizeof(uint32_t);
}

// Modulo 2^32, as the mean is defined.
uint32_t sum_pixels(const uint8_t* pixels, uint32_t count) {
  constexpr uint32_t kRun = 256;
  static_assert(kRun * 255 <= UINT16_MAX);  // a run adds up in 16 bits
  uint32_t sum = 0;
  for (uint32_t first = 0; first < count; first += kRun) {
    const uint8_t* const run = pixels + first;
    const uint32_t length = std::min(kRun, count - first);
    uint16_t run_sum = 0;
    for (uint32_t i = 0; i < length; i++) run_sum = static_cast<uint16_t>(run_sum + run[i]);
    sum += run_sum;
  }
  return sum;
}

// What the smoothing took away, around the mean: frame - (smooth - mean), -255 to 510 before it is clamped.
void take_noise(const uint8_t* __restrict frame, const uint8_t* __restrict smooth, uint8_t mean,
                uint8_t* __restrict noise, uint32_t count) {
  for (uint32_t i = 0; i < count; i++) {
    const auto value = static_cast<int16_t>(frame[i] - smooth[i] + mean);
    noise[i] = static_cast<uint8_t>(std::clamp<int16_t>(value, 0, 255));
  }
}

bool measure_blocks(const uint8_t* image, uint32_t width, uint32_t height, Variances& variances, uint32_t& count) {
  double* array = nullptr;
  uint32_t across = 0, down = 0;
  if (ImgBlockVariance(image, static_cast<int32_t>(width), static_cast<int32_t>(height), quo::kBlockMargin,
                       quo::kBlockSize, &array, &across, &down) != QUO_OK) {
    return false;
  }
  variances.adopt(array);
  count = across * down;
  return true;
}

double block_ratio(double signal_variance, double noise_variance) {
  return kSignalGain * signal_variance / (noise_variance + kNoiseFloor);
}

// The SNR, truncated.
uint8_t saturated(double value) { return value > 255.0 ? 255 : static_cast<uint8_t>(value); }

// The root of a variance, rounded to the nearest gray level.
uint8_t amplitude(double variance) {
  return saturated(static_cast<double>(quo_sqrt(static_cast<float>(variance))) + 0.5);
}

}  // namespace

uint32_t FP_ComputeSNR(const uint8_t* frame, uint32_t width, uint32_t height, uint8_t* snr, uint8_t* signal,
                       uint8_t* noise) {
  if (snr == nullptr) return QUO_NO_OUTPUT;
  if (!fits_memory(width, height)) return QUO_NO_MEMORY;
  const uint32_t pixels = width * height;
  quo::Scratch<uint8_t> noise_image, smooth;
  if (!noise_image.allocate(pixels) || !smooth.allocate(pixels)) return QUO_NO_MEMORY;

  quo_memcpy(smooth.get(), frame, pixels);
  if (GasssianSmooth(smooth.get(), noise_image.get(), static_cast<int32_t>(width), static_cast<int32_t>(height)) == 0) {
    return QUO_NO_MEMORY;
  }
  Variances signals, noises, ratios;
  uint32_t blocks = 0;
  if (!measure_blocks(smooth.get(), width, height, signals, blocks)) return QUO_NO_MEMORY;

  // The smoothed image around its mean is never stored; its memory is reserved because a call without it must fail.
  quo::Scratch<int16_t> centred;
  if (!centred.allocate(pixels)) return QUO_NO_MEMORY;
  const auto mean = static_cast<uint8_t>(sum_pixels(smooth.get(), pixels) / pixels);
  take_noise(frame, smooth.get(), mean, noise_image.get(), pixels);
  if (!measure_blocks(noise_image.get(), width, height, noises, blocks)) return QUO_NO_MEMORY;

  if (!ratios.allocate(blocks)) return QUO_NO_MEMORY;
  for (uint32_t k = 0; k < blocks; k++) ratios[k] = block_ratio(signals[k], noises[k]);
  const double median = quo::upper_median(ratios.get(), blocks);
  uint32_t k = 0;  // the first block with the median; there is one, so the last need not be looked at
  while (k + 1 < blocks && block_ratio(signals[k], noises[k]) != median) k++;

  *snr = saturated(median);
  if (signal != nullptr) *signal = amplitude(kSignalGain * signals[k]);
  if (noise != nullptr) *noise = amplitude(noises[k] + kNoiseFloor);
  return QUO_OK;
}
