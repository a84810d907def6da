#include <cstddef>

#include "frame/scratch.h"
#include "preproc/background_value.h"

namespace {

void copy_rows(const uint8_t* source, ptrdiff_t stride, uint8_t* destination, int32_t width, int32_t height) {
  for (ptrdiff_t y = 0; y < height; y++) {
    quo_memcpy(destination + y * width, source + y * stride, static_cast<uint32_t>(width));
  }
}

}  // namespace

uint32_t FP_GetBlockValidArea(const uint8_t* frame, int32_t width, int32_t height, uint8_t* top_left,
                              uint8_t* top_right, uint8_t* bottom_left, uint8_t* bottom_right) {
  const int32_t half_width = width >> 1;
  const int32_t half_height = height >> 1;
  quo::Scratch<uint8_t> quarter;
  if (!quarter.allocate(quo::pixel_count(half_width, half_height))) return QUO_NO_MEMORY;

  const uint8_t bg = quo::background_value(frame, width, height);
  const ptrdiff_t right = half_width;
  const ptrdiff_t below = static_cast<ptrdiff_t>(half_height) * width;
  const struct {
    uint8_t* mean_out;
    ptrdiff_t offset;
  } quarters[] = {{top_left, 0}, {top_right, right}, {bottom_left, below}, {bottom_right, below + right}};
  for (const auto& [mean_out, offset] : quarters) {
    if (mean_out == nullptr) continue;
    if (half_width > 0 && half_height > 0) copy_rows(frame + offset, width, quarter.get(), half_width, half_height);
    GetValidArea(quarter.get(), half_width, half_height, bg, nullptr, mean_out, nullptr, nullptr);
  }
  return QUO_OK;
}
