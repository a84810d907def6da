#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/eight_bytes.h"
#include "frame/gray.h"
#include "frame/integral_image.h"
#include "frame/multiversion.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "toolbox/global_contrast.h"

namespace {

using quo::GrayFrame;
using quo::kWhite;

constexpr int32_t kBrightest = 254;
constexpr double kTargetMean = 128;
constexpr double kTargetSpread = 100;     // twice the mean absolute deviation that the balanced image shall have
constexpr int32_t kStrip = 1024;          // columns balanced at a time, for their means on the stack
constexpr double kLargestQuickGain = 16;  // beyond, single precision leaves too much unclear
constexpr int64_t kLargestQuickWindow = 8000000;          // pixels; their sum fits in 31 bits
constexpr uint64_t kMostQuickPixels = uint64_t{1} << 26;  // whose deviation is known without adding it up

// The columns or rows of a window, from after the first number to the second.
struct Extent {
  ptrdiff_t before;
  ptrdiff_t last;

  ptrdiff_t size() const { return last - before; }
};

// Stands in for a row that there is none of.
constexpr uint8_t kNoRow[kStrip] = {};

void replace_white(const uint8_t* __restrict pixels, uint8_t* __restrict replaced, int32_t count, uint8_t background) {
  for (int32_t i = 0; i < count; i++) replaced[i] = pixels[i] != kWhite ? pixels[i] : background;
}

QUO_MULTIVERSION void slide(const uint8_t* __restrict entering, const uint8_t* __restrict leaving, uint8_t background,
                            uint32_t* __restrict columns, int32_t count) {
  uint8_t gained[kStrip], lost[kStrip];
  replace_white(entering, gained, count, background);
  replace_white(leaving, lost, count, background);
  for (int32_t i = 0; i < count; i++) columns[i] += static_cast<uint32_t>(static_cast<int16_t>(gained[i] - lost[i]));
}

// Sums over the windows of one row of pixels after the other. Background counts as a gray of its own, and the outermost
// rows and columns of the image are in no window. Sums are modulo 2^32.
class Windows {
 public:
  // `memory` holds two rows of sums.
  Windows(const GrayFrame& frame, int32_t half_width, int32_t half_height, uint8_t background, uint32_t* memory)
      : frame_(frame),
        half_width_(half_width),
        half_height_(half_height),
        background_(background),
        columns_(memory),
        running_(memory + frame.width) {
    for (int32_t x = 0; x < frame.width; x++) columns_[x] = 0;
    for (int32_t y = 1; y < std::min(half_height, frame.height - 1); y++) move(y, 0);
  }

  // To the row of pixels below the last one, 0 at first.
  void move_down(int32_t y) {
    const int64_t entering = int64_t{y} + half_height_;
    move(entering > 0 && entering < frame_.height - 1 ? static_cast<int32_t>(entering) : 0,
         std::max(y - 1 - half_height_, 0));
    rows_ = extent(y, half_height_, frame_.height);
    quo::add_up(columns_, running_, frame_.width - 1);
  }

  int32_t width() const { return frame_.width; }
  int32_t half_width() const { return half_width_; }
  const uint32_t* running() const { return running_; }  // entry x is the sum of the columns 1 to x
  Extent columns(int32_t x) const { return extent(x, half_width_, frame_.width); }
  ptrdiff_t area(const Extent& columns) const { return rows_.size() * columns.size(); }
  uint32_t sum(const Extent& columns) const { return running_[columns.last] - running_[columns.before]; }

 private:
  static Extent extent(int32_t position, int32_t half, int32_t length) {
    const int64_t last = std::min(int64_t{position} + half, int64_t{length} - 2);
    return {std::max(position - half, 1) - 1, static_cast<ptrdiff_t>(last)};
  }

  // Row 0 stands for none.
  void move(int32_t entering, int32_t leaving) {
    for (int32_t x = 1, count = 0; x < frame_.width - 1; x += count) {
      count = std::min(kStrip, frame_.width - 1 - x);
      slide(entering > 0 ? frame_.row(entering) + x : kNoRow, leaving > 0 ? frame_.row(leaving) + x : kNoRow,
            background_, columns_ + x, count);
    }
  }

  const GrayFrame& frame_;
  int32_t half_width_;
  int32_t half_height_;
  uint8_t background_;
  Extent rows_{};
  uint32_t* columns_;  // sums over a column's pixels in the rows of the window; 0 in column 0
  uint32_t* running_;
};

struct Balance {
  double mean;
  double gain;
  double shift;
  double gain_error;  // a share of the gain

