#include <algorithm>
#include <cstddef>

#include "frame/kept_pixels.h"
#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

constexpr int32_t kSegment = 1024;  // columns looked at together
static_assert(kSegment <= quo::kMostKept);

// A 3 x 3 neighbourhood is all 255 exactly when the bits that its pixels have in common are 255.
QUO_MULTIVERSION uint32_t erode_segment(const uint8_t* above, const uint8_t* middle, const uint8_t* below,
                                        uint8_t* output, int32_t count) {
  const auto of_three = [](const uint8_t* row, int32_t i) { return row[i - 1] & row[i] & row[i + 1]; };
  const auto stays = [=](int32_t i) {
    return quo::all_set(of_three(above, i) & of_three(middle, i) & of_three(below, i));
  };
  return quo::keep_passing(stays, output, count);
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
      kept += erode_segment(mask + (at - stride), mask + at, mask + (at + stride), output + at, columns);
    }
  }
  if (count != nullptr) *count = kept;
}
