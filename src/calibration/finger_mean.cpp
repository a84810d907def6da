#include <cstddef>

#include "quoFPAlg.h"

namespace {

constexpr int32_t kBlockSize = 8;
constexpr uint32_t kBlockPixels = kBlockSize * kBlockSize;
constexpr uint32_t kFingerBelow = 220;  // mean gray from which on a block is no finger
constexpr uint8_t kNoFingerMean = 255;  // reported when there is no finger block

struct FingerBlocks {
  uint64_t count = 0;
  uint64_t sum = 0;  // of their pixels

  uint8_t mean() const { return count > 0 ? static_cast<uint8_t>(sum / (count * kBlockPixels)) : kNoFingerMean; }
  uint8_t percentage(uint64_t all) const { return count > 0 ? static_cast<uint8_t>(100 * count / all) : uint8_t{0}; }
};

uint32_t whole_blocks(int32_t length) { return length > 0 ? static_cast<uint32_t>(length) / kBlockSize : 0; }

// Sum of an 8 x 8 block: eight bytes of a row at a time, added in pairs into four 16-bit lanes.
uint32_t block_sum(const uint8_t* block, size_t stride) {
  constexpr uint64_t kEvenBytes = 0x00FF00FF00FF00FF;
  static_assert(kBlockPixels * 255 <= UINT16_MAX);  // all four lanes together still fit one
  uint64_t lanes = 0;
  for (int32_t y = 0; y < kBlockSize; y++, block += stride) {
    uint64_t row;
    __builtin_memcpy(&row, block, sizeof row);
    lanes += (row & kEvenBytes) + ((row >> 8) & kEvenBytes);
  }
  return static_cast<uint32_t>((lanes * 0x0001000100010001) >> 48);  // the top lane receives the sum of all
}

FingerBlocks find_finger(const uint8_t* frame, size_t stride, uint32_t across, uint32_t down) {
  FingerBlocks finger;
  for (uint32_t j = 0; j < down; j++) {
    const uint8_t* const band = frame + j * kBlockSize * stride;
    for (uint32_t i = 0; i < across; i++) {
      const uint32_t sum = block_sum(band + size_t{i} * kBlockSize, stride);
      const bool is_finger = sum < kFingerBelow * kBlockPixels;
      finger.count += is_finger ? 1 : 0;
      finger.sum += is_finger ? sum : 0;
    }
  }
  return finger;
}

}  // namespace

uint32_t tev_GetFingerMean(const uint8_t* frame, int32_t width, int32_t height, uint8_t* mean, uint8_t* coverage) {
  if (frame == nullptr) return QUO_NULL_ARGUMENT;
  const uint32_t across = whole_blocks(width), down = across > 0 ? whole_blocks(height) : 0;
  const FingerBlocks finger = find_finger(frame, static_cast<size_t>(width), across, down);
  if (mean != nullptr) *mean = finger.mean();
  if (coverage != nullptr) *coverage = finger.percentage(uint64_t{across} * down);
  return QUO_OK;
}
