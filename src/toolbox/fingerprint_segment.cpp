#include <cstddef>

#include "frame/gray.h"
#include "quoFPAlg.h"

namespace {

using quo::kWhite;

constexpr int32_t kBrightestThreshold = 253;  // above, no pixel is bright once 255 has become 254
constexpr int32_t kFlank = 8;                 // lines from a valley's pixel to the ridges on both sides
constexpr int32_t kEdge = 2;                  // pixels at each end of a line, marked together with the one beside them

// A row or a column, with what a scan along it needs to know. Scans take it by value: pixels may be written over what a
// reference refers to, as far as the compiler knows, and so all of it would be loaded again for each pixel.
struct Line {
  uint8_t* first;
  ptrdiff_t step;   // to the next pixel
  int32_t length;   // pixels
  ptrdiff_t flank;  // to the pixel on the line eight lines further, 0 when one of the two flanks is missing
  int32_t threshold;

  uint8_t& at(int32_t i) const { return first[i * step]; }

  bool stops_at(int32_t i) const {
    const uint8_t* const pixel = first + i * step;
    if (*pixel == kWhite || *pixel <= threshold) return true;
    return flank != 0 && pixel[-flank] <= threshold && pixel[flank] <= threshold;
  }

  void mark_first_pair() const { at(0) = at(1) = kWhite; }
  void mark_last_pair() const { at(length - 2) = at(length - 1) = kWhite; }
};

// Whether lines eight further exist on both sides, the outermost not counted.
bool has_flanks(int32_t index, int32_t lines) { return index > kFlank && index < lines - 1 - kFlank; }

// The counter wraps like the product of the sizes that it starts from.
struct Counter {
  uint32_t left;

  int32_t value() const { return static_cast<int32_t>(left); }
};

// Marks from the pixel after the first pair of a line on. Returns the position after the last one visited.
int32_t scan_forward(Line line, Counter& counter) {
  if (line.length <= kEdge) return kEdge;
  int32_t i = kEdge;
  for (; i < line.length && !line.stops_at(i); i++) line.at(i) = kWhite;
  const auto marked = static_cast<uint32_t>(i - kEdge);
  if (marked > 0) {
    line.mark_first_pair();
    counter.left -= marked + kEdge;
  }
  return i < line.length ? i + 1 : i;
}

// Marks from the pixel before the last pair of a row back to `limit`, not included.
void scan_row_backward(Line row, int32_t limit, Counter& counter) {
  const int32_t start = row.length - kEdge - 1;
  int32_t i = start;
  for (; i > limit && !row.stops_at(i); i--) row.at(i) = kWhite;
  if (i < start) {
    row.mark_last_pair();
    counter.left -= static_cast<uint32_t>(start - i) + kEdge;
  }
}

// As for a row, but the last pair is marked and counted again with every pixel, and once more at the pixel that stops.
void scan_column_backward(Line column, int32_t limit, Counter& counter) {
  const int32_t start = column.length - kEdge - 1;
  int32_t i = start;
  for (; i > limit && !column.stops_at(i); i--) {
    column.at(i) = kWhite;
    column.mark_last_pair();
    counter.left -= 1 + kEdge;
  }
  if (i > limit && i < start) counter.left -= kEdge;
}

void segment_rows(uint8_t* image, int32_t width, int32_t height, int32_t threshold, Counter& counter) {
  for (int32_t y = 0; y < height; y++) {
    const ptrdiff_t flank = has_flanks(y, height) ? ptrdiff_t{kFlank} * width : 0;
    const Line row{image + static_cast<ptrdiff_t>(y) * width, 1, width, flank, threshold};
    const int32_t reached = scan_forward(row, counter);
    if (reached < width - kEdge - 1) scan_row_backward(row, reached, counter);
  }
}

void segment_columns(uint8_t* image, int32_t width, int32_t height, int32_t threshold, Counter& counter) {
  for (int32_t x = 0; x < width; x++) {
    const Line column{image + x, width, height, has_flanks(x, width) ? kFlank : 0, threshold};
    const int32_t reached = scan_forward(column, counter);
    if (reached < height - kEdge - 1) scan_column_backward(column, reached, counter);
  }
}

void lower_white(uint8_t* pixels, size_t count) {
  for (size_t i = 0; i < count; i++) pixels[i] = pixels[i] == kWhite ? kWhite - 1 : pixels[i];
}

}  // namespace

int32_t FingerprintImageSegment(uint8_t* image, int32_t width, int32_t height, int32_t threshold) {
  Counter counter{static_cast<uint32_t>(width) * static_cast<uint32_t>(height)};
  const bool empty = width < 1 || height < 1;
  if (!empty) lower_white(image, static_cast<size_t>(width) * static_cast<size_t>(height));
  if (threshold > kBrightestThreshold) return counter.value();
  if (!empty) segment_rows(image, width, height, threshold, counter);
  if (counter.value() <= 0) return 0;
  if (!empty) segment_columns(image, width, height, threshold, counter);
  return counter.value();
}
