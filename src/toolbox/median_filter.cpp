#include <algorithm>
#include <cstddef>

#include "frame/multiversion.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

constexpr int32_t kStrip = 1024;  // pixels filtered at a time, so that their sorted columns fit on the stack

uint8_t min3(uint8_t a, uint8_t b, uint8_t c) { return std::min(std::min(a, b), c); }
uint8_t max3(uint8_t a, uint8_t b, uint8_t c) { return std::max(std::max(a, b), c); }
uint8_t median3(uint8_t a, uint8_t b, uint8_t c) { return std::max(std::min(a, b), std::min(std::max(a, b), c)); }

// Does for every position what `at` does, in whole blocks; positions left after them in a block that overlaps the last
// one. No kernel reads what it writes, so doing it twice changes nothing.
template <typename Kernel>
[[gnu::always_inline]] inline void in_blocks(int32_t count, const Kernel& at) {
  constexpr int32_t kBlock = 32;
  if (count < kBlock) {
    for (int32_t i = 0; i < count; i++) at(i);
    return;
  }
  const int32_t left = count % kBlock;
  for (int32_t i = 0; i < count - left; i++) at(i);
  if (left == 0) return;
  for (int32_t i = count - kBlock; i < count; i++) at(i);
}

// Columns of two or three pixels, each sorted. Neighbouring pixels share them.
struct Columns {
  uint8_t low[kStrip + 2];
  uint8_t middle[kStrip + 2];  // of three
  uint8_t high[kStrip + 2];
};

[[gnu::always_inline]] inline void sort_threes(const uint8_t* __restrict a, const uint8_t* __restrict b,
                                               const uint8_t* __restrict c, Columns& __restrict columns,
                                               int32_t count) {
  in_blocks(count, [&](int32_t i) {
    columns.low[i] = min3(a[i], b[i], c[i]);
    columns.middle[i] = median3(a[i], b[i], c[i]);
    columns.high[i] = max3(a[i], b[i], c[i]);
  });
}

void sort_pairs(const uint8_t* __restrict a, const uint8_t* __restrict b, Columns& __restrict columns, int32_t count) {
  in_blocks(count, [&](int32_t i) {
    columns.low[i] = std::min(a[i], b[i]);
    columns.high[i] = std::max(a[i], b[i]);
  });
}

// The fifth smallest of nine is the median of the largest low, the median middle and the smallest high value. Minima
// and maxima do the same to all values as to zeros and ones: of those, two of the three are 1 just when five of the
// nine are.
[[gnu::always_inline]] inline void fifth_of_nine(const Columns& __restrict columns, uint8_t* __restrict output,
                                                 int32_t count) {
  const uint8_t* const low = columns.low;
  const uint8_t* const middle = columns.middle;
  const uint8_t* const high = columns.high;
  in_blocks(count, [&](int32_t i) {
    output[i] = median3(max3(low[i], low[i + 1], low[i + 2]), median3(middle[i], middle[i + 1], middle[i + 2]),
                        min3(high[i], high[i + 1], high[i + 2]));
  });
}

// The third smallest of six, sorted as pairs. The three lowest are the low ones, or two of these and the high one of
// one of them: the third is the lesser of the maxima of such threes.
void third_of_six(const Columns& __restrict columns, uint8_t* __restrict output, int32_t count) {
  const uint8_t* const low = columns.low;
  const uint8_t* const high = columns.high;
  in_blocks(count, [&](int32_t i) {
    output[i] = std::min(max3(low[i], low[i + 1], low[i + 2]),
                         std::max(median3(low[i], low[i + 1], low[i + 2]), min3(high[i], high[i + 1], high[i + 2])));
  });
}

// The third smallest of two columns of three: the lowest three are n of one and 3 - n of the other.
void third_of_two_columns(const Columns& __restrict columns, uint8_t* __restrict output, int32_t count) {
  const uint8_t* const low = columns.low;
  const uint8_t* const middle = columns.middle;
  const uint8_t* const high = columns.high;
  in_blocks(count, [&](int32_t i) {
    output[i] = min3(std::min(high[i], high[i + 1]), std::max(low[i], middle[i + 1]), std::max(middle[i], low[i + 1]));
  });
}

// The second smallest of 2 x 2 pixels, in the same way.
uint8_t second_of_four(const uint8_t* upper, const uint8_t* lower) {
  return std::min(std::max(std::min(upper[0], lower[0]), std::min(upper[1], lower[1])),
                  std::min(std::max(upper[0], lower[0]), std::max(upper[1], lower[1])));
}

