#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "quoFPAlg.h"

namespace {

constexpr int32_t kSegment = 240;  // columns, of which as many may be kept as a byte can count
static_assert(kSegment <= UINT8_MAX);

// The bits that the pixels of each column of three rows have in common.
void intersect_rows(const uint8_t* __restrict above, const uint8_t* __restrict middle, const uint8_t* __restrict below,
                    uint8_t* __restrict common, int32_t count) {
  for (int32_t i = 0; i < count; i++) common[i] = above[i] & middle[i] & below[i];
}

// Sets the outputs whose three columns are set and returns how many; of the others no bit changes.
// Never inlined: a compiler that sees the columns to be one row shifted carries pixels from step to step, and then
// finds no vectors.
[[gnu::noinline]] uint8_t keep_set(const uint8_t* __restrict left, const uint8_t* __restrict middle,
                                   const uint8_t* __restrict right, uint8_t* __restrict output, int32_t count) {
  uint8_t kept = 0;
  for (int32_t i = 0; i < count; i++) {
    const uint8_t set = (left[i] & middle[i] & right[i]) == quo::kWhite ? quo::kWhite : 0;
    output[i] |= set;
    kept = static_cast<uint8_t>(kept + (set & 1));
  }
  return kept;
}

// A 3 x 3 neighbourhood is all 255 exactly when the bits that its pixels have in common are 255.
uint8_t erode_segment(const uint8_t* mask, size_t stride, uint8_t* output, int32_t count) {
  uint8_t common[kSegment + 2];
  const uint8_t* const left = mask - 1;
  intersect_rows(left - stride, left, left + stride, common, count + 2);
  return keep_set(common, common + 1, common + 2, output, count);
}

}  // namespace

void MyRectErode(const uint8_t* mask, uint8_t* output, int32_t width, int32_t height, int32_t border, uint32_t* count) {
  if (count != nullptr) *count = 0;
  if (border < 1) border = 1;
  const int64_t right = int64_t{width} - border, bottom = int64_t{height} - border;  // first column and row left out
  if (border >= right || border >= bottom) return;

  const auto stride = static_cast<size_t>(width);
  uint32_t kept = 0;
  for (int32_t y = border; y < bottom; y++) {
    for (int32_t x = border; x < right; x += kSegment) {
      const size_t at = static_cast<size_t>(y) * stride + static_cast<size_t>(x);
      const auto columns = static_cast<int32_t>(std::min<int64_t>(kSegment, right - x));
      kept += erode_segment(mask + at, stride, output + at, columns);
    }
  }
  if (count != nullptr) *count = kept;
}
