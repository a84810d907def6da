#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "frame/multiversion.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "toolbox/gray_stretch.h"

namespace {

constexpr int32_t kGrayLevels = 256;
constexpr double kDarkShare = 0.001;    // of the pixels, let go below the range
constexpr double kBrightShare = 0.999;  // of the pixels, at which the range ends

// Makes a histogram cumulative, without its last bin. Returns the number of pixels below 255.
uint32_t accumulate(uint32_t* histogram) {
  histogram[quo::kWhite] = 0;
  for (int32_t v = 1; v < kGrayLevels; v++) histogram[v] += histogram[v - 1];
  return histogram[quo::kWhite];
}

int32_t dark_end(const uint32_t* cumulative, double pixels) {
  int32_t level = 1;
  while (level < kGrayLevels - 1 && !(cumulative[level] / pixels > kDarkShare)) level++;
  return level - 1;
}

// 1 when no level is below the share.
int32_t bright_end(const uint32_t* cumulative, double pixels) {
  int32_t level = kGrayLevels - 2;
  while (level > 0 && !(cumulative[level] / pixels < kBrightShare)) level--;
  return level + 1;
}

QUO_MULTIVERSION void stretch(uint8_t* pixels, ptrdiff_t count, uint8_t lo, uint8_t hi) {
  const quo::StretchedRange stretched(lo, hi);
  for (ptrdiff_t i = 0; i < count; i++) {
    const uint8_t result = stretched(std::min(std::max(pixels[i], lo), hi));
    pixels[i] = pixels[i] == quo::kWhite ? quo::kWhite : result;
  }
}

}  // namespace

uint32_t ValidAreaGrayStretch(uint8_t* image, int32_t width, int32_t height) {
  const uint64_t pixels = quo::pixel_count(width, height);
  quo::Scratch<uint32_t> histogram;
  if (pixels > INT32_MAX || !histogram.allocate(kGrayLevels)) return 0;
  if (CalcHistogram(image, static_cast<int32_t>(pixels), histogram.get(), kGrayLevels) == 0) return 0;
  const uint32_t counted = accumulate(histogram.get());
  if (counted == 0) return 0;
  const int32_t lo = dark_end(histogram.get(), counted);
  const int32_t hi = bright_end(histogram.get(), counted);
  if (lo < hi && hi > 1) {
    stretch(image, static_cast<ptrdiff_t>(pixels), static_cast<uint8_t>(lo), static_cast<uint8_t>(hi));
  }
  return 1;
}
