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
constexpr double kTargetSpread = 100;         // twice the mean absolute deviation that the balanced image shall have
constexpr int32_t kStrip = 1024;              // pixels balanced at a time, for the sums of their windows on the stack
constexpr int32_t kLargestQuickGain = 16;     // beyond, single precision leaves too much unclear
constexpr int32_t kLongestShortColumn = 128;  // above and below a pixel, in windows with columns' sums of 16 bits
static_assert((2 * kLongestShortColumn + 1) * 255 <= UINT16_MAX);
constexpr int64_t kLargestQuickWindow = 8000000;          // pixels; their sum fits in 31 bits
constexpr uint64_t kMostQuickPixels = uint64_t{1} << 26;  // whose deviation is known without adding it up

// Stands in for a row that there is none of.
constexpr uint8_t kNoRow[kStrip] = {};

void replace_white(const uint8_t* __restrict pixels, uint8_t* __restrict replaced, int32_t count, uint8_t background) {
  for (int32_t i = 0; i < count; i++) replaced[i] = pixels[i] != kWhite ? pixels[i] : background;
}

template <typename Sum>
[[gnu::always_inline]] inline void slide_sums(const uint8_t* __restrict entering, const uint8_t* __restrict leaving,
                                              uint8_t background, Sum* __restrict columns, int32_t count) {
  uint8_t gained[kStrip], lost[kStrip];
  replace_white(entering, gained, count, background);
  replace_white(leaving, lost, count, background);
  for (int32_t i = 0; i < count; i++) {
    columns[i] = static_cast<Sum>(columns[i] + static_cast<Sum>(static_cast<int16_t>(gained[i] - lost[i])));
  }
}

QUO_MULTIVERSION void slide(const uint8_t* entering, const uint8_t* leaving, uint8_t background, uint16_t* columns,
                            int32_t count) {
  slide_sums(entering, leaving, background, columns, count);
}

QUO_MULTIVERSION void slide(const uint8_t* entering, const uint8_t* leaving, uint8_t background, uint32_t* columns,
                            int32_t count) {
  slide_sums(entering, leaving, background, columns, count);
}

QUO_MULTIVERSION void subtract(const uint32_t* __restrict sums, const uint32_t* __restrict subtracted,
                               uint32_t* __restrict differences, int32_t count) {
  for (int32_t i = 0; i < count; i++) differences[i] = sums[i] - subtracted[i];
}

// Sums over the windows of one row of pixels after the other. Background counts as a gray of its own, and the outermost
// rows and columns of the image are in no window. Sums are modulo 2^32; those over columns may be shorter numbers.
template <typename ColumnSum>
class Windows {
 public:
  // `memory` holds two rows of sums.
  Windows(const GrayFrame& frame, int32_t half_width, int32_t half_height, uint8_t background, uint32_t* memory)
      : frame_(frame),
        half_width_(half_width),
        half_height_(half_height),
        background_(background),
        columns_(reinterpret_cast<ColumnSum*>(memory)),
        running_(memory + frame.width) {
    for (int32_t x = 0; x < frame.width; x++) columns_[x] = 0;
    for (int32_t y = 1; y < std::min(half_height, frame.height - 1); y++) move(y, 0);
  }

  // To the row of pixels below the last one, 0 at first.
  void move_down(int32_t y) {
    const int64_t entering = int64_t{y} + half_height_;
    move(entering > 0 && entering < frame_.height - 1 ? static_cast<int32_t>(entering) : 0,
         std::max(y - 1 - half_height_, 0));
    quo::add_up(columns_, running_, frame_.width);
  }

  // Of the windows around a column and a row.
  ptrdiff_t columns(int32_t x) const { return size(x, half_width_, frame_.width); }
  ptrdiff_t rows(int32_t y) const { return size(y, half_height_, frame_.height); }

