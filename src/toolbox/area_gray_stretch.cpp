#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "quoFPAlg.h"
#include "toolbox/gray_stretch.h"

// A pixel is stretched when the distances of its window's pixels from it, background left out, add up to more than their
// number. Distances are added up for a group of pixels side by side, and no further than until all of them are settled:
// on ridges that takes a row or two.
namespace {

using quo::kWhite;

// Columns looked at together: those of a strip of pixels and, on either side, those that their windows reach.
constexpr int32_t kColumns = 1024;
constexpr int32_t kWidestHalf = 128;  // of a window in a strip; wider windows are read pixel by pixel
constexpr int32_t kGroup = 64;        // pixels whose distances are added up together

struct Frame {
  const uint8_t* pixels;
  int32_t width;
  int32_t height;

  const uint8_t* row(ptrdiff_t y) const { return pixels + y * width; }
};

// Columns and rows of a window on each side of its pixel.
struct Half {
  int32_t width;
  int32_t height;
};

struct Window {
  int32_t left, right, top, bottom;  // the last column and row included
};

Window window_around(const Frame& frame, const Half& half, int32_t x, int32_t y) {
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

template <int kSign>
void count_white(const uint8_t* __restrict pixels, uint16_t* __restrict counts, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; i++) {
    counts[i] = static_cast<uint16_t>(counts[i] + kSign * (pixels[i] == kWhite ? 1 : 0));
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
constexpr uint32_t kFlat = UINT32_MAX;  // never
constexpr uint32_t kTextured = 0;       // settled: they do

uint32_t unsettled(const uint32_t* __restrict totals, const uint32_t* __restrict limits, int32_t count) {
  uint32_t number = 0;
  for (int32_t i = 0; i < count; i++) number += static_cast<uint32_t>((totals[i] <= limits[i]) & (limits[i] != kFlat));
  return number;
}

// A strip of pixels, and what is known of the columns that their windows reach while these move down the image. Column 0
// is half a window left of the first pixel.
class Strip {
 public:
  Strip(const Frame& frame, const Half& half, int32_t left)
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
    for (ptrdiff_t i = 0; i < columns_; i++) white_[i] = 0;
    for (int32_t y = 0; y < std::min(half_.height, frame_.height); y++) count_row<1>(y);
    for (int32_t y = 0; y < frame_.height; y++) {
      if (y < frame_.height - half_.height) count_row<1>(y + half_.height);
      if (y > half_.height) count_row<-1>(y - half_.height - 1);
      const Extremes& windows = find_extremes(y);
      find_limits(y, windows);
      for (int32_t i = 0; i < count_; i += kGroup) settle(y, i, std::min(kGroup, count_ - i));
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
    count_white<kSign>(inside_row(y), white_ + inside_, inside_count_);
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

  // Distances of 1 at most cannot exceed their number, and pixels of 0 and 255 are never stretched.
  void find_limits(int32_t y, const Extremes& windows) {
    const uint8_t* const pixels = pixel_row(y);
    const int32_t reach = 2 * half_.width;
    uint32_t white = 0;
    for (int32_t j = 0; j < reach; j++) white += white_[j];
    for (int32_t i = 0; i < count_; i++) {
      white += white_[i + reach];
      const Window window = window_around(frame_, half_, left_ + i, y);
      const auto area = static_cast<uint32_t>((window.right - window.left + 1) * (window.bottom - window.top + 1));
      const bool flat =
          pixels[i] == 0 || pixels[i] == kWhite || (pixels[i] - windows.lo[i] <= 1 && windows.end[i] - pixels[i] <= 2);
      limits_[i] = flat ? kFlat : area - white + white * (255U - pixels[i]);
      white -= white_[i];
    }
  }

  // Adds up the distances of a group of pixels, after 1, 2, 4 ... rows seeing whether all are settled.
  void settle(int32_t y, int32_t first, int32_t count) {
    uint32_t* const limits = limits_ + first;
    uint32_t totals[kGroup] = {};
    const Window window = window_around(frame_, half_, left_ + first, y);
    const int32_t most_rows = kSafeAdditions / (2 * half_.width + 1);
    int32_t rows = 1;
    for (int32_t top = window.top; top <= window.bottom && unsettled(totals, limits, count) > 0; top += rows) {
      rows = std::min({top > window.top ? 2 * rows : 1, most_rows, window.bottom - top + 1});
      uint16_t distances[kGroup] = {};
      for (int32_t j = top; j < top + rows; j++) add_row_distances(y, j, first, count, distances);
      for (int32_t i = 0; i < count; i++) totals[i] += distances[i];
    }
    for (int32_t i = 0; i < count; i++) limits[i] = totals[i] > limits[i] ? kTextured : kFlat;
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
      if (limits_[i] == kFlat) continue;
      output[i] = static_cast<uint8_t>(quo::stretched(pixels[i], windows.lo[i], windows.end[i] - 1));
      stretched++;
    }
    return stretched;
  }

  const Frame& frame_;
  const Half& half_;
  int32_t left_;  // column of the first pixel
  int32_t count_;
  int32_t columns_;
  int32_t inside_;        // the first column in the image
  int32_t inside_count_;  // columns in the image
  uint16_t white_[kColumns];
  Extremes extremes_[2];
  uint32_t limits_[kColumns];  // of the pixels
};

uint32_t stretch_strips(const Frame& frame, const Half& half, uint8_t* output) {
  uint32_t stretched = 0;
  for (int32_t left = 0; left < frame.width;) {
    Strip strip(frame, half, left);
    stretched += strip.stretch(output);
    left += strip.count();
  }
  return stretched;
}

// A window read pixel by pixel. Returns whether the pixel is stretched.
bool stretch_pixel(const Frame& frame, const Window& window, uint8_t pixel, uint8_t& output) {
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

uint32_t stretch_pixel_by_pixel(const Frame& frame, const Half& half, uint8_t* output) {
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

void copy_but_black(const Frame& frame, uint8_t* output) {
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
  const Frame frame{source, width, height};
  const Half half{std::min(half_size(window_width), width - 1), std::min(half_size(window_height), height - 1)};
  if (half.width < 0 || half.height < 0) {
    copy_but_black(frame, output);
    return 0;
  }
  if (half.width > kWidestHalf) return stretch_pixel_by_pixel(frame, half, output);
  return stretch_strips(frame, half, output);
}
