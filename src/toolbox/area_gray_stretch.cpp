#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "frame/integral_image.h"
#include "frame/multiversion.h"
#include "quoFPAlg.h"
#include "toolbox/gray_stretch.h"

// A pixel is stretched when the distances d of the n pixels of its window from it, background left out, add up to more
// than n. Most pixels are settled by the squares of the distances, whose sum follows from sliding sums: distances are whole
// numbers, so sum(d) <= sum(d^2), and sum(d^2) <= sum(d) max(d). For the others distances are added up, for a group of
// pixels side by side, and no further than until all of them are settled.
namespace {

using quo::GrayFrame;
using quo::kWhite;

// Columns looked at together: those of a strip of pixels and, on either side, those that their windows reach.
constexpr int32_t kColumns = 416;
constexpr int32_t kWidestHalf = 128;  // of a window in a strip; wider windows are read pixel by pixel
constexpr int32_t kGroup = 64;        // pixels whose distances are added up together

// Columns and rows of a window on each side of its pixel.
struct Half {
  int32_t width;
  int32_t height;
};

struct Window {
  int32_t left, right, top, bottom;  // the last column and row included
};

Window window_around(const GrayFrame& frame, const Half& half, int32_t x, int32_t y) {
  return {std::max(x - half.width, 0), x + std::min(half.width, frame.width - 1 - x),  //
          std::max(y - half.height, 0), y + std::min(half.height, frame.height - 1 - y)};
}

// Smallest value, and largest plus one, of pixels below 255. A byte wraps at 255, so that 255 itself changes neither.
struct Extremes {
  uint8_t lo[kColumns];
  uint8_t end[kColumns];
};

void widen(const uint8_t* __restrict pixels, uint8_t* __restrict lo, uint8_t* __restrict end, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; i++) {
    lo[i] = std::min(lo[i], pixels[i]);
    end[i] = std::max(end[i], static_cast<uint8_t>(pixels[i] + 1));
  }
}

// Of each column and the one `shift` further.
void join(const Extremes& __restrict columns, ptrdiff_t shift, Extremes& __restrict joined, ptrdiff_t count) {
  const uint8_t* const lo = columns.lo + shift;
  const uint8_t* const end = columns.end + shift;
  for (ptrdiff_t i = 0; i < count; i++) {
    joined.lo[i] = std::min(columns.lo[i], lo[i]);
    joined.end[i] = std::max(columns.end[i], end[i]);
  }
}

// Sums over the columns of a strip, of the pixels below 255 and of their squares, and the number of the others.
struct ColumnSums {
  uint32_t values[kColumns + 1];
  uint32_t squares[kColumns + 1];
  uint32_t white[kColumns + 1];
};

template <int kSign>
QUO_MULTIVERSION void count_row(const uint8_t* __restrict pixels, uint32_t* __restrict values,
                                uint32_t* __restrict squares, uint32_t* __restrict white, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    const int32_t is_white = pixels[i] == kWhite ? 1 : 0;
    const auto value = static_cast<int16_t>(pixels[i] & (is_white - 1));
    values[i] += static_cast<uint32_t>(kSign * value);
    squares[i] += static_cast<uint32_t>(kSign * value * value);
    white[i] += static_cast<uint32_t>(kSign * is_white);
  }
}

// Windows of at most so many pixels have sums of squares that fit in 31 bits.
constexpr int64_t kMostPixels = INT32_MAX / (254 * 254);

// What the squares say of a pixel.
enum Settled : uint8_t { kOpen, kFlat, kTextured };

// Sums over windows, as the differences of running sums `reach` columns apart.
struct WindowSums {
  const uint32_t* values;
  const uint32_t* squares;
  const uint32_t* white;
  ptrdiff_t reach;
};

