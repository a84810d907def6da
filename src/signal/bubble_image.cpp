#include <cmath>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "signal/block_statistics.h"

namespace {

constexpr float kDeviations = 4.0F;       // a bright pixel stands this many standard deviations above the mean
constexpr float kNoisyDeviation = 60.0F;  // above it, in a saturated frame, the threshold may pass white
constexpr double kSaturatedShare = 0.1;   // white pixels above this share of the frame: saturated
constexpr int32_t kBorder = 2;            // pixels along the edges that the erosion leaves out
constexpr uint32_t kGrayLevels = 256;

using Histogram = uint32_t[kGrayLevels];

// All arithmetic modulo 2^32.
uint32_t mean_gray(const Histogram& bins, uint32_t pixels) {
  uint32_t sum = 0;
  for (uint32_t gray = 0; gray < kGrayLevels; gray++) sum += gray * bins[gray];
  return sum / pixels;
}

// The typical standard deviation within a block: the root of the median block variance. False when the block
// statistics fail.
bool local_deviation(const uint8_t* frame, int32_t width, int32_t height, float& deviation) {
  double* array = nullptr;
  uint32_t across = 0, down = 0;
  if (ImgBlockVariance(frame, width, height, quo::kBlockMargin, quo::kBlockSize, &array, &across, &down) != QUO_OK) {
    return false;
  }
  quo::Scratch<double> variances;
  variances.adopt(array);
  deviation = quo_sqrt(static_cast<float>(quo::upper_median(array, across * down)));
  return true;
}

// The lowest gray of a bright pixel, at most 255 unless the frame is both very noisy and saturated. No more than
// 4 x 127.5 + 255 in any case.
uint32_t bright_threshold(const Histogram& bins, uint32_t pixels, uint32_t mean, float deviation) {
  const float level = std::fma(deviation, kDeviations, static_cast<float>(mean));
  const bool saturated = bins[quo::kWhite] > pixels * kSaturatedShare;
  if (deviation > kNoisyDeviation && saturated) return static_cast<uint32_t>(level);
  return level >= 255.0F ? 255 : static_cast<uint32_t>(level);
}

bool has_bright_pixels(const Histogram& bins, uint32_t threshold) {
  for (uint32_t gray = threshold; gray < kGrayLevels; gray++) {
    if (bins[gray] > 0) return true;
  }
  return false;
}

void mark_bright(const uint8_t* __restrict frame, uint8_t* __restrict mask, uint32_t pixels, uint8_t threshold) {
  for (uint32_t i = 0; i < pixels; i++) mask[i] = frame[i] >= threshold ? quo::kWhite : 0;
}

}  // namespace

uint32_t CreateBubbleImage(const uint8_t* frame, uint32_t width, uint32_t height, uint32_t* count,
                           uint8_t** bubble_image) {
  if (count != nullptr) *count = 0;
  if (width == 0 || height == 0) return QUO_OK;
  if (uint64_t{width} * height > INT32_MAX) return QUO_NO_MEMORY;
  const uint32_t pixels = width * height;
  const auto columns = static_cast<int32_t>(width), rows = static_cast<int32_t>(height);

  Histogram bins;
  CalcHistogram(frame, static_cast<int32_t>(pixels), bins, kGrayLevels);
  float deviation = 0;
  if (!local_deviation(frame, columns, rows, deviation)) return QUO_NO_MEMORY;
  const uint32_t threshold = bright_threshold(bins, pixels, mean_gray(bins, pixels), deviation);
  if (!has_bright_pixels(bins, threshold)) return QUO_OK;

  quo::Scratch<uint8_t> mask, bubbles;
  if (!mask.allocate(pixels)) return QUO_NO_MEMORY;
  mark_bright(frame, mask.get(), pixels, static_cast<uint8_t>(threshold));
  if (!bubbles.allocate(pixels)) return QUO_NO_MEMORY;
  quo_memset(bubbles.get(), 0, pixels);
  MyRectErode(mask.get(), bubbles.get(), columns, rows, kBorder, count);
  if (bubble_image != nullptr) *bubble_image = bubbles.release();
  return QUO_OK;
}
