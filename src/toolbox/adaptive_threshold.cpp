#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/gray.h"
#include "quoFPAlg.h"
#include "toolbox/window_sums.h"

// Windows at neighbouring pixels share all but two rows or columns, so their sums are carried along from position to
// position. A position is the top left pixel of a window; pixels near the edge share the outermost ones.
namespace {

using quo::kUnclear;
using quo::Limit;
using quo::Rule;

constexpr float kFlatDeviation = 3.0F;  // standard deviation of a window below which it holds no ridges

struct Frame {
  const uint8_t* source;
  uint8_t* output;
  ptrdiff_t width;
  ptrdiff_t height;
};

// The limit by the steps that define it: the squares accumulate in the order of rows, with one rounding each.
Limit defined_limit(const Frame& frame, const Rule& rule, ptrdiff_t left, ptrdiff_t top) {
  const uint8_t* const first = frame.source + top * frame.width + left;
  uint64_t sum = 0;
  for (ptrdiff_t y = 0; y < rule.size; y++) {
    for (ptrdiff_t x = 0; x < rule.size; x++) sum += first[y * frame.width + x];
  }
  const uint64_t mean_floor = sum / (static_cast<uint64_t>(rule.size) * static_cast<uint64_t>(rule.size));
  const double mean = static_cast<double>(sum) / rule.pixels();
  double squares = 0;
  for (ptrdiff_t y = 0; y < rule.size; y++) {
    for (ptrdiff_t x = 0; x < rule.size; x++) {
      const double distance = first[y * frame.width + x] - mean;
      squares = std::fma(distance, distance, squares);
    }
  }
  const float deviation = quo_sqrt(static_cast<float>(squares) / static_cast<float>(rule.pixels()));
  return deviation < kFlatDeviation ? Limit{0} : quo::contrast_limit(static_cast<int32_t>(mean_floor), rule.offset);
}

void threshold_pixels(const uint8_t* __restrict source, uint8_t* __restrict output, const Limit* __restrict limits,
                      ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; i++) output[i] = source[i] >= limits[i] ? quo::kWhite : 0;
}

void threshold_pixels(const uint8_t* __restrict source, uint8_t* __restrict output, Limit limit, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; i++) output[i] = source[i] >= limit ? quo::kWhite : 0;
}

// Positions side by side: `count` of them from column `first`.
struct Strip {
  ptrdiff_t first;
  int32_t count;
};

// A row of pixels below the positions of a strip, and left and right of it where no other position serves them.
void threshold_row(const Frame& frame, const Rule& rule, const Strip& strip, const Limit* limits, ptrdiff_t y) {
  const uint8_t* const source = frame.source + y * frame.width;
  uint8_t* const output = frame.output + y * frame.width;
  const ptrdiff_t left = strip.first + (rule.size - 1) / 2, right = left + strip.count;
  if (strip.first == 0) threshold_pixels(source, output, limits[0], left);
  threshold_pixels(source + left, output + left, limits, strip.count);
  if (strip.first + strip.count + rule.size - 1 < frame.width) return;
  threshold_pixels(source + right, output + right, limits[strip.count - 1], frame.width - right);
}

template <typename Sums>
void threshold_strip(const Frame& frame, const Rule& rule, const Strip& strip) {
  Sums sums;
  Limit limits[Sums::kPositions];
  const auto row = [&](ptrdiff_t y) { return frame.source + y * frame.width + strip.first; };
  sums.clear(strip.count);
  for (int32_t y = 0; y < rule.size; y++) sums.move_down(row(y), nullptr, rule, strip.count);
  const ptrdiff_t half = (rule.size - 1) / 2, last = frame.height - rule.size;
  for (ptrdiff_t top = 0; top <= last; top++) {
    if (top > 0) sums.move_down(row(top + rule.size - 1), row(top - 1), rule, strip.count);
    sums.find_limits(rule, limits, strip.count);
    for (int32_t i = 0; i < strip.count; i++) {
      if (limits[i] == kUnclear) limits[i] = defined_limit(frame, rule, strip.first + i, top);
    }
    const ptrdiff_t end = top < last ? top + half + 1 : frame.height;
    for (ptrdiff_t y = top > 0 ? top + half : 0; y < end; y++) threshold_row(frame, rule, strip, limits, y);
  }
}

template <typename Sums>
void threshold_strips(const Frame& frame, const Rule& rule) {
  const ptrdiff_t positions = frame.width - rule.size + 1;
  for (ptrdiff_t first = 0; first < positions; first += Sums::kPositions) {
    const ptrdiff_t count = std::min<ptrdiff_t>(Sums::kPositions, positions - first);
    threshold_strip<Sums>(frame, rule, {first, static_cast<int32_t>(count)});
  }
}

}  // namespace

void AdaptiveThreshold(const uint8_t* source, uint8_t* output, int32_t width, int32_t height, int32_t window,
                       int32_t offset) {
  if (width < 1 || height < 1) return;
  const Frame frame{source, output, width, height};
  // A mean less 256 is below every pixel, a mean and 256 above: offsets further out decide alike.
  const Rule rule{std::clamp(window, 1, std::min(width, height)), std::clamp(offset, -256, 256)};
  if (rule.size <= quo::SmallWindowSums::kLargestSize) {
    threshold_strips<quo::SmallWindowSums>(frame, rule);
  } else {
    threshold_strips<quo::LargeWindowSums>(frame, rule);
  }
}