  Balance(const quo::GlobalContrast& contrast, double deviation, double deviation_error)
      : mean(contrast.mean),
        gain(kTargetSpread / (2 * deviation)),
        shift(kTargetMean - contrast.mean),
        gain_error(deviation_error) {}
};

// A value truncated to 32 bits, limited to their range, and of these the lower 16.
int16_t truncate(double value) {
  if (value >= INT32_MAX) return static_cast<int16_t>(INT32_MAX);
  if (value <= INT32_MIN) return static_cast<int16_t>(INT32_MIN);
  return static_cast<int16_t>(static_cast<int32_t>(value));
}

// Results as they are defined, at the cost of the defined deviation from the first of them on that needs it.
class Definition {
 public:
  Definition(const GrayFrame& frame, const quo::GlobalContrast& contrast, const Balance& near)
      : frame_(frame), contrast_(contrast), balance_(near) {}

  uint8_t balanced(uint8_t pixel, double local) {
    const int16_t moved = truncate(std::fma(balance_.mean - local, 0.5, pixel));
    double value = scaled(moved, local);
    if (balance_.gain_error > 0 && is_unclear(value)) {
      balance_ = Balance(contrast_, quo::defined_deviation(frame_, contrast_), 0);
      value = scaled(moved, local);
    }
    return static_cast<uint8_t>(std::clamp<int32_t>(truncate(value), 0, kBrightest));
  }

 private:
  double scaled(int16_t moved, double local) const {
    return std::fma(moved - local, balance_.gain, local) + balance_.shift;
  }

  // Whether an error of the gain can change the whole part. Distances from the mean are below 1024, and with a gain up
  // to 16 the two roundings of either way together below 2^-37.
  bool is_unclear(double value) const {
    const double margin = 1024 * balance_.gain * balance_.gain_error + 0x1p-37;
    const double part = std::fabs(value) - static_cast<double>(static_cast<int64_t>(std::fabs(value)));
    return part <= margin || part >= 1 - margin;
  }

  const GrayFrame& frame_;
  const quo::GlobalContrast& contrast_;
  Balance balance_;
};

// Means of windows side by side, in single precision, from the running sums at and before their columns. Where the sums
// at one end do not move on, at the edge of the image, the windows grow or shrink.
template <int kLast, int kBefore>
inline void find_means(const uint32_t* last, const uint32_t* before, int32_t area, int32_t rows,
                       float* __restrict means, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    const auto sum = static_cast<float>(static_cast<int32_t>(last[i * kLast] - before[i * kBefore]));
    means[i] = sum * (1.0F / static_cast<float>(area + (kLast - kBefore) * rows * i));
  }
}

// The means of the windows of a row's columns from `first` on.
QUO_MULTIVERSION void find_means(const Windows& windows, int32_t first, int32_t count, float* __restrict means) {
  const int32_t left_end = windows.half_width() + 1;                 // from here on windows are not cut left,
  const int32_t right = windows.width() - 1 - windows.half_width();  // and up to here not right
  const int32_t middle = std::clamp(std::min(left_end, right) - first, 0, count);
  const int32_t middle_end = std::clamp(std::max(left_end, right) - first, 0, count);
  const auto find = [&](const auto& find_part, int32_t begin, int32_t end) {
    if (begin >= end) return;
    const Extent columns = windows.columns(first + begin);
    find_part(windows.running() + columns.last, windows.running() + columns.before,
              static_cast<int32_t>(windows.area(columns)), static_cast<int32_t>(windows.area({0, 1})), means + begin,
              end - begin);
  };
  find(find_means<1, 0>, 0, middle);
  if (left_end <= right) find(find_means<1, 1>, middle, middle_end);
  if (left_end > right) find(find_means<0, 0>, middle, middle_end);
  find(find_means<0, 1>, middle_end, count);
}

