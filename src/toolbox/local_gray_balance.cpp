#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

using quo::kWhite;

constexpr int32_t kBrightest = 254;
constexpr double kTargetMean = 128;
constexpr double kTargetSpread = 100;     // twice the mean absolute deviation that the balanced image shall have
constexpr int32_t kStrip = 1024;          // columns balanced at a time, for their means on the stack
constexpr double kLargestQuickGain = 16;  // beyond, single precision leaves too much unclear
constexpr int64_t kLargestQuickWindow = 8000000;  // pixels; their sum fits in 31 bits

struct Frame {
  const uint8_t* pixels;
  int32_t width;
  int32_t height;

  const uint8_t* row(int32_t y) const { return pixels + static_cast<ptrdiff_t>(y) * width; }
};

// Of the pixels below 255, the outermost rows and columns left out.
struct Global {
  double mean = 0;
  double deviation = 0;  // mean absolute deviation
};

struct Total {
  uint64_t sum = 0;
  uint64_t count = 0;
};

void add_row(const uint8_t* pixels, int32_t count, Total& total) {
  for (int32_t x = 0, chunk = 0; x < count; x += chunk) {
    chunk = std::min(count - x, int32_t{1} << 16);  // sums of so many bytes fit in 32 bits
    uint32_t sum = 0, white = 0;
    for (int32_t i = 0; i < chunk; i++) {
      const bool is_white = pixels[x + i] == kWhite;
      sum += is_white ? 0U : pixels[x + i];
      white += is_white ? 1U : 0U;
    }
    total.sum += sum;
    total.count += static_cast<uint32_t>(chunk) - white;
  }
}

bool measure(const Frame& frame, Global& global) {
  Total total;
  for (int32_t y = 1; y < frame.height - 1; y++) add_row(frame.row(y) + 1, frame.width - 2, total);
  if (total.count == 0) return false;
  const auto count = static_cast<double>(total.count);
  global.mean = static_cast<double>(total.sum) / count;  // sums of bytes are exact in double as in any integer
  double distance[256];
  for (int32_t v = 0; v < kWhite; v++) distance[v] = std::fabs(v - global.mean);
  distance[kWhite] = 0;
  // Rounded one by one, in the order of rows.
  double distances = 0;
  for (int32_t y = 1; y < frame.height - 1; y++) {
    const uint8_t* const row = frame.row(y);
    for (int32_t x = 1; x < frame.width - 1; x++) distances += distance[row[x]];
  }
  global.deviation = distances / count;
  return 2 * global.deviation != 0;
}

// Entry (x, y) is the sum over columns 1 to x and rows 1 to y, background counting as `background`; row and column 0
// are zero. The last row and column are not needed. Sums are modulo 2^32.
void integrate(const Frame& frame, uint32_t background, uint32_t* integral) {
  const ptrdiff_t width = frame.width;
  for (ptrdiff_t x = 0; x < width; x++) integral[x] = 0;
  for (int32_t y = 1; y < frame.height - 1; y++) {
    const uint8_t* const pixels = frame.row(y);
    uint32_t* const sums = integral + y * width;
    uint32_t run = 0;
    sums[0] = 0;
    for (ptrdiff_t x = 1; x < width - 1; x++) {
      run += pixels[x] != kWhite ? pixels[x] : background;
      sums[x] = run + sums[x - width];
    }
  }
}

// The columns or rows of a window, from after the first number to the second.
struct Extent {
  ptrdiff_t before;
  ptrdiff_t last;

  ptrdiff_t size() const { return last - before; }
};

struct Windows {
  const uint32_t* integral;
  int32_t width;
  int32_t height;
  int32_t half_width;
  int32_t half_height;

  Extent columns(int32_t x) const { return extent(x, half_width, width); }
  Extent rows(int32_t y) const { return extent(y, half_height, height); }

  uint32_t sum(const Extent& rows, const Extent& columns) const {
    const uint32_t* const upper = integral + rows.before * width;
    const uint32_t* const lower = integral + rows.last * width;
    return lower[columns.last] - lower[columns.before] - upper[columns.last] + upper[columns.before];
  }

 private:
  static Extent extent(int32_t position, int32_t half, int32_t length) {
    const int64_t last = std::min(int64_t{position} + half, int64_t{length} - 2);
    return {std::max(position - half, 1) - 1, static_cast<ptrdiff_t>(last)};
  }
};

struct Balance {
  double mean;
  double gain;
  double shift;
};

// A value truncated to 32 bits, limited to their range, and of these the lower 16.
int16_t truncate(double value) {
  if (value >= INT32_MAX) return static_cast<int16_t>(INT32_MAX);
  if (value <= INT32_MIN) return static_cast<int16_t>(INT32_MIN);
  return static_cast<int16_t>(static_cast<int32_t>(value));
}

// The steps that define a result.
uint8_t balanced(uint8_t pixel, double local, const Balance& balance) {
  const int16_t moved = truncate(std::fma(balance.mean - local, 0.5, pixel));
  const double scaled = std::fma(moved - local, balance.gain, local);
  return static_cast<uint8_t>(std::clamp<int32_t>(truncate(scaled + balance.shift), 0, kBrightest));
}

