#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "preproc/column_counts.h"
#include "preproc/stripe_correction.h"

namespace {

constexpr uint8_t kFingerLimit = 234;  // pixels above are background or saturated
constexpr int32_t kStrip = 1024;       // columns whose pixels are counted together
constexpr int32_t kReach = 4;          // neighbours of a column on either side
constexpr int32_t kNeighboursShift = 3;
static_assert(2 * kReach == 1 << kNeighboursShift);

// sums / counts truncated; a column without any counts as a white pixel. No mean is above kWhite, so the quotient in
// double precision is never rounded up to the next integer: that is at least 1 / count away, far more than the spacing
// of doubles there.
void divide(const uint32_t* __restrict sums, const uint32_t* __restrict counts, uint8_t* __restrict means,
            int32_t columns) {
  for (int32_t x = 0; x < columns; x++) {
    const uint32_t none = counts[x] == 0 ? 1 : 0;
    const double mean = static_cast<double>(sums[x] + none * quo::kWhite) / static_cast<double>(counts[x] + none);
    means[x] = static_cast<uint8_t>(static_cast<int32_t>(mean));  // in two steps, which vectors know
  }
}

// Means of the finger pixels of some columns, kWhite for a column without one. The sums are modulo 2^32.
void take_strip_means(const uint8_t* image, int32_t width, int32_t columns, int32_t height, uint32_t* sums,
                      uint8_t* partial_counts, uint8_t* means) {
  uint16_t partial_sums[kStrip];
  uint32_t counts[kStrip];
  for (int32_t x = 0; x < columns; x++) sums[x] = counts[x] = 0;
  for (int32_t y = 0; y < height;) {
    const int32_t rows = std::min(quo::kPartialRows, height - y);
    const uint8_t* const top = image + static_cast<ptrdiff_t>(y) * width;
    quo::count_columns(top, width, columns, rows, kFingerLimit, partial_sums, partial_counts);
    for (int32_t x = 0; x < columns; x++) {
      sums[x] += partial_sums[x];
      counts[x] += partial_counts[x];
    }
    y += rows;
  }
  divide(sums, counts, means, columns);
}

void take_means(const uint8_t* image, int32_t width, int32_t height, uint32_t* sums, uint8_t* counts, uint8_t* means) {
  for (int32_t x = 0; x < width;) {
    const int32_t columns = std::min(kStrip, width - x);
    take_strip_means(image + x, width, columns, height, sums + x, counts + x, means + x);
    x += columns;
  }
}

// At most 255 * width: 32 bits hold it for 2^24 columns, and differences of nine columns beyond.
void sum_up(const uint8_t* means, uint32_t* run, int32_t width) {
  uint32_t sum = 0;
  for (int32_t x = 0; x < width; x++) run[x] = sum += means[x];
}

// How far the mean of each column stands from the mean of its neighbours. The columns without a full set of neighbours
// beside them, and the fifth from the left, keep 0.
void find_offsets(const uint8_t* means, const uint32_t* run, int16_t* offsets, int32_t width) {
  for (int32_t x = 0; x < width; x++) offsets[x] = 0;
  for (int32_t x = kReach + 1; x < width - kReach; x++) {
    const uint32_t neighbours = run[x + kReach] - run[x - kReach - 1] - means[x];
    offsets[x] = static_cast<int16_t>(means[x] - static_cast<int32_t>(neighbours >> kNeighboursShift));
  }
}

void correct_row(uint8_t* __restrict row, const int16_t* __restrict offsets, int32_t width) {
  for (int32_t x = 0; x < width; x++) {
    const uint8_t corrected = quo::take_offset_off(row[x], offsets[x]);
    row[x] = row[x] <= kFingerLimit ? corrected : row[x];
  }
}

void correct(const uint8_t* source, uint8_t* destination, const int16_t* offsets, int32_t width, int32_t height) {
  for (int32_t y = 0; y < height; y++) {
    if (destination != source) quo_memcpy(destination, source, static_cast<uint32_t>(width));
    correct_row(destination, offsets, width);
    source += width;
    destination += width;
  }
}

}  // namespace

uint8_t RemoveVerticalStripes(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height) {
  return RemoveVerticalStripes_All(source, destination, width, height);
}

uint8_t RemoveVerticalStripes_All(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height) {
  const int32_t columns = std::max(width, 0);
  const auto entries = static_cast<uint32_t>(columns);
  quo::Scratch<uint32_t> sums;
  quo::Scratch<uint8_t> counts;
  quo::Scratch<int16_t> offsets;
  quo::Scratch<uint8_t> means;
  if (!sums.allocate(entries) || !counts.allocate(entries) || !means.allocate(entries)) return 0;
  take_means(source, columns, height, sums.get(), counts.get(), means.get());
  counts.reset();

  sum_up(means.get(), sums.get(), columns);
  if (!offsets.allocate(entries)) return 0;
  find_offsets(means.get(), sums.get(), offsets.get(), columns);
  sums.reset();

  if (columns > 0) correct(source, destination, offsets.get(), columns, height);
  return 1;
}
