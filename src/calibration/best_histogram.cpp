#include <algorithm>
#include <cmath>

#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

constexpr uint32_t kGrayLevels = 256;
constexpr uint8_t kNone = 255;

// Gray ranges: dark pixels below kLowFrom, low ones below kHighFrom, high ones below kUsableEnd. Brighter pixels take
// part in nothing.
constexpr uint32_t kLowFrom = 15;
constexpr uint32_t kHighFrom = 128;
constexpr uint32_t kUsableEnd = 200;

constexpr uint32_t kTooFewPixels = 1000;   // in the three ranges; a frame needs more
constexpr double kDarkShare = 25.0;        // percent of dark pixels above which a frame is dark
constexpr double kWideDeviation = 15.0;    // from which on a frame is contrasted
constexpr double kNarrowDeviation = 10.0;  // up to which a frame is flat
constexpr double kLowShare = 10.0;         // percent of low pixels below which a flat frame is bright

// Counts modulo 65536. Parts of the frame keep within what CalcHistogram can count.
void count_grays(const uint8_t* frame, uint64_t pixels, uint16_t (&bins)[kGrayLevels]) {
  constexpr uint64_t kPart = uint64_t{1} << 30;
  for (uint16_t& bin : bins) bin = 0;
  for (uint64_t first = 0; first < pixels; first += kPart) {
    uint32_t part[kGrayLevels];
    CalcHistogram(frame + first, static_cast<int32_t>(std::min(kPart, pixels - first)), part, kGrayLevels);
    for (uint32_t gray = 0; gray < kGrayLevels; gray++) bins[gray] = static_cast<uint16_t>(bins[gray] + part[gray]);
  }
}

// Figures of a frame's histogram. Shares and deviation are 0 when there are no low and high pixels.
struct HistogramFigures {
  uint32_t pixels = 0;        // in the three ranges
  uint32_t usable = 0;        // low and high ones
  double dark_share = 0;      // percent of the pixels
  double low_share = 0;       // percent of the pixels
  double mean_deviation = 0;  // mean absolute deviation of the low and high pixels from their mean
};

enum class HistogramClass { kUnclassified, kDark, kContrasted, kFlatBright, kFlatMid, kFlat };

// The number of pixels of gray `from` to `end` - 1; 200 bins of 16 bits stay below 2^24.
uint32_t count_pixels(const uint16_t* bins, uint32_t from, uint32_t end) {
  uint32_t count = 0;
  for (uint32_t gray = from; gray < end; gray++) count += bins[gray];
  return count;
}

HistogramFigures histogram_figures(const uint16_t* bins) {
  const uint32_t dark = count_pixels(bins, 0, kLowFrom), low = count_pixels(bins, kLowFrom, kHighFrom);
  HistogramFigures figures;
  figures.usable = low + count_pixels(bins, kHighFrom, kUsableEnd);
  figures.pixels = dark + figures.usable;
  if (figures.usable == 0) return figures;
  figures.dark_share = 100.0 * dark / figures.pixels;
  figures.low_share = 100.0 * low / figures.pixels;

  // The deviations wait for one another's sum, so the empty bins at both ends, which add nothing to it, are left out.
  uint32_t from = kLowFrom, end = kUsableEnd;
  while (bins[from] == 0) from++;
  while (bins[end - 1] == 0) end--;
  uint32_t sum = 0;  // below 200 x 2^24
  for (uint32_t gray = from; gray < end; gray++) sum += gray * bins[gray];
  const double mean = static_cast<double>(sum) / figures.usable;
  double deviations = 0;
  for (uint32_t gray = from; gray < end; gray++) deviations += bins[gray] * std::fabs(gray - mean);
  figures.mean_deviation = deviations / figures.usable;
  return figures;
}

HistogramClass classify(const HistogramFigures& figures) {
  if (figures.usable == 0 || figures.pixels <= kTooFewPixels) return HistogramClass::kUnclassified;
  if (figures.dark_share > kDarkShare) return HistogramClass::kDark;
  if (figures.mean_deviation >= kWideDeviation) return HistogramClass::kContrasted;
  if (figures.low_share < kLowShare) return HistogramClass::kFlatBright;
  return figures.mean_deviation > kNarrowDeviation ? HistogramClass::kFlatMid : HistogramClass::kFlat;
}

// What the frames seen so far offer to the choice.
struct Candidates {
  double best_low_share = 0;  // of a contrasted frame; 0 when none is eligible
  uint8_t best = kNone;
  uint8_t last_dark = kNone;
  uint8_t last_flat_mid = kNone;
  uint32_t dark = 0;
  uint32_t flat_bright = 0;
  uint32_t flat_mid = 0;

  void add(uint8_t index, const HistogramFigures& figures) {
    switch (classify(figures)) {
      case HistogramClass::kDark:
        dark++;
        last_dark = index;
        break;
      case HistogramClass::kContrasted:
        if (figures.low_share > best_low_share) {
          best_low_share = figures.low_share;
          best = index;
        }
        break;
      case HistogramClass::kFlatBright:
        flat_bright++;
        break;
      case HistogramClass::kFlatMid:
        flat_mid++;
        last_flat_mid = index;
        break;
      case HistogramClass::kUnclassified:
      case HistogramClass::kFlat:
        break;
    }
  }

  // The chosen one of `count` frames, or kNone. An index is at most 254, so kNone is none of them.
  uint8_t choose(uint8_t count) const {
    if (best_low_share > 0.0) return best;
    if (dark == count) return static_cast<uint8_t>(count - 1);
    if (flat_bright >= 1 && dark == 1) return last_dark;
    if (dark >= 1 && flat_mid == 1) return last_flat_mid;
    return kNone;
  }
};

}  // namespace

uint32_t FP_ChooseBestHist(const uint8_t* const* frames, uint8_t count, int32_t width, int32_t height,
                           uint8_t* chosen) {
  Candidates candidates;
  for (uint8_t i = 0; i < count; i++) {
    if (frames[i] == nullptr) continue;
    uint16_t bins[kGrayLevels];
    count_grays(frames[i], quo::pixel_count(width, height), bins);
    candidates.add(i, histogram_figures(bins));
  }
  const uint8_t index = count > 0 ? candidates.choose(count) : kNone;
  if (count > 0 && index == kNone) return QUO_NO_CANDIDATE;
  if (chosen != nullptr) *chosen = index;
  return QUO_OK;
}