  // Of the windows around the columns from `first` on. At the edge of the image one end of them does not move.
  void find_sums(int32_t first, int32_t count, uint32_t* __restrict sums) const {
    const auto columns_to = [&](int64_t end) {
      return static_cast<int32_t>(std::clamp<int64_t>(end - first, 0, count));
    };
    const int32_t uncut = columns_to(int64_t{frame_.width} - 1 - half_width_), cut = columns_to(half_width_ + 2);
    const ptrdiff_t last = ptrdiff_t{first} + half_width_, before = ptrdiff_t{first} - half_width_ - 1;
    int32_t i = 0;
    for (; i < std::min(cut, uncut); i++) sums[i] = running_[last + i];
    if (i < uncut) {  // windows that are cut on no side
      subtract(running_ + (last + i), running_ + (before + i), sums + i, uncut - i);
      i = uncut;
    }
    for (; i < count; i++) sums[i] = running_[frame_.width - 2] - (i >= cut ? running_[before + i] : 0);
  }

 private:
  static ptrdiff_t size(int32_t position, int32_t half, int32_t length) {
    const int64_t last = std::min(int64_t{position} + half, int64_t{length} - 2);
    return static_cast<ptrdiff_t>(last + 1 - std::max(position - half, 1));
  }

  // Row 0 stands for none. The outermost columns move along and are added up, for whole vectors are quicker than the
  // columns left after them; no window has the right one, and the left one gets its 0 back.
  void move(int32_t entering, int32_t leaving) {
    for (int32_t x = 0, count = 0; x < frame_.width; x += count) {
      count = std::min(kStrip, frame_.width - x);
      slide(entering > 0 ? frame_.row(entering) + x : kNoRow, leaving > 0 ? frame_.row(leaving) + x : kNoRow,
            background_, columns_ + x, count);
    }
    columns_[0] = 0;
  }

  const GrayFrame& frame_;
  int32_t half_width_;
  int32_t half_height_;
  uint8_t background_;
  ColumnSum* columns_;  // sums over a column's pixels in the rows of the window; 0 in column 0
  uint32_t* running_;   // entry x is the sum of the columns 1 to x
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

// What single precision makes of the sums of windows: bounds of the results.
//
// With a unit roundoff of u = 2^-24, a mean takes five roundings and is off by 5 u, at most 1275 u. The moved value
// adds half of that and roundings of two values below 128 and one below 512, together less than 2^-13, and 2^-15 where
// a margin is taken off. What it truncates to is exact where both bounds of it truncate to the same; otherwise the
// result may be less by the gain. The products of gain and truncated value and of mean and 1 - gain, with roundings of
// both factors, are off by 768 u gain and 1785 u (gain + 1), the constant and the sums by 1200 u (gain + 1), taking a
// margin off by as much once more: together less than 2^-11 (gain + 1). The defining steps in double precision are off
// by far less, also where the gain is by 2^-26 of itself.
struct QuickBalance {
  static constexpr float kMovedMargin = 0x1p-12F;

  float half_mean;  // of the image, and a margin
  float gain;
  float mean_share;  // of a window's mean in the result
  float shift;       // and a margin
  float margin;

