#include "toolbox/window_sums.h"

#include <cmath>

#include "frame/integral_image.h"
#include "frame/multiversion.h"

using quo::kFlatVariance;
using quo::kUnclear;
using quo::LargeWindowSums;
using quo::Limit;
using quo::Rule;
using quo::SmallWindowSums;

namespace {

template <bool kLeaving>
void move_windows_down(const uint8_t* entering, const uint8_t* leaving, int32_t size, int32_t positions,
                       double* __restrict values_at, double* __restrict squares_at) {
  const auto lost = [&](ptrdiff_t i) -> int32_t { return kLeaving ? leaving[i] : 0; };
  int32_t values = 0;   // below 2^24: images have fewer than 2^32 pixels, so a window fewer than 2^16 rows and columns
  int64_t squares = 0;  // below 2^32
  for (ptrdiff_t i = 0; i < size; i++) {
    values += entering[i] - lost(i);
    squares += entering[i] * entering[i] - lost(i) * lost(i);
  }
  for (ptrdiff_t i = 0;; i++) {
    values_at[i] += values;
    squares_at[i] += static_cast<double>(squares);
    if (i == positions - 1) return;
    const int32_t in = entering[i + size], in_lost = lost(i + size);
    const int32_t out = entering[i], out_lost = lost(i);
    values += in - in_lost - (out - out_lost);
    squares += (in - in_lost) * (in + in_lost) - (out - out_lost) * (out + out_lost);
  }
}

QUO_MULTIVERSION void add_row(const uint8_t* __restrict pixels, uint32_t* __restrict values,
                              uint32_t* __restrict squares, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    values[i] += pixels[i];
    squares[i] += static_cast<uint32_t>(pixels[i] * pixels[i]);
  }
}

QUO_MULTIVERSION void exchange_row(const uint8_t* __restrict entering, const uint8_t* __restrict leaving,
                                   uint32_t* __restrict values, uint32_t* __restrict squares, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    const auto difference = static_cast<int16_t>(entering[i] - leaving[i]);
    const auto sum = static_cast<int16_t>(entering[i] + leaving[i]);
    values[i] += static_cast<uint32_t>(difference);
    squares[i] += static_cast<uint32_t>(difference * sum);
  }
}

// With a unit roundoff of u = 2^-24 the mean of the squares is off by 3 u of at most 65025, the square of the mean by
// 7 u: the variance by less than 2^-4. Half a gray level more in the sum keeps it 1 / 2n, which is 2^-13 or more, away
// from the integers beside the mean; three roundings are below 2^-14, so that the whole part is that of the exact mean.
QUO_MULTIVERSION void find_small_limits(const uint32_t* __restrict values_before, const uint32_t* __restrict values,
                                        const uint32_t* __restrict squares_before, const uint32_t* __restrict squares,
                                        float reciprocal, int32_t offset, Limit* __restrict limits, int32_t positions) {
  constexpr float kMargin = 1.0F / 16;
  for (int32_t i = 0; i < positions; i++) {
    const auto sum = static_cast<float>(static_cast<int32_t>(values[i] - values_before[i]));
    const auto square_sum = static_cast<float>(static_cast<int32_t>(squares[i] - squares_before[i]));
    const float mean = sum * reciprocal;
    const float variance = square_sum * reciprocal - mean * mean;
    const Limit limit = quo::contrast_limit(static_cast<int32_t>((sum + 0.5F) * reciprocal), offset);
    const int32_t contrast = -static_cast<int32_t>(variance > kFlatVariance - kMargin);
    const int32_t unclear = -static_cast<int32_t>(std::fabs(variance - kFlatVariance) <= kMargin);
    limits[i] = static_cast<Limit>((limit & contrast) | unclear);
  }
}

}  // namespace

void LargeWindowSums::clear(int32_t positions) {
  for (int32_t i = 0; i < positions; i++) values_[i] = squares_[i] = 0;
}

void LargeWindowSums::move_down(const uint8_t* entering, const uint8_t* leaving, const Rule& rule, int32_t positions) {
  if (leaving == nullptr) {
    move_windows_down<false>(entering, leaving, rule.size, positions, values_, squares_);
  } else {
    move_windows_down<true>(entering, leaving, rule.size, positions, values_, squares_);
  }
}

// With n pixels a window, the variance q is (n * squares - values^2) / n^2, and a window is flat when the defining
// steps take its root to below 3. They differ from q by less than 2^-19 of it: 2^-21 for n < 2^32 fused additions, 3 *
// 2^-24 for two conversions to single precision and a division, 2^-20 for quo_sqrt(), whose relative error is below
// 2^-21. The products here round by 2^-53 of at most 65025 n^2, which is 2^-38 of 9 n^2. So 2^-16 around 9 is clear of
// all of them. Half a gray level more in the sum keeps it 1 / 2n away from both integers beside the mean, so that the
// product with the reciprocal, rounded by less than 2^-43, has the whole part of the exact mean.
void LargeWindowSums::find_limits(const Rule& rule, Limit* __restrict limits, int32_t positions) const {
  const double n = rule.pixels();
  const double clear_flat = kFlatVariance * n * n * (1 - 0x1p-16);
  const double clear_contrast = kFlatVariance * n * n * (1 + 0x1p-16);
  const double reciprocal = 1 / n;
  for (int32_t i = 0; i < positions; i++) {
    const double spread = n * squares_[i] - values_[i] * values_[i];
    const Limit limit = contrast_limit(static_cast<int32_t>((values_[i] + 0.5) * reciprocal), rule.offset);
    limits[i] = static_cast<Limit>(spread < clear_flat ? 0 : spread > clear_contrast ? limit : kUnclear);
  }
}

void SmallWindowSums::clear(int32_t positions) {
  for (int32_t i = 0; i < positions + kLargestSize; i++) values_[i] = squares_[i] = 0;
}

void SmallWindowSums::move_down(const uint8_t* entering, const uint8_t* leaving, const Rule& rule, int32_t positions) {
  const int32_t columns = positions + rule.size - 1;
  if (leaving == nullptr) {
    add_row(entering, values_, squares_, columns);
  } else {
    exchange_row(entering, leaving, values_, squares_, columns);
  }
  // Entry 0 stays free for the sum over no columns.
  running_values_[0] = running_squares_[0] = 0;
  add_up(values_, running_values_ + 1, columns);
  add_up(squares_, running_squares_ + 1, columns);
}

void SmallWindowSums::find_limits(const Rule& rule, Limit* limits, int32_t positions) const {
  find_small_limits(running_values_, running_values_ + rule.size, running_squares_, running_squares_ + rule.size,
                    1.0F / static_cast<float>(rule.size * rule.size), rule.offset, limits, positions);
}
