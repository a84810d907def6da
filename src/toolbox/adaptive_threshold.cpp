#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/gray.h"
#include "quoFPAlg.h"

// Windows at neighbouring pixels share all but two rows or columns, so their sums are carried along from position to
// position. A position is the top left pixel of a window; pixels near the edge share the outermost ones.
namespace {

constexpr float kFlatDeviation = 3.0F;  // standard deviation of a window below which it holds no ridges
constexpr int32_t kStrip = 512;         // positions side by side that are carried along, for their sums on the stack

// The smallest pixel value that becomes white, 0 for a flat window; kUnclear where the sums leave open if it is flat.
using Limit = int16_t;
constexpr Limit kUnclear = -1;

struct Frame {
  const uint8_t* source;
  uint8_t* output;
  ptrdiff_t width;
  ptrdiff_t height;
};

struct Rule {
  int32_t size;    // side of the window
  int32_t offset;  // subtracted from the mean, within +-256

  double pixels() const { return static_cast<double>(size) * size; }
};

// Sums over the windows at the positions of a strip, below 2^48 and so exact.
struct Sums {
  double values[kStrip];
  double squares[kStrip];
};

// Moves the windows a row down: their sums gain the row that enters and lose the one that leaves.
template <bool kLeaving>
void move_down(const uint8_t* entering, const uint8_t* leaving, int32_t size, int32_t count, Sums& sums) {
  const auto lost = [&](ptrdiff_t i) -> int32_t { return kLeaving ? leaving[i] : 0; };
  int32_t values = 0;   // below 2^24: images have fewer than 2^32 pixels, so a window fewer than 2^16 rows and columns
  int64_t squares = 0;  // below 2^32
  for (ptrdiff_t i = 0; i < size; i++) {
    values += entering[i] - lost(i);
    squares += entering[i] * entering[i] - lost(i) * lost(i);
  }
  for (ptrdiff_t i = 0;; i++) {
    sums.values[i] += values;
    sums.squares[i] += static_cast<double>(squares);
    if (i == count - 1) return;
    const int32_t in = entering[i + size], in_lost = lost(i + size);
    const int32_t out = entering[i], out_lost = lost(i);
    values += in - in_lost - (out - out_lost);
    squares += (in - in_lost) * (in + in_lost) - (out - out_lost) * (out + out_lost);
  }
}

// A pixel p is white when p > mean - offset in double precision. An integer k = p + offset and the exact mean differ by
// at least 1 / n or not at all; roundings of 2^-44 do not bridge that, so p is white from floor(mean) - offset + 1 on.
// Half a gray level more in the sum keeps it 1 / 2n away from both integers beside the mean, so that the product with the
// reciprocal, rounded by less than 2^-43, has the same floor.
Limit contrast_limit(double sum, double reciprocal, int32_t offset) {
  return static_cast<Limit>(std::clamp(static_cast<int32_t>((sum + 0.5) * reciprocal) - offset + 1, 0, 256));
}

// The limit by the steps that define it: the squares accumulate in the order of rows, with one rounding each.
Limit defined_limit(const Frame& frame, const Rule& rule, ptrdiff_t left, ptrdiff_t top) {
  const uint8_t* const first = frame.source + top * frame.width + left;
  uint64_t sum = 0;
  for (ptrdiff_t y = 0; y < rule.size; y++) {
    for (ptrdiff_t x = 0; x < rule.size; x++) sum += first[y * frame.width + x];
  }
  const double mean = static_cast<double>(sum) / rule.pixels();
  double squares = 0;
  for (ptrdiff_t y = 0; y < rule.size; y++) {
    for (ptrdiff_t x = 0; x < rule.size; x++) {
      const double distance = first[y * frame.width + x] - mean;
      squares = std::fma(distance, distance, squares);
    }
  }
  const float deviation = quo_sqrt(static_cast<float>(squares) / static_cast<float>(rule.pixels()));
  return deviation < kFlatDeviation ? Limit{0}
                                    : contrast_limit(static_cast<double>(sum), 1 / rule.pixels(), rule.offset);
}

// Limits of a row of positions, from their sums.
//
// With n pixels a window, the variance q is (n * squares - values^2) / n^2, and a window is flat when the defining steps
// take its root to below 3. They differ from q by less than 2^-19 of it: 2^-21 for n < 2^32 fused additions, 3 * 2^-24
// for two conversions to single precision and a division, 2^-20 for quo_sqrt(), whose relative error is below 2^-21. The
// products here round by 2^-53 of at most 65025 n^2, which is 2^-38 of 9 n^2. So 2^-16 around 9 is clear of all of them.
void find_limits(const Sums& sums, const Rule& rule, Limit* __restrict limits, int32_t count) {
  const double n = rule.pixels();
  const double clear_flat = 9 * n * n * (1 - 0x1p-16);
  const double clear_contrast = 9 * n * n * (1 + 0x1p-16);
  const double reciprocal = 1 / n;
  for (int32_t i = 0; i < count; i++) {
    const double spread = n * sums.squares[i] - sums.values[i] * sums.values[i];
    const Limit limit = contrast_limit(sums.values[i], reciprocal, rule.offset);
    limits[i] = static_cast<Limit>(spread < clear_flat ? 0 : spread > clear_contrast ? limit : kUnclear);
  }
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

void threshold_strip(const Frame& frame, const Rule& rule, const Strip& strip) {
  Sums sums;
  Limit limits[kStrip];
  const auto row = [&](ptrdiff_t y) { return frame.source + y * frame.width + strip.first; };
  for (int32_t i = 0; i < strip.count; i++) sums.values[i] = sums.squares[i] = 0;
  for (int32_t y = 0; y < rule.size; y++) move_down<false>(row(y), nullptr, rule.size, strip.count, sums);
  const ptrdiff_t half = (rule.size - 1) / 2, last = frame.height - rule.size;
  for (ptrdiff_t top = 0; top <= last; top++) {
    if (top > 0) move_down<true>(row(top + rule.size - 1), row(top - 1), rule.size, strip.count, sums);
    find_limits(sums, rule, limits, strip.count);
    for (int32_t i = 0; i < strip.count; i++) {
      if (limits[i] == kUnclear) limits[i] = defined_limit(frame, rule, strip.first + i, top);
    }
    const ptrdiff_t end = top < last ? top + half + 1 : frame.height;
    for (ptrdiff_t y = top > 0 ? top + half : 0; y < end; y++) threshold_row(frame, rule, strip, limits, y);
  }
}

}  // namespace

void AdaptiveThreshold(const uint8_t* source, uint8_t* output, int32_t width, int32_t height, int32_t window,
                       int32_t offset) {
  if (width < 1 || height < 1) return;
  const Frame frame{source, output, width, height};
  // A mean less 256 is below every pixel, a mean and 256 above: offsets further out decide alike.
  const Rule rule{std::clamp(window, 1, std::min(width, height)), std::clamp(offset, -256, 256)};
  const ptrdiff_t positions = frame.width - rule.size + 1;
  for (ptrdiff_t first = 0; first < positions; first += kStrip) {
    threshold_strip(frame, rule, {first, static_cast<int32_t>(std::min<ptrdiff_t>(kStrip, positions - first))});
  }
}
