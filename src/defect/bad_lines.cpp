#include "defect/bad_lines.h"

#include <algorithm>
#include <cstddef>

#include "frame/block_marks.h"
#include "frame/gray.h"
#include "frame/multiversion.h"

using quo::BadLines;
using quo::Scratch;

namespace {

constexpr uint8_t kEntryReference = 220;  // gray level of a sound, uncovered sensor
constexpr uint8_t kMaxReference = 230;    // gray level
constexpr double kDarkShare = 0.9;        // of the reference: a line whose mean is below is dark
constexpr uint32_t kJump = 50;            // gray levels between the means of a line and the one before

// The dark span begins and ends at least this many lines from the first and the last line.
constexpr int32_t kFirstMargin = 2;
constexpr int32_t kLastMargin = 3;

// A line's sum is exact for 16,843,009 pixels; beyond, sums wrap.
static_assert(UINT32_MAX / 255 == 16843009);

constexpr ptrdiff_t kRowGroup = 4;    // rows added to the sums at once
constexpr ptrdiff_t kTile = 256;      // pixels of a row summed in 16 bits
constexpr ptrdiff_t kBand = 256;      // rows whose columns are summed in 16 bits
constexpr ptrdiff_t kStrip = 2048;    // columns whose 16-bit sums lie on the stack
constexpr ptrdiff_t kNarrowest = 32;  // width that has a whole block of every kind
static_assert(kTile * 255 <= UINT16_MAX && kBand * 255 <= UINT16_MAX);
static_assert(kTile % kNarrowest == 0 && kStrip % kTile == 0);

// Vectors of pairs of neighbouring pixels, each pair one number: left pixels in the low bytes, right ones in the high
// bytes. They are parted by a mask and a shift, which takes less than widening the pixels in their order.
using EightPairs = uint16_t __attribute__((vector_size(16)));
using SixteenPairs = uint16_t __attribute__((vector_size(32)));
using FourSums = uint32_t __attribute__((vector_size(16)));

// A row has less than 2^16 in all.
template <typename Pairs>
[[gnu::always_inline]] inline EightPairs eight(const Pairs& numbers) {
  if constexpr (sizeof numbers == sizeof(EightPairs)) {
    return numbers;
  } else {
    return __builtin_shufflevector(numbers, numbers, 0, 1, 2, 3, 4, 5, 6, 7) +
           __builtin_shufflevector(numbers, numbers, 8, 9, 10, 11, 12, 13, 14, 15);
  }
}

[[gnu::always_inline]] inline FourSums four(const EightPairs& numbers) {
  const auto pairs = reinterpret_cast<FourSums>(numbers);
  return (pairs & UINT16_MAX) + (pairs >> 16);
}

// The sum of the numbers of each of four rows.
template <typename Pairs>
[[gnu::always_inline]] inline FourSums totals(const Pairs (&rows)[kRowGroup]) {
  const FourSums a = four(eight(rows[0])), b = four(eight(rows[1])), c = four(eight(rows[2])), d = four(eight(rows[3]));
  const FourSums ab = __builtin_shufflevector(a, b, 0, 4, 1, 5) + __builtin_shufflevector(a, b, 2, 6, 3, 7);
  const FourSums cd = __builtin_shufflevector(c, d, 0, 4, 1, 5) + __builtin_shufflevector(c, d, 2, 6, 3, 7);
  return __builtin_shufflevector(ab, cd, 0, 1, 4, 5) + __builtin_shufflevector(ab, cd, 2, 3, 6, 7);
}

template <size_t kRows>
[[gnu::always_inline]] inline void add(FourSums sums, uint32_t* row_sums) {
  FourSums before{};
  __builtin_memcpy(&before, row_sums, kRows * sizeof *row_sums);
  sums += before;
  __builtin_memcpy(row_sums, &sums, kRows * sizeof *row_sums);
}

/** Rows of a band in a strip of columns, of a frame at least a block of pixels wide. */
template <typename Pairs>
struct Band {
  const uint8_t* pixels;
  ptrdiff_t frame_width;
  ptrdiff_t columns;
  ptrdiff_t rows;