// In single precision, where the sum of squares is off by less than n / 32: by five roundings of 2^-24 of at most
// 254^2 n. Pixels of 0 and 255 are never stretched.
QUO_MULTIVERSION void settle_by_squares(const uint8_t* __restrict pixels, const uint8_t* __restrict lo,
                                        const uint8_t* __restrict end, const float* __restrict areas,
                                        const WindowSums& sums, uint8_t* __restrict settled, int32_t count) {
  const uint32_t* const values = sums.values;
  const uint32_t* const squares = sums.squares;
  const uint32_t* const white = sums.white;
  for (int32_t i = 0; i < count; i++) {
    const auto pixel = static_cast<float>(pixels[i]);
    const float n = areas[i] - static_cast<float>(static_cast<int32_t>(white[i + sums.reach] - white[i]));
    const auto value = static_cast<float>(static_cast<int32_t>(values[i + sums.reach] - values[i]));
    const auto square = static_cast<float>(static_cast<int32_t>(squares[i + sums.reach] - squares[i]));
    const float distances = (square - pixel * value) + pixel * (n * pixel - value);
    const int32_t furthest = std::max(pixels[i] - lo[i], end[i] - 1 - pixels[i]);
    const float margin = n * (1.0F / 32);
    const int32_t flat = static_cast<int32_t>(distances < n - margin) | static_cast<int32_t>(furthest <= 1) |
                         static_cast<int32_t>(pixels[i] == 0) | static_cast<int32_t>(pixels[i] == kWhite);
    const int32_t textured = static_cast<int32_t>(distances > n * static_cast<float>(furthest) + margin);
    settled[i] = static_cast<uint8_t>(flat * kFlat + (textured & (1 - flat)) * kTextured);
  }
}

constexpr int32_t kSafeAdditions = 257;  // of distances in 16 bits
static_assert(kSafeAdditions * 255 <= UINT16_MAX && 2 * kWidestHalf + 1 <= kSafeAdditions);

// A distance as max - a + max - b stays in bytes; GCC 12 takes max - min apart into selections between 16-bit sums.
void add_distances(const uint8_t* __restrict neighbours, const uint8_t* __restrict pixels,
                   uint16_t* __restrict distances, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; i++) {
    const uint8_t higher = std::max(neighbours[i], pixels[i]);
    const auto distance = static_cast<uint8_t>((higher - neighbours[i]) + (higher - pixels[i]));
    distances[i] = static_cast<uint16_t>(distances[i] + distance);
  }
}

// What the distances of a window's pixels must exceed for its pixel to be stretched. They include those of background,
// 255 less the pixel each, so the limit does too: 2^32 is out of reach for windows of 257 columns and 2^16 rows.
constexpr uint32_t kNoLimit = UINT32_MAX;  // of pixels that are settled

uint32_t count_open(const uint32_t* __restrict totals, const uint32_t* __restrict limits, int32_t count) {
  uint32_t number = 0;
  for (int32_t i = 0; i < count; i++) {
    number += static_cast<uint32_t>((totals[i] <= limits[i]) & (limits[i] != kNoLimit));
  }
  return number;
}

// A strip of pixels, and what is known of the columns that their windows reach while these move down the image. Column 0
// is half a window left of the first pixel.
class Strip {
 public:
  Strip(const GrayFrame& frame, const Half& half, int32_t left)
      : frame_(frame),
        half_(half),
        left_(left),
        count_(std::min(kColumns - 2 * half.width, frame.width - left)),
        columns_(count_ + 2 * half.width),
        inside_(std::max(half.width - left, 0)),
        inside_count_(at_most(columns_, int64_t{frame.width} - left + half.width) - inside_) {}

  int32_t count() const { return count_; }

  // Returns the number of pixels stretched.
  uint32_t stretch(uint8_t* output) {
    uint32_t stretched = 0;
    for (ptrdiff_t i = 0; i <= columns_; i++) sums_.values[i] = sums_.squares[i] = sums_.white[i] = 0;
    for (int32_t y = 0; y < std::min(half_.height, frame_.height); y++) count_row<1>(y);
    for (int32_t y = 0; y < frame_.height; y++) {
      if (y < frame_.height - half_.height) count_row<1>(y + half_.height);
      if (y > half_.height) count_row<-1>(y - half_.height - 1);
      const Extremes& windows = find_extremes(y);
      settle(y, windows);
      stretched += stretch_row(y, windows, output + static_cast<ptrdiff_t>(y) * frame_.width + left_);
    }
    return stretched;
  }

 private:
  // Columns right of an image may be beyond what 32 bits count.
  static int32_t at_most(int32_t limit, int64_t value) { return value < limit ? static_cast<int32_t>(value) : limit; }

  const uint8_t* inside_row(int32_t y) const { return frame_.row(y) + (left_ - half_.width + inside_); }
  const uint8_t* pixel_row(int32_t y) const { return frame_.row(y) + left_; }

