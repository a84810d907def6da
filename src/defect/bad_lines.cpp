#include "defect/bad_lines.h"

#include <algorithm>
#include <cstddef>

#include "frame/gray.h"

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

constexpr ptrdiff_t kRowGroup = 8;    // rows added to the column sums at once, in 16 bits
constexpr ptrdiff_t kRowBlock = 256;  // pixels of a row summed in 16 bits
static_assert(kRowGroup * 255 <= UINT16_MAX && kRowBlock * 255 <= UINT16_MAX);

uint16_t sum_block(const uint8_t* __restrict pixels, ptrdiff_t count) {
  uint16_t sum = 0;
  for (ptrdiff_t x = 0; x < count; x++) sum = static_cast<uint16_t>(sum + pixels[x]);
  return sum;
}

uint32_t sum_row(const uint8_t* row, ptrdiff_t width) {
  uint32_t sum = 0;
  for (ptrdiff_t x = 0; x < width; x += kRowBlock) sum += sum_block(row + x, std::min(kRowBlock, width - x));
  return sum;
}

void add_row(const uint8_t* __restrict row, uint32_t* __restrict column_sums, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; x++) column_sums[x] += row[x];
}

void add_row_group(const uint8_t* __restrict rows, uint32_t* __restrict column_sums, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; x++) {
    const uint8_t* const pixel = rows + x;
    column_sums[x] += static_cast<uint16_t>(pixel[0] + pixel[width] + pixel[2 * width] + pixel[3 * width] +
                                            pixel[4 * width] + pixel[5 * width] + pixel[6 * width] + pixel[7 * width]);
  }
}

void sum_lines(const uint8_t* image, ptrdiff_t width, ptrdiff_t height, uint32_t* row_sums, uint32_t* column_sums) {
  for (ptrdiff_t x = 0; x < width; x++) column_sums[x] = 0;
  for (ptrdiff_t y = 0; y < height; y++) row_sums[y] = sum_row(image + y * width, width);
  ptrdiff_t y = 0;
  for (; y + kRowGroup <= height; y += kRowGroup) add_row_group(image + y * width, column_sums, width);
  for (; y < height; y++) add_row(image + y * width, column_sums, width);
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

// Marks the bands between jumps inside the span: each jump starts or ends one. Returns the number of marked lines.
uint32_t mark_bands(const uint32_t* sums, Span span, uint64_t least_jump, uint8_t* marks) {
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