  explicit QuickBalance(const Balance& balance)
      : half_mean(static_cast<float>(balance.mean / 2 + static_cast<double>(kMovedMargin))),
        gain(static_cast<float>(balance.gain)),
        mean_share(static_cast<float>(1 - balance.gain)),
        shift(static_cast<float>(balance.shift + (balance.gain + 1) * 0x1p-11)),
        margin(0x1p-11F * (static_cast<float>(balance.gain) + 1)) {}
};

// Bounds of results, truncated but not yet limited to grays. Moved values and means lie between -128 and 383, and so
// with a gain up to 16 results fit in 16 bits.
struct Bounds {
  int16_t* least;
  int16_t* most;
};

QUO_MULTIVERSION void bound_results(const uint8_t* __restrict pixels, const uint32_t* __restrict sums,
                                    const float* __restrict shares, const QuickBalance& balance, const Bounds& bounds,
                                    int32_t count) {
  int16_t* const __restrict least = bounds.least;
  int16_t* const __restrict most = bounds.most;
  const float half_mean = balance.half_mean, gain = balance.gain, mean_share = balance.mean_share;
  const float shift = balance.shift, margins = 2 * balance.margin;
  for (int32_t i = 0; i < count; i++) {
    const float mean = static_cast<float>(static_cast<int32_t>(sums[i])) * shares[i];
    const float moved = static_cast<float>(pixels[i]) + (half_mean - mean * 0.5F);
    const auto whole = static_cast<int32_t>(moved);
    const int32_t step = whole - static_cast<int32_t>(moved - 2 * QuickBalance::kMovedMargin);
    const float scaled = static_cast<float>(whole) * gain + (mean * mean_share + shift);
    most[i] = static_cast<int16_t>(static_cast<int32_t>(scaled));
    // More than a step of the moved value can change, truncation included.
    least[i] = static_cast<int16_t>(static_cast<int32_t>(scaled - margins) - 2 * kLargestQuickGain * step);
  }
}

// Results where both bounds give the same. Marks the pixels where they do not, by other bytes than 0.
QUO_MULTIVERSION void settle_results(const uint8_t* __restrict pixels, const int16_t* __restrict least,
                                     const int16_t* __restrict most, int32_t count, uint8_t* __restrict results,
                                     uint8_t* __restrict unclear) {
  for (int32_t i = 0; i < count; i++) {
    const int16_t low = std::max<int16_t>(std::min<int16_t>(least[i], kBrightest), 0);
    const int16_t high = std::max<int16_t>(std::min<int16_t>(most[i], kBrightest), 0);
    const auto white = static_cast<uint8_t>(pixels[i] == kWhite ? 255 : 0);
    unclear[i] = static_cast<uint8_t>(static_cast<uint8_t>(high - low) & ~white);
    results[i] = static_cast<uint8_t>(static_cast<uint8_t>(high) | white);
  }
}

QUO_MULTIVERSION void scale(const float* __restrict values, float factor, float* __restrict scaled, int32_t count) {
  for (int32_t i = 0; i < count; i++) scaled[i] = values[i] * factor;
}

// Rows, or a part of one: pixels that follow one another.
struct Run {
  int32_t x;
  int32_t y;
  int32_t columns;
  int32_t rows;

  int32_t pixels() const { return columns * rows; }
};

bool no_mark_in_32(const uint8_t* marks) {
  return (quo::load_eight(marks) | quo::load_eight(marks + 8) | quo::load_eight(marks + 16) |
          quo::load_eight(marks + 24)) == 0;
}

template <typename ColumnSum>
class Balancer {
 public:
  // `memory` holds as many numbers as the frame has pixels.
  Balancer(const GrayFrame& frame, const Windows<ColumnSum>& windows, const quo::GlobalContrast& contrast,
           bool small_windows, float* memory)
      : frame_(frame),
        windows_(windows),
        near_(contrast, contrast.deviation, static_cast<double>(contrast.count + 1024) * 0x1p-53),
        quick_(contrast.count <= kMostQuickPixels && near_.gain <= kLargestQuickGain && small_windows),
        quick_balance_(near_),
        definition_(frame, contrast, quick_ ? near_ : Balance(contrast, quo::defined_deviation(frame, contrast), 0)),
        column_shares_(memory),
        shares_(memory + frame.width) {
    for (int32_t x = 0; x < frame.width; x++) column_shares_[x] = 1.0F / static_cast<float>(windows_.columns(x));
  }

  void balance(uint8_t* output) {
    const int32_t most_rows = std::clamp(kStrip / frame_.width, 1, std::min(kMostRows, frame_.height - 1));
    for (int32_t y = 0, rows = 0; y < frame_.height; y += rows) {
      rows = std::min(most_rows, frame_.height - y);
      if (quick_) update_shares(y, rows);
      for (int32_t x = 0, columns = 0; x < frame_.width; x += columns) {
        columns = std::min(kStrip, frame_.width - x);
        balance_run({x, y, columns, rows}, output);
      }
    }
  }