// Filters a run of pixels that goes through rows without regard to where they begin, but for its two ends.
QUO_MULTIVERSION void filter_run(const uint8_t* middle, uint8_t* output, ptrdiff_t width, ptrdiff_t pixels) {
  Columns columns;
  for (ptrdiff_t at = 0; at + 2 < pixels; at += kStrip) {
    const auto count = static_cast<int32_t>(std::min<ptrdiff_t>(kStrip, pixels - 2 - at));
    sort_threes(middle - width + at, middle + at, middle + width + at, columns, count + 2);
    fifth_of_nine(columns, output + at + 1, count);
  }
}

// Two columns, row after row, then two others; a pair moves in one piece.
void take_pairs(const uint8_t* left, const uint8_t* right, ptrdiff_t width, uint8_t* __restrict taken, int32_t rows) {
  for (int32_t y = 0; y < rows; y++) {
    __builtin_memcpy(taken + 2 * y, left + y * width, 2);
    __builtin_memcpy(taken + 2 * (rows + y), right + y * width, 2);
  }
}

// Never inlined: a compiler that sees the three runs to be one, shifted, carries pixels from step to step and then
// finds no vectors.
[[gnu::noinline]] void sort_neighbours(const uint8_t* above, const uint8_t* middle, const uint8_t* below,
                                       Columns& columns, int32_t count) {
  sort_threes(above, middle, below, columns, count);
}

// The border columns of the inner rows, each from the two columns there, as one run that goes through both pairs: of
// its results, every second one belongs to no pixel, and so do those from one pair to the other.
void filter_border_columns(const uint8_t* left, const uint8_t* right, uint8_t* output, ptrdiff_t width,
                           int32_t height) {
  constexpr int32_t kMostRows = kStrip / 4 - 2;
  static_assert(2 * 2 * (kMostRows + 2) <= kStrip);  // two pairs of columns
  uint8_t taken[kStrip], filtered[kStrip];
  Columns columns;
  for (int32_t y = 0, rows = 0; y < height - 2; y += rows) {
    rows = std::min(kMostRows, height - 2 - y);
    const ptrdiff_t row = y * width;
    const int32_t count = 4 * rows + 4;
    take_pairs(left + row, right + row, width, taken, rows + 2);
    sort_neighbours(taken, taken + 2, taken + 4, columns, count);
    third_of_two_columns(columns, filtered, count - 1);
    for (int32_t i = 0; i < rows; i++) {
      uint8_t* const filtered_row = output + row + (i + 1) * width;
      filtered_row[0] = filtered[2 * i];
      filtered_row[width - 1] = filtered[2 * (rows + 2 + i)];
    }
  }
}

// Rows follow one another without gaps, so one run goes through all inner ones; the border columns, which it takes to
// neighbour those of the next row, are then put right.
void filter_inner_rows(const uint8_t* source, uint8_t* output, ptrdiff_t width, int32_t height) {
  filter_run(source + width, output + width, width, width * (height - 2));
  filter_border_columns(source, source + width - 2, output, width, height);
}

// The first or the last row, from the two rows there.
void filter_border_row(const uint8_t* upper, const uint8_t* lower, uint8_t* output, int32_t width) {
  output[0] = second_of_four(upper, lower);
  for (int32_t x = 0, count = 0; x < width - 2; x += count) {
    Columns columns;
    count = std::min(kStrip, width - 2 - x);
    sort_pairs(upper + x, lower + x, columns, count + 2);
    third_of_six(columns, output + x + 1, count);
  }
  output[width - 1] = second_of_four(upper + width - 2, lower + width - 2);
}

// An image of one row or one column: three neighbours at most, two at the ends.
void filter_line(const uint8_t* source, uint8_t* output, int32_t count) {
  output[0] = count > 1 ? std::min(source[0], source[1]) : source[0];
  for (int32_t i = 1; i < count - 1; i++) output[i] = median3(source[i - 1], source[i], source[i + 1]);
  if (count > 1) output[count - 1] = std::min(source[count - 2], source[count - 1]);
}

void filter(const uint8_t* source, uint8_t* output, int32_t width, int32_t height) {
  if (width == 1 || height == 1) {
    filter_line(source, output, std::max(width, height));
    return;
  }
  filter_border_row(source, source + width, output, width);
  filter_inner_rows(source, output, width, height);
  const ptrdiff_t last = static_cast<ptrdiff_t>(height - 1) * width;
  filter_border_row(source + last - width, source + last, output + last, width);
}

}  // namespace

void MedianFilter(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height) {
  const uint64_t pixels = quo::pixel_count(width, height);
  if (pixels == 0) return;
  quo::Scratch<uint8_t> copy;
  if (source == destination) {
    if (!copy.allocate(pixels)) return;
    quo_memcpy(copy.get(), source, static_cast<uint32_t>(pixels));
    source = copy.get();
  }
  filter(source, destination, width, height);
}
