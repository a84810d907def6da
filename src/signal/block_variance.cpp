#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "signal/block_statistics.h"
#include "signal/variance.h"

namespace {

// Blocks along one axis, whole ones only: the last is moved back to end at the inner edge of the margin, where that
// leaves it inside the image.
struct Axis {
  int32_t length;  // of the image
  int32_t margin;
  int32_t size;  // of a block

  // The quotient in double precision rounds up exactly when the integers do: its fraction is 0 or at least 1 / size,
  // which is 2^21 times the largest rounding error of a quotient of 31-bit integers.
  uint32_t count() const { return static_cast<uint32_t>((int64_t{length} - 2 * margin + size - 1) / size); }

  size_t start(uint32_t index) const {
    const int64_t aligned = margin + int64_t{index} * size;
    const int64_t last = int64_t{length} - margin - size;
    return static_cast<size_t>(std::max<int64_t>(std::min(aligned, last), 0));
  }
};

// Rows of the block size that the library itself uses are single vector moves.
void copy_block(const uint8_t* block, size_t stride, uint32_t size, uint8_t* buffer) {
  if (size == quo::kBlockSize) {
    for (int32_t y = 0; y < quo::kBlockSize; y++) {
      __builtin_memcpy(buffer + y * quo::kBlockSize, block, quo::kBlockSize);
      block += stride;
    }
    return;
  }
  for (uint32_t y = 0; y < size; y++) quo_memcpy(buffer + size_t{y} * size, block + y * stride, size);
}

}  // namespace

uint32_t ImgBlockVariance(const uint8_t* image, int32_t width, int32_t height, uint8_t margin, int32_t size,
                          double** variances, uint32_t* blocks_across, uint32_t* blocks_down) {
  if (variances == nullptr || size < 1 || width < size || height < size) return QUO_BAD_GRID;
  if (width <= 2 * margin || height <= 2 * margin) return QUO_BAD_GRID;
  const Axis across{width, margin, size}, down{height, margin, size};
  const auto side = static_cast<uint32_t>(size);

  quo::Scratch<uint8_t> buffer;
  quo::Scratch<double> array;
  if (!buffer.allocate(uint64_t{side} * side)) return QUO_GRID_NO_MEMORY;
  if (!array.allocate(uint64_t{across.count()} * down.count())) return QUO_GRID_NO_MEMORY;

  const auto stride = static_cast<size_t>(width);
  double* variance = array.get();
  for (uint32_t j = 0; j < down.count(); j++) {
    const uint8_t* const top = image + down.start(j) * stride;
    for (uint32_t i = 0; i < across.count(); i++) {
      copy_block(top + across.start(i), stride, side, buffer.get());
      *variance++ = quo::population_variance(buffer.get(), side * side);
    }
  }
  *variances = array.release();
  if (blocks_across != nullptr) *blocks_across = across.count();
  if (blocks_down != nullptr) *blocks_down = down.count();
  return QUO_OK;
}
