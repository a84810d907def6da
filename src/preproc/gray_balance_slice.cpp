#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "preproc/gray_balance.h"

namespace {

// A range of rows or columns within `radius` of a centre, clipped to 0 .. size - 1.
struct Range {
  int32_t first;
  int32_t end;
};

Range clipped_range(int32_t centre, uint32_t radius, int32_t size) {
  const auto before = static_cast<uint32_t>(centre);
  const auto after = static_cast<uint32_t>(size - centre);
  return {radius < before ? static_cast<int32_t>(before - radius) : 0,
          radius < after ? static_cast<int32_t>(before + radius + 1) : size};
}

uint8_t balanced(uint8_t pixel, uint32_t mean, uint8_t gain) {
  if (pixel >= quo::kBalanceLimit) return pixel;
  return quo::clamp_gray(gain * (pixel - static_cast<int32_t>(mean)) + quo::kBalanceCentre);
}

// Any radius: means from the integral image.
void balance_band(const quo::Band& band, uint32_t radius, uint8_t gain, uint32_t* integral) {
  GetGrayIntegralImage(band.pixels, integral, band.width, band.rows, band.width);
  const size_t stride = static_cast<size_t>(band.width) + 1;
  for (int32_t y = band.top_context; band.changes(y); y++) {
    const auto [top, bottom] = clipped_range(y, radius, band.rows);
    const uint32_t* const above = integral + static_cast<size_t>(top) * stride;
    const uint32_t* const below = integral + static_cast<size_t>(bottom) * stride;
    uint8_t* const row = band.row(y);
    for (int32_t x = 0; x < band.width; x++) {
      const auto [left, right] = clipped_range(x, radius, band.width);
      const uint32_t sum = below[right] - above[right] - below[left] + above[left];
      const uint32_t area = static_cast<uint32_t>(right - left) * static_cast<uint32_t>(bottom - top);
      row[x] = balanced(row[x], sum / area, gain);
    }
  }
}

}  // namespace

uint8_t LocalGrayBalance_Slice(uint8_t* image, int32_t width, int32_t height, uint32_t radius, uint32_t band_rows,
                               uint8_t gain, uint8_t top_context, uint8_t bottom_context) {
  if (gain < 2) return QUO_OK;
  const auto columns = static_cast<uint32_t>(std::max(width, 0));
  const auto rows = static_cast<uint32_t>(std::max(height, 0));
  if (band_rows == 0) band_rows = rows;
  quo::Scratch<uint32_t> integral;
  if (!integral.allocate((uint64_t{columns} + 1) * (uint64_t{band_rows} + 1))) return QUO_NO_MEMORY;
  if (columns == 0) return QUO_OK;
  for (uint32_t first = 0; first < rows; first += std::min(band_rows, rows - first)) {
    const quo::Band band{image + static_cast<ptrdiff_t>(first) * width, width,
                         static_cast<int32_t>(std::min(band_rows, rows - first)), top_context, bottom_context};
    if (radius == quo::kBalanceRadius && width >= quo::kBalanceSmallest && band.rows >= quo::kBalanceSmallest) {
      quo::balance_band_7x7(band, gain, integral.get());
    } else {
      balance_band(band, radius, gain, integral.get());
    }
  }
  return QUO_OK;
}
