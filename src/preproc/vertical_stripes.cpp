#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "preproc/column_stripes.h"

namespace {

constexpr uint8_t kFingerLimit = 234;  // pixels above are background or saturated
constexpr int32_t kReach = 4;          // neighbours of a column on either side
constexpr int32_t kNeighboursShift = 3;
static_assert(2 * kReach == 1 << kNeighboursShift);

// At most 255 * width: 32 bits hold it for 2^24 columns, and differences of nine columns beyond.
void sum_up(const uint8_t* means, uint32_t* run, int32_t width) {
  uint32_t sum = 0;
  for (int32_t x = 0; x < width; x++) run[x] = sum += means[x];
}

// How far the mean of each column stands from the mean of its neighbours. The columns without a full set of neighbours
// beside them, and the fifth from the left, keep 0.
void find_offsets(const uint8_t* means, const uint32_t* run, uint8_t* darken, uint8_t* lift, int32_t width) {
  for (int32_t x = 0; x < width; x++) darken[x] = lift[x] = 0;
  for (int32_t x = kReach + 1; x < width - kReach; x++) {
    const uint32_t neighbours = run[x + kReach] - run[x - kReach - 1] - means[x];
    const auto offset = quo::split_offset(means[x] - static_cast<int32_t>(neighbours >> kNeighboursShift));
    darken[x] = offset.darken;
    lift[x] = offset.lift;
  }
}

void correct_row(uint8_t* __restrict row, const uint8_t* __restrict darken, const uint8_t* __restrict lift,
                 int32_t width) {
  for (int32_t x = 0; x < width; x++) {
    const uint8_t corrected = quo::correct_pixel(row[x], darken[x], lift[x]);
    row[x] = row[x] <= kFingerLimit ? corrected : row[x];
  }
}

}  // namespace

uint8_t RemoveVerticalStripes(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height) {
  return RemoveVerticalStripes_All(source, destination, width, height);
}

uint8_t RemoveVerticalStripes_All(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height) {
  const auto columns = static_cast<uint32_t>(std::max(width, 0));
  quo::Scratch<uint32_t> sums;
  quo::Scratch<uint8_t> counts;
  quo::Scratch<uint8_t> means;
  quo::Scratch<uint8_t> offsets;  // all that darken, then all that lift
  if (!sums.allocate(columns) || !counts.allocate(columns) || !means.allocate(columns)) return 0;
  quo::column_means(source, width, width, height, kFingerLimit, sums.get(), counts.get(), means.get());
  counts.reset();

  sum_up(means.get(), sums.get(), width);
  if (!offsets.allocate(uint64_t{2} * columns)) return 0;
  uint8_t* const darken = offsets.get();
  uint8_t* const lift = darken + columns;
  find_offsets(means.get(), sums.get(), darken, lift, width);
  sums.reset();

  if (columns == 0) return 1;
  for (int32_t y = 0; y < height; y++) {
    if (destination != source) quo_memcpy(destination, source, columns);
    correct_row(destination, darken, lift, width);
    source += width;
    destination += width;
  }
  return 1;
}
