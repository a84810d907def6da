// What a histogram tells about a frame, and the class that follows from it. Shared with the tool, which shows both.
#pragma once

#include <cmath>
#include <cstdint>

namespace quo {

// Gray ranges: dark pixels below kLowFrom, low ones below kHighFrom, high ones below kUsableEnd. Brighter pixels take
// part in nothing.
inline constexpr uint32_t kLowFrom = 15;
inline constexpr uint32_t kHighFrom = 128;
inline constexpr uint32_t kUsableEnd = 200;

inline constexpr uint32_t kTooFewPixels = 1000;   // in the three ranges; a frame needs more
inline constexpr double kDarkShare = 25.0;        // percent of dark pixels above which a frame is dark
inline constexpr double kWideDeviation = 15.0;    // from which on a frame is contrasted
inline constexpr double kNarrowDeviation = 10.0;  // up to which a frame is flat
inline constexpr double kLowShare = 10.0;         // percent of low pixels below which a flat frame is bright

/** Figures of a frame's histogram. Shares and deviation are 0 when there are no low and high pixels. */
struct HistogramFigures {
  uint32_t pixels = 0;        // in the three ranges
  uint32_t usable = 0;        // low and high ones
  double dark_share = 0;      // percent of the pixels
  double low_share = 0;       // percent of the pixels
  double mean = 0;            // of the low and high pixels
  double mean_deviation = 0;  // their mean absolute deviation from it
};

enum class HistogramClass { kUnclassified, kDark, kContrasted, kFlatBright, kFlatMid, kFlat };

/** The number of pixels of gray `from` to `end` - 1; 200 bins of 16 bits stay below 2^24. */
inline uint32_t count_pixels(const uint16_t* bins, uint32_t from, uint32_t end) {
  uint32_t count = 0;
  for (uint32_t gray = from; gray < end; gray++) count += bins[gray];
  return count;
}

/** The figures of a frame from its 256 bins. */
inline HistogramFigures histogram_figures(const uint16_t* bins) {
  const uint32_t dark = count_pixels(bins, 0, kLowFrom), low = count_pixels(bins, kLowFrom, kHighFrom);
  HistogramFigures figures;
  figures.usable = low + count_pixels(bins, kHighFrom, kUsableEnd);
  figures.pixels = dark + figures.usable;
  if (figures.usable == 0) return figures;
  figures.dark_share = 100.0 * dark / figures.pixels;
  figures.low_share = 100.0 * low / figures.pixels;

  uint32_t sum = 0;  // below 200 x 2^24
  for (uint32_t gray = kLowFrom; gray < kUsableEnd; gray++) sum += gray * bins[gray];
  figures.mean = static_cast<double>(sum) / figures.usable;
  double deviations = 0;
  for (uint32_t gray = kLowFrom; gray < kUsableEnd; gray++) deviations += bins[gray] * std::fabs(gray - figures.mean);
  figures.mean_deviation = deviations / figures.usable;
  return figures;
}

/** The class of a frame with these figures. */
inline HistogramClass classify(const HistogramFigures& figures) {
  if (figures.usable == 0 || figures.pixels <= kTooFewPixels) return HistogramClass::kUnclassified;
  if (figures.dark_share > kDarkShare) return HistogramClass::kDark;
  if (figures.mean_deviation >= kWideDeviation) return HistogramClass::kContrasted;
  if (figures.low_share < kLowShare) return HistogramClass::kFlatBright;
  return figures.mean_deviation > kNarrowDeviation ? HistogramClass::kFlatMid : HistogramClass::kFlat;
}

}  // namespace quo
