#include <cstddef>

#include "frame/scratch.h"
#include "preproc/background_value.h"
#include "preproc/valid_area.h"

uint32_t FP_GetBlockValidArea(const uint8_t* frame, int32_t width, int32_t height, uint8_t* top_left,
                              uint8_t* top_right, uint8_t* bottom_left, uint8_t* bottom_right) {
  const int32_t half_width = width >> 1;
  const int32_t half_height = height >> 1;
  // The quarters are measured where they are; memory for one is reserved because a call without it must fail.
  quo::Scratch<uint8_t> quarter;
  if (!quarter.allocate(quo::pixel_count(half_width, half_height))) return QUO_NO_MEMORY;

  const uint8_t bg = quo::background_value(frame, width, height);
  // Without pixels no offset is inside the frame.
  const bool empty = half_width < 1 || half_height < 1;
  const ptrdiff_t right = empty ? 0 : half_width;
  const ptrdiff_t below = empty ? 0 : ptrdiff_t{half_height} * width;
  const struct {
    uint8_t* mean_out;
    ptrdiff_t offset;
  } quarters[] = {{top_left, 0}, {top_right, right}, {bottom_left, below}, {bottom_right, below + right}};
  for (const auto& [mean_out, offset] : quarters) {
    if (mean_out == nullptr) continue;
    *mean_out = quo::find_valid_blocks(frame + offset, width, half_width, half_height, bg).mean();
  }
  return QUO_OK;
}