// The means of the windows of a row's columns from `first` on, in single precision.
void find_means(const Windows& windows, const Extent& rows, int32_t first, int32_t count, float* __restrict means) {
  const auto mean_at = [&](int32_t x) {
    const Extent columns = windows.columns(x);
    return static_cast<float>(windows.sum(rows, columns)) * (1.0F / static_cast<float>(rows.size() * columns.size()));
  };
  const int32_t whole = std::clamp(windows.half_width + 1 - first, 0, count);  // windows left of it are cut at the edge
  const int32_t whole_end = std::clamp(windows.width - 1 - windows.half_width - first, whole, count);
  for (int32_t i = 0; i < whole; i++) means[i] = mean_at(first + i);
  if (whole < whole_end) {
    const Extent columns = windows.columns(first + whole);
    const float reciprocal = 1.0F / static_cast<float>(rows.size() * columns.size());
    const uint32_t* const upper = windows.integral + rows.before * windows.width + columns.before;
    const uint32_t* const lower = windows.integral + rows.last * windows.width + columns.before;
    const ptrdiff_t span = columns.size();
    for (int32_t i = 0; i < whole_end - whole; i++) {
      const uint32_t sum = lower[i + span] - lower[i] - upper[i + span] + upper[i];
      means[whole + i] = static_cast<float>(static_cast<int32_t>(sum)) * reciprocal;
    }
  }
  for (int32_t i = whole_end; i < count; i++) means[i] = mean_at(first + i);
}

// 1 where a value lies so close to an integer, by `margin` or less, that its whole part is in doubt, else 0.
int32_t is_close_to_integer(float value, int32_t whole, float margin) {
  return static_cast<int32_t>(std::fabs(std::fabs(value - static_cast<float>(whole)) - 0.5F) >= 0.5F - margin);
}

// Results in single precision; 255, which no result is, for background and where a rounding could decide.
//
// With a unit roundoff of u = 2^-24, a mean is off by 3 u and so by less than 2^-14. The moved value adds half of that
// and three roundings of values below 512: less than 2^-13. Its distance from the mean, below 640, is off by less than
// 2^-13, the product by 2^-12 of the gain, and the two sums add roundings of 2 u (640 gain + 511) and less than 2^-13 for
// mean and shift: together less than 2^-11 (gain + 1). The defining steps in double precision are off by far less. With
// gains up to 16 no value leaves 16 bits.
void balance_quickly(const uint8_t* __restrict pixels, const float* __restrict means, int32_t count,
                     const Balance& balance, uint8_t* __restrict output) {
  constexpr float kMovedMargin = 0x1p-12F;
  const auto gain = static_cast<float>(balance.gain), shift = static_cast<float>(balance.shift);
  const auto global_mean = static_cast<float>(balance.mean);
  const float margin = 0x1p-11F * (gain + 1);
  for (int32_t i = 0; i < count; i++) {
    const float moved = static_cast<float>(pixels[i]) + (global_mean - means[i]) * 0.5F;
    const auto whole_moved = static_cast<int32_t>(moved);
    const float scaled = (static_cast<float>(whole_moved) - means[i]) * gain + means[i] + shift;
    const auto whole = static_cast<int32_t>(scaled);
    const int32_t unclear = is_close_to_integer(moved, whole_moved, kMovedMargin) |
                            is_close_to_integer(scaled, whole, margin) | static_cast<int32_t>(pixels[i] == kWhite);
    output[i] = static_cast<uint8_t>(unclear != 0 ? kWhite : std::clamp(whole, 0, kBrightest));
  }
}

void balance_image(const Frame& frame, const Windows& windows, const Balance& balance, uint8_t* output) {
  const int64_t largest_window = (int64_t{2} * windows.half_width + 1) * (int64_t{2} * windows.half_height + 1);
  const bool quick = balance.gain <= kLargestQuickGain && largest_window <= kLargestQuickWindow;
  for (int32_t y = 0; y < frame.height; y++) {
    const Extent rows = windows.rows(y);
    const uint8_t* const pixels = frame.row(y);
    uint8_t* const results = output + static_cast<ptrdiff_t>(y) * frame.width;
    for (int32_t x = 0, count = 0; x < frame.width; x += count) {
      float means[kStrip];
      count = std::min(kStrip, frame.width - x);
      if (quick) {
        find_means(windows, rows, x, count, means);
        balance_quickly(pixels + x, means, count, balance, results + x);
      }
      for (int32_t i = x; i < x + count; i++) {
        if (pixels[i] == kWhite)
          results[i] = kWhite;
        else if (!quick || results[i] == kWhite) {
          const Extent columns = windows.columns(i);
          const double local = windows.sum(rows, columns) / static_cast<double>(rows.size() * columns.size());
          results[i] = balanced(pixels[i], local, balance);
        }
      }
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
  quo::Scratch<uint32_t> integral, row_sums;
  if (!integral.allocate(pixels)) return 0;
  if (width < 3 || height < 3) return 0;
  const Frame frame{source, width, static_cast<int32_t>(height)};
  Global global;
  if (!measure(frame, global)) return 0;
  // Row sums never leave the registers; memory for them is reserved because a call without it must fail.
  if (!row_sums.allocate(pixels)) return 0;
  integrate(frame, static_cast<uint32_t>(global.mean + 0.5), integral.get());
  row_sums.reset();
  const Windows windows{integral.get(), frame.width, frame.height, half_width, half_height};
  const Balance balance{global.mean, kTargetSpread / (2 * global.deviation), kTargetMean - global.mean};
  balance_image(frame, windows, balance, output);
  return 1;
}