 private:
  static constexpr int32_t kMostRows = 16;

  // Most rows have windows as high as those of the rows before.
  void update_shares(int32_t y, int32_t rows) {
    for (int32_t i = 0; i < rows; i++) {
      const ptrdiff_t height = windows_.rows(y + i);
      if (height == heights_[i]) continue;
      scale(column_shares_, 1.0F / static_cast<float>(height), shares_ + ptrdiff_t{i} * frame_.width, frame_.width);
      heights_[i] = height;
    }
  }

  void balance_run(const Run& run, uint8_t* output) {
    const uint8_t* const pixels = frame_.row(run.y) + run.x;
    uint8_t* const results = output + (pixels - frame_.row(0));
    uint32_t sums[kStrip];
    uint8_t marks[kStrip];
    for (int32_t i = 0; i < run.rows; i++) {
      if (run.x == 0) windows_.move_down(run.y + i);
      windows_.find_sums(run.x, run.columns, sums + i * run.columns);
    }
    if (quick_) {
      int16_t least[kStrip], most[kStrip];
      bound_results(pixels, sums, shares_ + run.x, quick_balance_, {least, most}, run.pixels());
      settle_results(pixels, least, most, run.pixels(), results, marks);
    } else {
      for (int32_t i = 0; i < run.pixels(); i++) results[i] = kWhite;
      for (int32_t i = 0; i < run.pixels(); i++) marks[i] = pixels[i] != kWhite ? 1 : 0;
    }
    balance_by_definition(run, sums, marks, pixels, results);
  }

  // The marked pixels.
  void balance_by_definition(const Run& run, const uint32_t* sums, const uint8_t* marks, const uint8_t* pixels,
                             uint8_t* results) {
    const int32_t count = run.pixels();
    for (int32_t i = 0; i < count; i++) {
      while (count - i >= 32 && no_mark_in_32(marks + i)) i += 32;
      while (count - i >= 8 && quo::load_eight(marks + i) == 0) i += 8;
      if (i == count) return;
      if (marks[i] == 0) continue;
      const ptrdiff_t columns = windows_.columns(run.x + i % run.columns),
                      rows = windows_.rows(run.y + i / run.columns);
      results[i] = definition_.balanced(pixels[i], sums[i] / static_cast<double>(columns * rows));
    }
  }

  const GrayFrame& frame_;
  Windows<ColumnSum> windows_;
  Balance near_;
  bool quick_;
  QuickBalance quick_balance_;
  Definition definition_;
  float* column_shares_;               // of a column in the mean of a window's row
  float* shares_;                      // of a pixel in the mean of its window, in the rows of a run
  ptrdiff_t heights_[kMostRows] = {};  // of the windows that the shares are for
};

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
  // Two rows of sums and some of shares are all that is used; memory for a summed-area table and for row sums is
  // reserved because a call without it must fail.
  quo::Scratch<uint32_t> sums;
  quo::Scratch<float> shares;
  if (!sums.allocate(pixels)) return 0;
  if (width < 3 || height < 3) return 0;
  const GrayFrame frame{source, width, static_cast<int32_t>(height)};
  quo::GlobalContrast contrast;
  if (!quo::measure_contrast(frame, contrast)) return 0;
  if (!shares.allocate(pixels)) return 0;
  const auto background = static_cast<uint8_t>(contrast.mean + 0.5);
  const bool small_windows = (int64_t{2} * half_width + 1) * (int64_t{2} * half_height + 1) <= kLargestQuickWindow;
  const auto balance = [&](const auto& windows) {
    Balancer(frame, windows, contrast, small_windows, shares.get()).balance(output);
  };
  if (half_height <= kLongestShortColumn) {
    balance(Windows<uint16_t>(frame, half_width, half_height, background, sums.get()));
  } else {
    balance(Windows<uint32_t>(frame, half_width, half_height, background, sums.get()));
  }
  return 1;
}
