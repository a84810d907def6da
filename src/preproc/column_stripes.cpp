#include "preproc/column_stripes.h"

#include <algorithm>

#include "frame/gray.h"

namespace quo {
namespace {

// Rows that a partial count of 8 bits and a partial sum of 16 bits hold.
constexpr int32_t kPartialRows = 255;
static_assert(kPartialRows * 255 <= UINT16_MAX);

void count_row(const uint8_t* __restrict row, uint16_t* __restrict sums, uint8_t* __restrict counts, int32_t columns,
               uint8_t limit) {
  for (int32_t x = 0; x < columns; x++) {
    const bool counted = row[x] <= limit;
    const uint8_t value = counted ? row[x] : 0;
    sums[x] = static_cast<uint16_t>(sums[x] + value);
    counts[x] = static_cast<uint8_t>(counts[x] + (counted ? 1 : 0));
  }
}

// Adds the partial sums and counts to the totals and clears them. Totals of 2^24 rows fit in 32 bits.
void flush(uint16_t* __restrict partial_sums, uint8_t* __restrict partial_counts, uint32_t* __restrict sums,
           uint32_t* __restrict counts, int32_t columns) {
  for (int32_t x = 0; x < columns; x++) {
    sums[x] += partial_sums[x];
    counts[x] += partial_counts[x];
    partial_sums[x] = 0;
    partial_counts[x] = 0;
  }
}

void strip_means(const uint8_t* image, int32_t stride, int32_t columns, int32_t height, uint8_t limit, uint32_t* sums,
                 uint8_t* partial_counts, uint8_t* means) {
  uint16_t partial_sums[kColumnStrip];
  uint32_t counts[kColumnStrip];
  for (int32_t x = 0; x < columns; x++) {
    partial_sums[x] = 0;
    partial_counts[x] = 0;
    sums[x] = 0;
    counts[x] = 0;
  }
  for (int32_t y = 0; y < height;) {
    const int32_t rows = std::min(kPartialRows, height - y);
    for (const int32_t end = y + rows; y < end; y++) {
      count_row(image, partial_sums, partial_counts, columns, limit);
      image += stride;
    }
    flush(partial_sums, partial_counts, sums, counts, columns);
  }
  for (int32_t x = 0; x < columns; x++) {
    means[x] = counts[x] != 0 ? static_cast<uint8_t>(sums[x] / counts[x]) : kWhite;
  }
}

}  // namespace

void column_means(const uint8_t* image, int32_t stride, int32_t columns, int32_t height, uint8_t limit, uint32_t* sums,
                  uint8_t* counts, uint8_t* means) {
  for (int32_t x = 0; x < columns; x += std::min(kColumnStrip, columns - x)) {
    const int32_t strip = std::min(kColumnStrip, columns - x);
    strip_means(image + x, stride, strip, height, limit, sums + x, counts + x, means + x);
  }
}

}  // namespace quo
