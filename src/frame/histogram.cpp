#include "quoFPAlg.h"

namespace {

constexpr uint32_t kGrayLevels = 256;
constexpr int kLanes = 4;
constexpr int32_t kFewPixels = 1024;  // below, merging the lanes costs more than it saves

void clear(uint32_t* bins, uint32_t count) {
  for (uint32_t bin = 0; bin < count; bin++) bins[bin] = 0;
}

// Neighbouring pixels are often equal; counting them in different tables keeps one increment from waiting for the
// store of the one before. A lane counts at most INT32_MAX / 4 + 3 pixels, so no sum wraps.
void count_in_lanes(const uint8_t* pixels, int32_t count, uint32_t (&lanes)[kLanes][kGrayLevels]) {
  int32_t i = 0;
  for (; count - i >= kLanes; i += kLanes) {
    lanes[0][pixels[i]]++;
    lanes[1][pixels[i + 1]]++;
    lanes[2][pixels[i + 2]]++;
    lanes[3][pixels[i + 3]]++;
  }
  for (; i < count; i++) lanes[0][pixels[i]]++;
}

}  // namespace

uint8_t CalcHistogram(const uint8_t* pixels, int32_t count, uint32_t* histogram, uint32_t bins) {
  if (pixels == nullptr || histogram == nullptr) return 0;
  if (count < kFewPixels) {
    clear(histogram, bins);
    for (int32_t i = 0; i < count; i++) {
      if (pixels[i] < bins) histogram[pixels[i]]++;
    }
    return 1;
  }
  uint32_t lanes[kLanes][kGrayLevels];
  clear(&lanes[0][0], kLanes * kGrayLevels);
  count_in_lanes(pixels, count, lanes);
  const uint32_t counted = bins < kGrayLevels ? bins : kGrayLevels;
  for (uint32_t v = 0; v < counted; v++) histogram[v] = lanes[0][v] + lanes[1][v] + lanes[2][v] + lanes[3][v];
  clear(histogram + counted, bins - counted);
  return 1;
}