// Results in single precision, truncated; 255, which no result is, for background and where a rounding could decide.
// Means are replaced by results, or by 0 where a rounding could decide what the moved value truncates to.
//
// With a unit roundoff of u = 2^-24, a mean is off by 3 u and so by less than 2^-14. The moved value adds half of that
// and three roundings of values below 512: less than 2^-13. Its distance from the mean, below 640, is off by less than
// 2^-13, the product by 2^-12 of the gain, that of 2^-26 in the gain itself included, and the two sums add roundings of
// 2 u (640 gain + 511) and less than 2^-13 for mean and shift: together less than 2^-11 (gain + 1). The defining steps
// in double precision are off by far less. What is below 1 gives 0 and what is 254 or more 254, so values are limited
// to half a gray level inside that, where nothing is unclear.
QUO_MULTIVERSION void balance_pixels(const uint8_t* __restrict pixels, const Balance& balance, float* __restrict means,
                                     int32_t count, uint8_t* __restrict output) {
  constexpr float kMovedMargin = 0x1p-12F;
  const auto gain = static_cast<float>(balance.gain), shift = static_cast<float>(balance.shift);
  const auto global_mean = static_cast<float>(balance.mean);
  for (int32_t i = 0; i < count; i++) {
    const float moved = static_cast<float>(pixels[i]) + (global_mean - means[i]) * 0.5F;
    const auto whole = static_cast<float>(static_cast<int32_t>(moved));
    const float scaled = (whole - means[i]) * gain + means[i] + shift;
    const float below = scaled < kBrightest + 0.5F ? scaled : kBrightest + 0.5F;
    const float limited = below > 0.5F ? below : 0.5F;
    means[i] = std::fabs(std::fabs(moved - whole) - 0.5F) < 0.5F - kMovedMargin ? limited : 0.0F;
  }
  const float margin = 0x1p-11F * (gain + 1);
  for (int32_t i = 0; i < count; i++) {
    const auto whole = static_cast<int32_t>(means[i]);
    const float part = std::fabs(means[i] - static_cast<float>(whole) - 0.5F);
    const int32_t marked = static_cast<int32_t>(part >= 0.5F - margin) | static_cast<int32_t>(pixels[i] == kWhite);
    output[i] = static_cast<uint8_t>(whole | -marked);
  }
}

// Balances the pixels of a row's columns from `first` on whose results are 255, which is all of them at first.
void balance_by_definition(const uint8_t* pixels, const Windows& windows, int32_t first, int32_t count,
                           Definition& definition, uint8_t* results) {
  for (int32_t x = first; x < first + count; x++) {
    while (first + count - x >= 8 && !quo::has_zero_byte(~quo::load_eight(results + x))) x += 8;  // none is 255
    if (x == first + count) return;
    if (results[x] != kWhite || pixels[x] == kWhite) continue;
    const Extent columns = windows.columns(x);
    const double local = windows.sum(columns) / static_cast<double>(windows.area(columns));
    results[x] = definition.balanced(pixels[x], local);
  }
}

void balance_image(const GrayFrame& frame, Windows& windows, const quo::GlobalContrast& contrast, bool small_windows,
                   uint8_t* output) {
  const double error = static_cast<double>(contrast.count + 1024) * 0x1p-53;
  const Balance near(contrast, contrast.deviation, error);
  const bool quick = contrast.count <= kMostQuickPixels && near.gain <= kLargestQuickGain && small_windows;
  Definition definition(frame, contrast, quick ? near : Balance(contrast, quo::defined_deviation(frame, contrast), 0));
  for (int32_t y = 0; y < frame.height; y++) {
    const uint8_t* const pixels = frame.row(y);
    uint8_t* const results = output + static_cast<ptrdiff_t>(y) * frame.width;
    windows.move_down(y);
    for (int32_t x = 0, count = 0; x < frame.width; x += count) {
      float means[kStrip];
      count = std::min(kStrip, frame.width - x);
      if (quick) {
        find_means(windows, x, count, means);
        balance_pixels(pixels + x, near, means, count, results + x);
      } else {
        for (int32_t i = x; i < x + count; i++) results[i] = kWhite;
      }
      balance_by_definition(pixels, windows, x, count, definition, results);
    }
  }
}

constexpr int32_t kSmallestWindow = 3;

// Half of a window size as a 16-bit value, in which sizes count modulo 131072; 0 or less cannot be used.
int16_t half_size(int32_t window_size) {
  return window_size < kSmallestWindow ? int16_t{0} : static_cast<int16_t>((window_size - 1) / 2);
}

}  // namespace

uint32_t LocalGrayBalance(const uint8_t* source, uint8_t* output, int32_t width, uint32_t height, int32_t window_width,
                          int32_t window_height) {
  const int32_t half_width = half_size(window_width), half_height = half_size(window_height);
  if (half_width < 1 || half_height < 1) return 0;
  const uint64_t pixels = width < 1 ? 0 : static_cast<uint64_t>(width) * height;
  // Two rows of sums are all that is used; memory for a summed-area table and for row sums is reserved because a call
  // without it must fail.
  quo::Scratch<uint32_t> sums, row_sums;
  if (!sums.allocate(pixels)) return 0;
  if (width < 3 || height < 3) return 0;
  const GrayFrame frame{source, width, static_cast<int32_t>(height)};
  quo::GlobalContrast contrast;
  if (!quo::measure_contrast(frame, contrast)) return 0;
  if (!row_sums.allocate(pixels)) return 0;
  row_sums.reset();
  Windows windows(frame, half_width, half_height, static_cast<uint8_t>(contrast.mean + 0.5), sums.get());
  const bool small_windows = (int64_t{2} * half_width + 1) * (int64_t{2} * half_height + 1) <= kLargestQuickWindow;
  balance_image(frame, windows, contrast, small_windows, output);
  return 1;
}