  template <int kSign>
  void count_row(int32_t y) {
    ::count_row<kSign>(inside_row(y), sums_.values + inside_, sums_.squares + inside_, sums_.white + inside_,
                       inside_count_);
  }

  // Of the windows around a row's pixels: of each column first, then of 2, 4, 8 ... columns side by side.
  const Extremes& find_extremes(int32_t y) {
    Extremes* found = &extremes_[0];
    Extremes* joined = &extremes_[1];
    for (ptrdiff_t i = 0; i < columns_; i++) {
      found->lo[i] = 255;
      found->end[i] = 0;
    }
    const Window window = window_around(frame_, half_, left_, y);
    for (int32_t j = window.top; j <= window.bottom; j++) {
      widen(inside_row(j), found->lo + inside_, found->end + inside_, inside_count_);
    }
    const int32_t width = 2 * half_.width + 1;
    for (int32_t reach = 1, step; reach < width; reach += step) {
      step = std::min(reach, width - reach);
      join(*found, step, *joined, columns_ - reach - step + 1);
      std::swap(found, joined);
    }
    return *found;
  }

  void settle(int32_t y, const Extremes& windows) {
    const Window window = window_around(frame_, half_, left_, y);
    const int32_t rows = window.bottom - window.top + 1;
    const auto reach = static_cast<ptrdiff_t>(2 * half_.width + 1);
    add_up_columns();
    if (int64_t{rows} * reach > kMostPixels) {
      for (int32_t i = 0; i < count_; i++) settled_[i] = kOpen;
    } else {
      float areas[kColumns];
      for (int32_t i = 0; i < count_; i++) areas[i] = static_cast<float>(rows * columns_of(i));
      settle_by_squares(pixel_row(y), windows.lo, windows.end, areas,
                        {running_.values, running_.squares, running_.white, reach}, settled_, count_);
    }
    for (int32_t i = 0; i < count_; i += kGroup) settle_group(y, i, std::min(kGroup, count_ - i), rows);
  }

  void add_up_columns() {
    running_.values[0] = running_.squares[0] = running_.white[0] = 0;
    quo::add_up(sums_.values, running_.values + 1, columns_);
    quo::add_up(sums_.squares, running_.squares + 1, columns_);
    quo::add_up(sums_.white, running_.white + 1, columns_);
  }

  // Columns of the image in the window of pixel i.
  int32_t columns_of(int32_t i) const {
    return std::min(i + 2 * half_.width + 1, inside_ + inside_count_) - std::max(i, inside_);
  }

  uint32_t limit_of(int32_t i, uint8_t pixel, int32_t rows) const {
    if (settled_[i] != kOpen || pixel == 0 || pixel == kWhite) return kNoLimit;
    const uint32_t white = running_.white[i + 2 * half_.width + 1] - running_.white[i];
    return static_cast<uint32_t>(rows * columns_of(i)) - white + white * (255U - pixel);
  }

  // Adds up the distances of a group of pixels, after 1, 2, 4 ... rows seeing whether all are settled.
  void settle_group(int32_t y, int32_t first, int32_t count, int32_t window_rows) {
    uint32_t limits[kGroup], totals[kGroup];
    for (int32_t i = 0; i < count; i++) {
      limits[i] = limit_of(first + i, pixel_row(y)[first + i], window_rows);
      totals[i] = 0;
    }
    const Window window = window_around(frame_, half_, left_ + first, y);
    const int32_t most_rows = kSafeAdditions / (2 * half_.width + 1);
    int32_t rows = 1;
    for (int32_t top = window.top; top <= window.bottom && count_open(totals, limits, count) > 0; top += rows) {
      rows = std::min({top > window.top ? 2 * rows : 1, most_rows, window.bottom - top + 1});
      uint16_t distances[kGroup];
      for (int32_t i = 0; i < count; i++) distances[i] = 0;
      for (int32_t j = top; j < top + rows; j++) add_row_distances(y, j, first, count, distances);
      for (int32_t i = 0; i < count; i++) totals[i] += distances[i];
    }
    for (int32_t i = 0; i < count; i++) {
      if (limits[i] != kNoLimit) settled_[first + i] = totals[i] > limits[i] ? kTextured : kFlat;
    }
  }

