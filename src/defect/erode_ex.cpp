#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

constexpr uint8_t kMark = 255;
constexpr int32_t kBlock = 240;  // pixels counted at once, in 8 bits
static_assert(kBlock <= UINT8_MAX);

// Values, not references to pixels: Clang would choose between addresses and not vectorise.
inline uint8_t darker(uint8_t a, uint8_t b) { return a < b ? a : b; }
inline uint8_t lighter(uint8_t a, uint8_t b) { return a > b ? a : b; }

// The rows of a run of pixels and its neighbours. Left and right are pointers of their own, in functions of their own:
// otherwise Clang carries pixels from one step to the next, and does not vectorise.
struct Run {
  const uint8_t* above;
  const uint8_t* left;
  const uint8_t* middle;
  const uint8_t* right;
  const uint8_t* below;
  ptrdiff_t pixels;

  // A pixel is bad when it and one of its neighbours are below the threshold: when the lighter of the pixel and its
  // darkest neighbour is.
  bool is_bad(ptrdiff_t x, uint8_t threshold) const {
    const uint8_t darkest = darker(darker(above[x], below[x]), darker(left[x], right[x]));
    return lighter(middle[x], darkest) < threshold;
  }
};

[[gnu::noinline]] uint8_t count_bad(const Run& run, uint8_t threshold) {
  uint8_t count = 0;
  for (ptrdiff_t x = 0; x < run.pixels; x++) count = static_cast<uint8_t>(count + run.is_bad(x, threshold));
  return count;
}

[[gnu::noinline]] void mark_bad(const Run& run, uint8_t threshold, uint8_t* __restrict marks) {
  for (ptrdiff_t x = 0; x < run.pixels; x++) marks[x] = run.is_bad(x, threshold) ? kMark : uint8_t{0};
}

// Counts and marks in reading order until the count exceeds the allowance; each function returns false then.
struct Inspection {
  const uint8_t* image;
  int32_t width;
  int32_t height;
  uint8_t threshold;
  int32_t allowance;
  uint8_t* marks;      // null when none are wanted
  uint32_t count = 0;  // at most the number of pixels

  bool fails_with(uint32_t bad_pixels) const { return static_cast<int64_t>(bad_pixels) > allowance; }

  ptrdiff_t index(int32_t x, int32_t y) const { return static_cast<ptrdiff_t>(y) * width + x; }

  // Outside the image nothing is dark.
  bool is_dark(int32_t x, int32_t y) const {
    return x >= 0 && x < width && y >= 0 && y < height && image[index(x, y)] < threshold;
  }

  bool is_bad(int32_t x, int32_t y) const {
    return is_dark(x, y) && (is_dark(x, y - 1) || is_dark(x, y + 1) || is_dark(x - 1, y) || is_dark(x + 1, y));
  }

  bool inspect_pixels(int32_t y, int32_t first, int32_t end) {
    for (int32_t x = first; x < end; x++) {
      if (!is_bad(x, y)) continue;
      count++;
      if (marks != nullptr) marks[index(x, y)] = kMark;
      if (fails_with(count)) return false;
    }
    return true;
  }

  // For pixels that have all four neighbours. Only the block in which the count exceeds the allowance is walked.
  bool inspect_blocks(int32_t y, int32_t first, int32_t end) {
    for (int32_t x = first; x < end; x += std::min(kBlock, end - x)) {
      const int32_t pixels = std::min(kBlock, end - x);
      const uint8_t* const middle = image + index(x, y);
      const Run run{middle - width, middle - 1, middle, middle + 1, middle + width, pixels};
      const uint32_t bad = count_bad(run, threshold);
      if (bad == 0) continue;
      if (fails_with(count + bad)) return inspect_pixels(y, x, x + pixels);
      count += bad;
      if (marks != nullptr) mark_bad(run, threshold, marks + index(x, y));
    }
    return true;
  }

  bool inspect_row(int32_t y, int32_t first, int32_t end) {
    if (y == 0 || y == height - 1) return inspect_pixels(y, first, end);
    const int32_t inner_first = std::max(first, 1);
    const int32_t inner_end = std::max(inner_first, std::min(end, width - 1));
    return inspect_pixels(y, first, inner_first) && inspect_blocks(y, inner_first, inner_end) &&
           inspect_pixels(y, inner_end, end);
  }
};

}  // namespace

void MyErodeEx(const uint8_t* image, int32_t width, int32_t height, int32_t border, uint8_t threshold,
               int32_t allowance, uint32_t* count, uint8_t** mark_image) {
  border = std::max(border, 0);
  Inspection inspection{image, std::max(width, 0), std::max(height, 0), threshold, allowance, nullptr};
  if (mark_image != nullptr) {
    const uint64_t pixels = quo::pixel_count(width, height);
    quo::Scratch<uint8_t> marks;
    if (marks.allocate(pixels)) quo_memset(marks.get(), 0, static_cast<uint32_t>(pixels));
    *mark_image = inspection.marks = marks.release();
  }
  const int32_t right = inspection.width - border, bottom = border < right ? inspection.height - border : 0;
  for (int32_t y = border; y < bottom; y++) {
    if (!inspection.inspect_row(y, border, right)) break;
  }
  if (count != nullptr) *count = inspection.count;
}
