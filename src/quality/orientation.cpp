#include "frame/scratch.h"
#include "quality/orientation_field.h"

namespace {

void orient_rows(const quo::HalfFrame& half, const quo::OrientationTables& tables, uint8_t* degrees) {
  for (int32_t y = 0; y < half.height; y++) {
    for (int32_t x = 0; x < half.width; x += quo::kColumnsAtOnce) {
      const int32_t left = half.width - x;
      quo::orient_pixels(half, tables, x, y, left < quo::kColumnsAtOnce ? left : quo::kColumnsAtOnce,
                         degrees + half.row(y) + x);
    }
  }
}

void repeat_pixels(const uint8_t* __restrict row, int32_t count, uint8_t* __restrict output) {
  for (int32_t x = 0; x < count; x++) {
    output[2 * x] = row[x];
    output[2 * x + 1] = row[x];
  }
}

// Doubles an image in both directions; odd sizes repeat its last column and row once more.
void enlarge(const uint8_t* degrees, uint8_t* output, int32_t width, int32_t height) {
  const int32_t half_width = width / 2, half_height = height / 2;
  for (int32_t y = 0; y < height; y++) {
    const int32_t source = y / 2 < half_height ? y / 2 : half_height - 1;
    const uint8_t* const row = degrees + static_cast<ptrdiff_t>(source) * half_width;
    uint8_t* const doubled = output + static_cast<ptrdiff_t>(y) * width;
    repeat_pixels(row, half_width, doubled);
    doubled[width - 1] = row[half_width - 1];
  }
}

}  // namespace

uint32_t Orientation(const uint8_t* image, uint8_t* output, int32_t width, int32_t height, int32_t radius) {
  if (width < 2 || height < 2) return 0;
  const uint64_t cells = quo::pixel_count(width / 2, height / 2);
  if (cells > quo::kMostCells) return 0;
  quo::Scratch<uint8_t> half;
  if (!half.allocate(cells)) return 0;
  ZoomImg(image, half.get(), width, height, 1);
  if (output == nullptr) return 0;
  quo::Scratch<uint32_t> product, difference;
  if (!difference.allocate(cells) || !product.allocate(cells)) return 0;
  const quo::HalfFrame frame(half.get(), width / 2, height / 2, radius);
  const quo::OrientationTables tables{product.get(), difference.get()};
  quo::sum_orientation(frame, tables);
  orient_rows(frame, tables, half.get());  // the gradients are summed, so the frame makes room for its orientations
  enlarge(half.get(), output, width, height);
  return 1;
}
