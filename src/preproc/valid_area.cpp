#include "preproc/valid_area.h"

#include <cstddef>

#include "preproc/background_value.h"

namespace {

using quo::ValidBlocks;

constexpr int32_t kBlock = ValidBlocks::kSide;

// Sum of an 8 x 8 block, four 16-bit lanes at a time: a row adds at most 2 * 255 to a lane, so a lane ends at 4080 at
// most, and the four lanes add up, in the upper lane of the product, to 16320 at most.
uint32_t block_sum(const uint8_t* top_left, int32_t stride) {
  constexpr uint64_t kEvenBytes = 0x00FF00FF00FF00FFU;
  constexpr uint64_t kOneEach = 0x0001000100010001U;
  uint64_t lanes = 0;
  for (ptrdiff_t y = 0; y < kBlock; y++) {
    uint64_t row;
    __builtin_memcpy(&row, top_left + y * stride, sizeof row);
    lanes += (row & kEvenBytes) + ((row >> 8) & kEvenBytes);
  }
  return static_cast<uint32_t>((lanes * kOneEach) >> 48);
}

template <typename T>
void store(T* out, T value) {
  if (out != nullptr) *out = value;
}

}  // namespace

ValidBlocks quo::find_valid_blocks(const uint8_t* area, int32_t stride, int32_t width, int32_t height, uint8_t bg) {
  ValidBlocks valid;
  if (width < kBlock || height < kBlock) return valid;
  const uint32_t threshold = bg * ValidBlocks::kPixels;
  for (int32_t y = 0; y <= height - kBlock; y += kBlock) {
    const uint8_t* const row = area + static_cast<ptrdiff_t>(y) * stride;
    for (int32_t x = 0; x <= width - kBlock; x += kBlock) {
      const uint32_t sum = block_sum(row + x, stride);
      valid.blocks++;
      if (sum >= threshold) continue;
      valid.count++;
      valid.sum += sum;
      valid.left += x;
      valid.top += y;
    }
  }
  return valid;
}

uint8_t GetValidArea(const uint8_t* image, int32_t width, int32_t height, uint8_t bg, uint8_t* percentage_out,
                     uint8_t* mean_out, int32_t* centre_x_out, int32_t* centre_y_out) {
  const ValidBlocks valid = quo::find_valid_blocks(image, width, width, height, bg);
  store(mean_out, valid.mean());
  if (valid.count == 0) {
    store<uint8_t>(percentage_out, 0);
    store(centre_x_out, 0);
    store(centre_y_out, 0);
    return 0;
  }
  store(percentage_out, static_cast<uint8_t>(uint64_t{valid.count} * 100 / valid.blocks));
  store(centre_x_out, static_cast<int32_t>(valid.left / valid.count));
  store(centre_y_out, static_cast<int32_t>(valid.top / valid.count));
  return 0;
}

uint32_t FP_GetValidArea(const uint8_t* image, int32_t width, int32_t height, uint8_t bg, uint8_t* percentage_out,
                         uint8_t* mean_out) {
  if (percentage_out == nullptr) return QUO_NO_OUTPUT;
  if (bg == 0) bg = quo::background_value(image, width, height);
  GetValidArea(image, width, height, bg, percentage_out, mean_out, nullptr, nullptr);
  return QUO_OK;
}

uint32_t FP_GetFingerprintInfo(const uint8_t* image, int32_t width, int32_t height, uint8_t* mean_out,
                               uint8_t* percentage_out, int32_t* centre_x_out, int32_t* centre_y_out) {
  const uint8_t bg = quo::background_value(image, width, height);
  GetValidArea(image, width, height, bg, percentage_out, mean_out, centre_x_out, centre_y_out);
  return QUO_OK;
}