  [[gnu::always_inline]] inline void add_to(uint32_t* row_sums, uint32_t* column_sums) const {
    BlockSums blocks[static_cast<size_t>(kStrip / kBlock)];
    const ptrdiff_t whole = columns / kBlock, count = whole + (columns % kBlock != 0);
    for (ptrdiff_t i = 0; i < count; i++) blocks[i] = BlockSums{};
    ptrdiff_t y = 0;
    for (; y + kRowGroup <= rows; y += kRowGroup) add_group<kRowGroup>(y, blocks, row_sums + y);
    for (; y < rows; y++) add_group<1>(y, blocks, row_sums + y);
    for (ptrdiff_t i = 0; i < whole; i++) blocks[i].add_to(column_sums + i * kBlock);
    if (count > whole) blocks[whole].add_to(column_sums + columns - kBlock);
  }

 private:
  static constexpr size_t kBytes = sizeof(Pairs);
  static constexpr ptrdiff_t kBlock = kBytes;
  static_assert(kBlock <= kNarrowest);

  /** The sums of the columns of a block: of those of left pixels and of those of right ones. */
  struct BlockSums {
    Pairs left;
    Pairs right;

    [[gnu::always_inline]] inline void add_to(uint32_t* __restrict column_sums) const {
      for (ptrdiff_t i = 0; i < kBlock / 2; i++) {
        column_sums[2 * i] += left[i];
        column_sums[2 * i + 1] += right[i];
      }
    }
  };

  // Columns after whole blocks are looked at in a block that overlaps the last one, where they alone count.
  template <ptrdiff_t kRows>
  [[gnu::always_inline]] inline void add_group(ptrdiff_t y, BlockSums* blocks, uint32_t* row_sums) const {
    const uint8_t* const group = pixels + y * frame_width;
    const ptrdiff_t left = columns % kBlock, whole = columns - left;
    for (ptrdiff_t x = 0; x < whole; x += kTile) {
      add_rows<kRows>(group + x, std::min(kTile, whole - x), ~Pairs{}, blocks + x / kBlock, row_sums);
    }
    if (left == 0) return;
    Pairs last;
    __builtin_memcpy(&last, quo::kLastOfBlock<kBytes>.data() + left, sizeof last);
    add_rows<kRows>(group + columns - kBlock, kBlock, last, blocks + whole / kBlock, row_sums);
  }

