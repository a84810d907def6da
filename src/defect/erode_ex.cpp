#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "frame/kept_pixels.h"
#include "frame/multiversion.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

// Rows that are inspected together have about this many pixels: no more are looked at in vain after the allowance.
constexpr int32_t kBandPixels = 4096;

// Values, not references to pixels: Clang would choose between addresses and not vectorise.
inline uint8_t darker(uint8_t a, uint8_t b) { return a < b ? a : b; }
inline uint8_t lighter(uint8_t a, uint8_t b) { return a > b ? a : b; }

// Marks the bad pixels of an area all of whose pixels have four neighbours. A pixel is bad when it and one of its
// neighbours are below the threshold: when the lighter of the pixel and its darkest neighbour is.
QUO_MULTIVERSION uint32_t mark_inside(const uint8_t* middle, uint8_t threshold, uint8_t* marks, const quo::Area& area) {
  const uint8_t *const above = middle - area.width, *const below = middle + area.width;
  const uint8_t *const left = middle - 1, *const right = middle + 1;
  const auto is_bad = [=](ptrdiff_t i, uint8_t, uint8_t) {
    const uint8_t darkest = darker(darker(above[i], below[i]), darker(left[i], right[i]));
    return lighter(middle[i], darkest) < threshold ? quo::kWhite : uint8_t{0};
  };
  return quo::keep_pixels(is_bad, marks, area);
}

// Counts and marks in reading order until the count exceeds the allowance.
struct Inspection {
  const uint8_t* image;
  int32_t width;
  int32_t height;
  int32_t border;
  uint8_t threshold;
  int32_t allowance;
  uint8_t* marks;      // null when none are wanted
  uint32_t count = 0;  // at most the number of pixels

  ptrdiff_t index(int32_t x, int32_t y) const { return static_cast<ptrdiff_t>(y) * width + x; }

  // Outside the image nothing is dark.
  bool is_dark(int32_t x, int32_t y) const {
    return x >= 0 && x < width && y >= 0 && y < height && image[index(x, y)] < threshold;
  }

  bool is_bad(int32_t x, int32_t y) const {
    return is_dark(x, y) && (is_dark(x, y - 1) || is_dark(x, y + 1) || is_dark(x - 1, y) || is_dark(x + 1, y));
  }

  bool is_edge(int32_t y) const { return y == 0 || y == height - 1; }

  // Marks the bad pixels in the columns from `first` on, `step` apart, of a row: the first `most` of them.
  uint32_t mark_pixels(int32_t y, int32_t first, int32_t step, uint32_t most = UINT32_MAX) const {
    uint32_t bad = 0;
    for (int32_t x = first; x < width - border && bad < most; x += step) {
      if (!is_bad(x, y)) continue;
      bad++;
      if (marks != nullptr) marks[index(x, y)] = quo::kWhite;
    }
    return bad;
  }

  // Of rows of which either none is at an edge of the image, or there is one.
  uint32_t mark_rows(int32_t y, int32_t rows) const {
    if (is_edge(y)) return mark_pixels(y, border, 1);
    const int32_t first = std::max(border, 1), end = width - first;
    uint32_t bad = 0;
    if (first < end) {
      uint8_t* const inside = marks != nullptr ? marks + index(first, y) : nullptr;
      bad = mark_inside(image + index(first, y), threshold, inside, {end - first, rows, width});
    }
    for (int32_t i = y; border == 0 && i < y + rows; i++) bad += mark_pixels(i, 0, std::max(width - 1, 1));
    return bad;
  }

  // The rows in which the count exceeds the allowance are marked anew up to the pixel where it does.
  void fail_in_rows(int32_t y, int32_t rows) {
    const uint32_t last = static_cast<uint32_t>(std::max(allowance, 0)) + 1;
    if (marks != nullptr) {
      quo_memset(marks + index(0, y), 0, static_cast<uint32_t>(index(0, rows)));
      for (; count < last; y++) count += mark_pixels(y, border, 1, last - count);
    }
    count = last;
  }

  void inspect() {
    const int32_t bottom = height - border, most_rows = std::max(kBandPixels / width, 1);
    for (int32_t y = border, rows = 0; y < bottom; y += rows) {
      rows = is_edge(y) ? 1 : std::min(most_rows, std::min(bottom, height - 1) - y);
      const uint32_t bad = mark_rows(y, rows);
      if (bad > 0 && int64_t{count} + bad > allowance) return fail_in_rows(y, rows);
      count += bad;
    }
  }
};

}  // namespace

void MyErodeEx(const uint8_t* image, int32_t width, int32_t height, int32_t border, uint8_t threshold,
               int32_t allowance, uint32_t* count, uint8_t** mark_image) {
  border = std::max(border, 0);
  Inspection inspection{image, std::max(width, 0), std::max(height, 0), border, threshold, allowance, nullptr};
  if (mark_image != nullptr) {
    const uint64_t pixels = quo::pixel_count(width, height);
    quo::Scratch<uint8_t> marks;
    if (marks.allocate(pixels)) quo_memset(marks.get(), 0, static_cast<uint32_t>(pixels));
    *mark_image = inspection.marks = marks.release();
  }
  if (border < inspection.width - border) inspection.inspect();
  if (count != nullptr) *count = inspection.count;
}