  // Of a group's pixels from those of row j in their windows.
  void add_row_distances(int32_t y, int32_t j, int32_t first, int32_t count, uint16_t* distances) const {
    const uint8_t* const pixels = pixel_row(y) + first;
    for (int32_t shift = -half_.width; shift <= half_.width; shift++) {
      const int64_t x = int64_t{left_} + first + shift;  // of the first pixel's neighbour
      const int32_t begin = x < 0 ? static_cast<int32_t>(-x) : 0, end = at_most(count, frame_.width - x);
      if (begin >= end) continue;
      add_distances(frame_.row(j) + static_cast<ptrdiff_t>(x + begin), pixels + begin, distances + begin, end - begin);
    }
  }

  uint32_t stretch_row(int32_t y, const Extremes& windows, uint8_t* output) const {
    const uint8_t* const pixels = pixel_row(y);
    uint32_t stretched = 0;
    for (int32_t i = 0; i < count_; i++) {
      if (pixels[i] > 0) output[i] = pixels[i];
      if (settled_[i] != kTextured) continue;
      output[i] = static_cast<uint8_t>(quo::stretched(pixels[i], windows.lo[i], windows.end[i] - 1));
      stretched++;
    }
    return stretched;
  }

  const GrayFrame& frame_;
  const Half& half_;
  int32_t left_;  // column of the first pixel
  int32_t count_;
  int32_t columns_;
  int32_t inside_;        // the first column in the image
  int32_t inside_count_;  // columns in the image
  ColumnSums sums_;       // over the rows of the windows
  ColumnSums running_;    // entry i over the columns before i
  Extremes extremes_[2];
  uint8_t settled_[kColumns];
};

uint32_t stretch_strips(const GrayFrame& frame, const Half& half, uint8_t* output) {
  uint32_t stretched = 0;
  for (int32_t left = 0; left < frame.width;) {
    Strip strip(frame, half, left);
    stretched += strip.stretch(output);
    left += strip.count();
  }
  return stretched;
}

// A window read pixel by pixel. Returns whether the pixel is stretched.
bool stretch_pixel(const GrayFrame& frame, const Window& window, uint8_t pixel, uint8_t& output) {
  uint8_t lo = 255, end = 0;
  uint64_t number = 0, distances = 0;
  for (int32_t y = window.top; y <= window.bottom; y++) {
    const uint8_t* const row = frame.row(y);
    for (int32_t x = window.left; x <= window.right; x++) {
      if (row[x] == kWhite) continue;
      lo = std::min(lo, row[x]);
      end = std::max(end, static_cast<uint8_t>(row[x] + 1));
      distances += quo::abs_diff(row[x], pixel);
      number++;
    }
  }
  if (distances <= number) return false;
  output = static_cast<uint8_t>(quo::stretched(pixel, lo, end - 1));
  return true;
}

uint32_t stretch_pixel_by_pixel(const GrayFrame& frame, const Half& half, uint8_t* output) {
  uint32_t stretched = 0;
  for (int32_t y = 0; y < frame.height; y++) {
    for (int32_t x = 0; x < frame.width; x++) {
      const uint8_t pixel = frame.row(y)[x];
      uint8_t& result = output[static_cast<ptrdiff_t>(y) * frame.width + x];
      if (pixel > 0) result = pixel;
      if (pixel == 0 || pixel == kWhite) continue;
      if (stretch_pixel(frame, window_around(frame, half, x, y), pixel, result)) stretched++;
    }
  }
  return stretched;
}

void copy_but_black(const GrayFrame& frame, uint8_t* output) {
  for (ptrdiff_t i = 0; i < static_cast<ptrdiff_t>(frame.height) * frame.width; i++) {
    if (frame.pixels[i] > 0) output[i] = frame.pixels[i];
  }
}

// Half a window size as a 16-bit value; negative, and the window without pixels, for sizes beyond 65536.
int32_t half_size(int32_t window_size) { return static_cast<int16_t>((std::max(window_size, 1) - 1) / 2); }

}  // namespace

uint32_t AreaGrayStretch(const uint8_t* source, uint8_t* output, int32_t width, int32_t height, int32_t window_width,
                         int32_t window_height) {
  if (width < 1 || height < 1) return 0;
  const GrayFrame frame{source, width, height};
  const Half half{std::min(half_size(window_width), width - 1), std::min(half_size(window_height), height - 1)};
  if (half.width < 0 || half.height < 0) {
    copy_but_black(frame, output);
    return 0;
  }
  if (half.width > kWidestHalf) return stretch_pixel_by_pixel(frame, half, output);
  return stretch_strips(frame, half, output);
}