  // Adds at most a tile of rows, in whole blocks; of their pixels those count whose bits are set in `counted`.
  template <ptrdiff_t kRows>
  [[gnu::always_inline]] inline void add_rows(const uint8_t* tile, ptrdiff_t count, const Pairs& counted,
                                              BlockSums* blocks, uint32_t* row_sums) const {
    Pairs of_rows[kRowGroup]{};
    for (ptrdiff_t x = 0; x < count; x += kBlock, blocks++) {
      BlockSums sums = *blocks;
      for (ptrdiff_t y = 0; y < kRows; y++) {
        Pairs pairs;
        __builtin_memcpy(&pairs, tile + y * frame_width + x, sizeof pairs);
        pairs &= counted;
        sums.left += pairs & 255;
        sums.right += pairs >> 8;
        of_rows[y] += (pairs & 255) + (pairs >> 8);
      }
      *blocks = sums;
    }
    add<kRows>(totals(of_rows), row_sums);
  }
};

template <typename Pairs>
[[gnu::always_inline]] inline void sum_with(const uint8_t* image, ptrdiff_t width, ptrdiff_t height, uint32_t* row_sums,
                                            uint32_t* column_sums) {
  for (ptrdiff_t x = 0; x < width; x += kStrip) {
    for (ptrdiff_t y = 0; y < height; y += kBand) {
      const Band<Pairs> band{image + y * width + x, width, std::min(kStrip, width - x), std::min(kBand, height - y)};
      band.add_to(row_sums + y, column_sums + x);
    }
  }
}

QUO_BASELINE void sum_in_blocks(const uint8_t* image, ptrdiff_t width, ptrdiff_t height, uint32_t* row_sums,
                                uint32_t* column_sums) {
  sum_with<EightPairs>(image, width, height, row_sums, column_sums);
}

#ifdef QUO_WIDE
QUO_WIDE void sum_in_blocks(const uint8_t* image, ptrdiff_t width, ptrdiff_t height, uint32_t* row_sums,
                            uint32_t* column_sums) {
  sum_with<SixteenPairs>(image, width, height, row_sums, column_sums);
}
#endif

void sum_pixels(const uint8_t* image, ptrdiff_t width, ptrdiff_t height, uint32_t* row_sums, uint32_t* column_sums) {
  for (ptrdiff_t y = 0; y < height; y++) {
    for (ptrdiff_t x = 0; x < width; x++) {
      row_sums[y] += image[y * width + x];
      column_sums[x] += image[y * width + x];
    }
  }
}

void sum_lines(const uint8_t* image, ptrdiff_t width, ptrdiff_t height, uint32_t* row_sums, uint32_t* column_sums) {
  for (ptrdiff_t x = 0; x < width; x++) column_sums[x] = 0;
  for (ptrdiff_t y = 0; y < height; y++) row_sums[y] = 0;
  if (width < kNarrowest) {
    sum_pixels(image, width, height, row_sums, column_sums);
  } else {
    sum_in_blocks(image, width, height, row_sums, column_sums);
  }
}

// Sum below which a line of `length` pixels is dark.
uint32_t dark_sum(uint8_t reference, int32_t length) {
  const double sum = std::min(reference, kMaxReference) * kDarkShare * length;
  return sum < 0x1p32 ? static_cast<uint32_t>(sum) : UINT32_MAX;
}

// The first and the last dark line, both 0 when there is none. Indices are 8 bits wide and wrap beyond 255.
struct Span {
  uint8_t first = 0;
  uint8_t last = 0;
};

Span dark_span(const uint32_t* sums, int32_t lines, uint32_t dark) {
  int32_t first = kFirstMargin;
  int32_t last = lines - kLastMargin;
  while (first <= last && sums[first] >= dark) first++;
  if (first > last) return {};
  while (sums[last] >= dark) last--;
  return {static_cast<uint8_t>(first), static_cast<uint8_t>(last)};
}

// Whether the sum of a line inside the span differs by at least `least_jump` from that of the line before.
bool has_jump(const uint32_t* sums, Span span, uint64_t least_jump) {
  if (least_jump > UINT32_MAX) return false;
  const auto least = static_cast<uint32_t>(least_jump);
  uint32_t jumps = 0;
  for (int32_t i = span.first + 1; i < span.last; i++) jumps |= quo::abs_diff(sums[i], sums[i - 1]) >= least ? 1U : 0U;
  return jumps != 0;
}

// Marks the bands between jumps inside the span: each jump starts or ends one. Returns the number of marked lines.
uint32_t mark_bands(const uint32_t* sums, Span span, uint64_t least_jump, uint8_t* marks) {
  if (!has_jump(sums, span, least_jump)) return 0;
  uint32_t marked = 0;
  bool in_band = false;
  for (int32_t i = span.first + 1; i < span.last; i++) {
    const bool jump = quo::abs_diff(sums[i], sums[i - 1]) >= least_jump;
    in_band = in_band != jump;
    marks[i] = in_band;
    marked += in_band;
  }
  return marked;
}

// Takes the marks of `lines` lines of `length` pixels each and gives the sums back; false when there is no memory.
bool mark_lines(Scratch<uint32_t>& sums, int32_t lines, int32_t length, uint8_t reference, uint64_t least_jump,
                Scratch<uint8_t>& marks, uint32_t& pixels) {
  const Span span = dark_span(sums.get(), lines, dark_sum(reference, length));
  if (!marks.allocate(static_cast<uint64_t>(lines))) return false;
  quo_memset(marks.get(), 0, static_cast<uint32_t>(lines));
  pixels = mark_bands(sums.get(), span, least_jump, marks.get()) * static_cast<uint32_t>(length);
  sums.reset();
  return true;
}

void paint_row(const uint8_t* __restrict columns, uint8_t row, uint8_t* __restrict mark_image, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; x++) mark_image[x] |= static_cast<uint8_t>(-(columns[x] | row));  // 1 becomes 255
}

