#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

constexpr int32_t kBrightest = 254;
constexpr double kTargetMean = 128;
constexpr double kTargetSpread = 100;  // twice the mean absolute deviation that the balanced image shall have

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

// Sums of bytes are exact in double as in any integer; the deviations are rounded one by one, in the order of rows.
bool measure(const Frame& frame, Global& global) {
  uint64_t sum = 0, count = 0;
  for (int32_t y = 1; y < frame.height - 1; y++) {
    for (int32_t x = 1; x < frame.width - 1; x++) {
      const uint8_t pixel = frame.row(y)[x];
      sum += pixel != quo::kWhite ? pixel : 0;
      count += pixel != quo::kWhite ? 1 : 0;
    }
  }
  if (count == 0) return false;
  global.mean = static_cast<double>(sum) / static_cast<double>(count);
  double deviations = 0;
  for (int32_t y = 1; y < frame.height - 1; y++) {
    for (int32_t x = 1; x < frame.width - 1; x++) {
      const uint8_t pixel = frame.row(y)[x];
      if (pixel != quo::kWhite) deviations += std::fabs(pixel - global.mean);
    }
  }
  global.deviation = deviations / static_cast<double>(count);
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
      run += pixels[x] != quo::kWhite ? pixels[x] : background;
      sums[x] = run + sums[x - width];
    }
  }
}

// The window's columns (or rows) around one: its extent between the outermost ones.
struct Extent {
  ptrdiff_t before;  // the last one before the window
  ptrdiff_t last;    // the last one of it

  ptrdiff_t size() const { return last - before; }
};

Extent extent_around(int32_t position, int32_t half, int32_t length) {
  return {std::max(position - half, 1) - 1,
          static_cast<ptrdiff_t>(std::min(int64_t{position} + half, int64_t{length} - 2))};
}

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

uint8_t balanced(uint8_t pixel, uint32_t sum, double window_pixels, const Balance& balance) {
  const double local = sum / window_pixels;
  const int16_t moved = truncate(std::fma(balance.mean - local, 0.5, pixel));
  const double scaled = std::fma(moved - local, balance.gain, local);
  return static_cast<uint8_t>(std::clamp<int32_t>(truncate(scaled + balance.shift), 0, kBrightest));
}

void balance_image(const Frame& frame, const uint32_t* integral, int32_t half_width, int32_t half_height,
                   const Balance& balance, uint8_t* output) {
  for (int32_t y = 0; y < frame.height; y++) {
    const Extent rows = extent_around(y, half_height, frame.height);
    const uint32_t* const upper = integral + rows.before * frame.width;
    const uint32_t* const lower = integral + rows.last * frame.width;
    for (int32_t x = 0; x < frame.width; x++) {
      const Extent columns = extent_around(x, half_width, frame.width);
      const uint8_t pixel = frame.row(y)[x];
      const uint32_t sum = lower[columns.last] - lower[columns.before] - upper[columns.last] + upper[columns.before];
      const auto window_pixels = static_cast<double>(rows.size() * columns.size());
      uint8_t& result = output[static_cast<ptrdiff_t>(y) * frame.width + x];
      result = pixel == quo::kWhite ? pixel : balanced(pixel, sum, window_pixels, balance);
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
  const Balance balance{global.mean, kTargetSpread / (2 * global.deviation), kTargetMean - global.mean};
  balance_image(frame, integral.get(), half_width, half_height, balance, output);
  return 1;
}
