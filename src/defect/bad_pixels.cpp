#include <cmath>

#include "frame/gray.h"
#include "frame/multiversion.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

constexpr uint32_t kGrayLevels = 256;
constexpr int32_t kBorder = 2;                // lines at each edge that are not inspected
constexpr double kMaxDarkestShare = 0.3;      // of the dark pixels may have the darkest level
constexpr double kDeviationsBelowMean = 2.3;  // standard deviations from the mean of the dark pixels to the threshold

// The gray levels below a limit. Sums are modulo 2^32: the weighted one is exact for 16,909,320 pixels. That of the
// squared deviations follows from these, modulo 2^32 too, and is exact for 66,572 of the largest one.
struct DarkLevels {
  uint8_t lowest = 0;  // level present
  uint8_t limit = 0;
  uint32_t pixels = 0;
  uint32_t weighted = 0;  // by their levels
  uint32_t squares = 0;   // weighted by the squares of their levels
};

QUO_MULTIVERSION DarkLevels dark_levels(const uint32_t (&histogram)[kGrayLevels], uint8_t limit) {
  DarkLevels dark{0, limit};
  while (dark.lowest < limit && histogram[dark.lowest] == 0) dark.lowest++;
  for (uint32_t v = 0; v < limit; v++) {
    dark.pixels += histogram[v];
    dark.weighted += v * histogram[v];
    dark.squares += v * v * histogram[v];
  }
  return dark;
}

// A frame without dark pixels, or with too many of them at its darkest level alone, is not inspected.
bool can_be_inspected(const uint32_t (&histogram)[kGrayLevels], const DarkLevels& dark) {
  if (dark.pixels == 0) return false;
  return !(static_cast<double>(histogram[dark.lowest]) > kMaxDarkestShare * static_cast<double>(dark.pixels));
}

// Level below which a pixel may be bad: far below the mean of the dark pixels, and above the lowest level.
uint8_t bad_threshold(const DarkLevels& dark) {
  const uint32_t mean = dark.weighted / dark.pixels;
  const uint32_t squares = dark.squares - 2 * mean * dark.weighted + mean * mean * dark.pixels;  // of the deviations
  const float deviation = quo_sqrt(static_cast<float>(squares / dark.pixels));
  const double cut = std::fma(-kDeviationsBelowMean, static_cast<double>(deviation), static_cast<double>(mean));
  const int lowest_cut = dark.lowest + 1;
  return static_cast<uint8_t>(lowest_cut > cut ? lowest_cut : static_cast<int>(cut));  // at most the mean, below 255
}

int64_t count_below(const uint32_t (&histogram)[kGrayLevels], uint8_t level) {
  uint32_t pixels = 0;
  for (uint32_t v = 0; v < level; v++) pixels += histogram[v];
  return pixels;
}

}  // namespace

uint32_t CheckBadPixelsNum(const uint8_t* image, int32_t width, int32_t height, int32_t allowance, uint32_t* bad_pixels,
                           uint8_t** mark_image, uint8_t level_limit) {
  *bad_pixels = 0;
  const uint64_t pixels = quo::pixel_count(width, height);
  uint32_t histogram[kGrayLevels];
  if (pixels > INT32_MAX || CalcHistogram(image, static_cast<int32_t>(pixels), histogram, kGrayLevels) == 0) {
    return QUO_OK;
  }
  const DarkLevels dark = dark_levels(histogram, level_limit);
  if (!can_be_inspected(histogram, dark)) return QUO_OK;
  const uint8_t threshold = bad_threshold(dark);
  const bool passes_uncounted = count_below(histogram, threshold) <= allowance;
  if (passes_uncounted && static_cast<int64_t>(pixels) > allowance) return QUO_OK;
  MyErodeEx(image, width, height, kBorder, threshold, allowance, bad_pixels, mark_image);
  return QUO_OK;
}