uint8_t* new_mark_image(const BadLines& lines, int32_t width, int32_t height) {
  Scratch<uint8_t> mark_image;
  const uint64_t pixels = quo::pixel_count(width, height);
  if (!mark_image.allocate(pixels)) return nullptr;
  quo_memset(mark_image.get(), 0, static_cast<uint32_t>(pixels));
  quo::paint_bad_lines(lines, mark_image.get(), width, height);
  return mark_image.release();
}

}  // namespace

bool quo::find_bad_lines(const uint8_t* image, int32_t width, int32_t height, uint8_t reference, BadLines& lines) {
  width = std::max(width, 0);
  height = std::max(height, 0);
  Scratch<uint32_t> row_sums, column_sums;
  if (!row_sums.allocate(static_cast<uint64_t>(height))) return false;
  if (!column_sums.allocate(static_cast<uint64_t>(width))) return false;
  sum_lines(image, width, height, row_sums.get(), column_sums.get());
  // A row jumps by more than kJump, a column by kJump or more.
  const uint64_t least_row_jump = uint64_t{kJump} * static_cast<uint32_t>(width) + 1;
  const uint64_t least_column_jump = uint64_t{kJump} * static_cast<uint32_t>(height);
  const bool marked =
      mark_lines(row_sums, height, width, reference, least_row_jump, lines.rows, lines.row_pixels) &&
      mark_lines(column_sums, width, height, reference, least_column_jump, lines.columns, lines.column_pixels);
  if (!marked) {
    lines.rows.reset();
    lines.row_pixels = 0;
  }
  return marked;
}

void quo::paint_bad_lines(const BadLines& lines, uint8_t* mark_image, int32_t width, int32_t height) {
  if (lines.none()) return;
  for (ptrdiff_t y = 0; y < height; y++) {
    paint_row(lines.columns.get(), lines.rows[static_cast<size_t>(y)], mark_image + y * width, width);
  }
}

uint32_t CheckBadLine(const uint8_t* image, int32_t width, int32_t height, uint8_t reference, uint32_t* column_pixels,
                      uint32_t* row_pixels, uint8_t** column_marks, uint8_t** row_marks) {
  BadLines lines;
  if (!quo::find_bad_lines(image, width, height, reference, lines)) return QUO_NO_MEMORY;
  if (column_pixels != nullptr) *column_pixels = lines.column_pixels;
  if (row_pixels != nullptr) *row_pixels = lines.row_pixels;
  if (column_marks != nullptr) *column_marks = lines.columns.release();
  if (row_marks != nullptr) *row_marks = lines.rows.release();
  return QUO_OK;
}

uint32_t FP_GetBadLinePixelsNum(const uint8_t* image, int32_t width, int32_t height, uint32_t* line_pixels,
                                uint8_t** mark_image) {
  if (line_pixels == nullptr) return QUO_NO_OUTPUT;
  BadLines lines;
  uint32_t result = quo::find_bad_lines(image, width, height, kEntryReference, lines) ? QUO_OK : QUO_NO_MEMORY;
  if (mark_image != nullptr) {
    *mark_image = new_mark_image(lines, width, height);
    if (*mark_image == nullptr) result = QUO_NO_MEMORY;
  }
  if (result == QUO_OK) *line_pixels += lines.column_pixels + lines.row_pixels;
  return result;
}
