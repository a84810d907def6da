#include <algorithm>

#include "preproc/gray_balance.h"
#include "quoFPAlg.h"

// Box sums in 16 bits from column sums that slide down the band, in place of the integral image: half the memory
// traffic and twice the vector lanes. Beyond its edges the band continues with zeros, so that sums need no clipping;
// only the number of pixels that a sum is divided by does.
namespace quo {
namespace {

constexpr int32_t kRadius = 3;
constexpr int32_t kWindow = 2 * kRadius + 1;
constexpr int32_t kKept = kRadius + 1;  // a row leaves the window this many rows after it has been changed
static_assert(kWindow * kWindow * 255 <= UINT16_MAX);

// A clipped window is kRadius + 1 to kWindow pixels wide and as many high.
constexpr int32_t kHeights = kWindow - kRadius;

// sum / area = (sum * reciprocal(area)) >> kReciprocalShift, truncated. With error = reciprocal(area) * area - 2^shift
// the product is 2^shift * sum / area + sum * error / area; the quotient stays below the next integer, which is at
// least 1 / area away, while sum * error < 2^shift.
constexpr int kReciprocalShift = 19;
constexpr uint32_t reciprocal(uint32_t area) { return ((1U << kReciprocalShift) + area - 1) / area; }

constexpr bool division_is_exact() {
  for (uint32_t width = kRadius + 1; width <= kWindow; width++) {
    for (uint32_t height = kRadius + 1; height <= kWindow; height++) {
      const uint32_t area = width * height;
      const uint32_t error = reciprocal(area) * area - (1U << kReciprocalShift);
      if (reciprocal(area) > UINT16_MAX || 255 * area * error >= 1U << kReciprocalShift) return false;
    }
  }
  return true;
}
static_assert(division_is_exact());

// Pixels of a window around `centre` that lie within 0 .. size - 1.
int32_t clipped_extent(int32_t centre, int32_t size) {
  return std::min(centre + kRadius + 1, size) - std::max(centre - kRadius, 0);
}

// Arrays carved out of the work memory: 18 * width + 14 bytes of at least 32 * (width + 1).
struct Work {
  uint16_t* sums;  // of the columns within the window, between kRadius zeros on either side
  uint16_t* triples;
  uint16_t* reciprocals[kHeights];  // of the areas along a row, for each clipped height
  uint8_t* kept[kKept];             // row y as it was before it was changed, at y % kKept
  uint8_t* means;                   // of the windows of a row
  uint8_t* zeros;                   // a row beyond the band

  Work(uint32_t* memory, int32_t width) {
    auto* words = reinterpret_cast<uint16_t*>(memory);
    sums = words;
    words += width + 2 * kRadius;
    triples = words;
    words += width + 1;
    for (uint16_t*& row : reciprocals) {
      row = words;
      words += width;
    }
    auto* bytes = reinterpret_cast<uint8_t*>(words);
    for (uint8_t*& row : kept) {
      row = bytes;
      bytes += width;
    }
    means = bytes;
    zeros = means + width;
  }
};

// The reciprocals along a row, which differ only within kRadius of its ends.
void fill_reciprocals(uint16_t* row, int32_t width, int32_t height) {
  const auto reciprocal_for = [height](int32_t columns) {
    return static_cast<uint16_t>(reciprocal(static_cast<uint32_t>(columns * height)));
  };
  const uint16_t whole = reciprocal_for(kWindow);
  for (int32_t x = 0; x < width; x++) row[x] = whole;
  for (int32_t x = 0; x < kRadius; x++) row[x] = row[width - 1 - x] = reciprocal_for(x + kRadius + 1);
}

void prepare(const Work& work, int32_t width) {
  for (int32_t x = 0; x < width + 2 * kRadius; x++) work.sums[x] = 0;
  for (int32_t i = 0; i < kHeights; i++) fill_reciprocals(work.reciprocals[i], width, i + kRadius + 1);
  for (uint8_t* const row : work.kept) quo_memset(row, 0, static_cast<uint32_t>(width));
  quo_memset(work.zeros, 0, static_cast<uint32_t>(width));
}

// Moves the window one row down. At most kWindow rows are in it, so the sums stay below 2^11.
void slide(const uint8_t* __restrict entering, const uint8_t* __restrict leaving, uint16_t* __restrict sums,
           int32_t width) {
  for (int32_t x = 0; x < width; x++) sums[x] = static_cast<uint16_t>(sums[x] + entering[x] - leaving[x]);
}

// Every second column sum of a window: two of these and one column make up its seven. Loads that do not repeat from one
// pixel to the next keep the loops free of a value carried along, which some compilers do not vectorise.
void add_triples(const uint16_t* __restrict sums, uint16_t* __restrict triples, int32_t count) {
  for (int32_t x = 0; x < count; x++) triples[x] = static_cast<uint16_t>(sums[x] + sums[x + 2] + sums[x + 4]);
}

void take_means(const uint16_t* __restrict sums, const uint16_t* __restrict triples,
                const uint16_t* __restrict reciprocals, uint8_t* __restrict means, int32_t width) {
  for (int32_t x = 0; x < width; x++) {
    const auto sum = static_cast<uint16_t>(triples[x] + triples[x + 1] + sums[x + 6]);
    const auto high = static_cast<uint16_t>((static_cast<uint32_t>(sum) * reciprocals[x]) >> 16);
    means[x] = static_cast<uint8_t>(high >> (kReciprocalShift - 16));
  }
}

int16_t limit(int16_t value, int16_t low, int16_t high) {
  const int16_t below = value < high ? value : high;
  return below > low ? below : low;
}

// With a gain of 2 or more, differences beyond -64 and 63 saturate, so limiting them to 8 bits changes nothing and
// keeps the product within 16: 255 * -128 + 128 and 255 * 127 + 128.
void stretch(const uint8_t* __restrict means, uint8_t* __restrict row, int32_t width, int16_t gain) {
  for (int32_t x = 0; x < width; x++) {
    const int16_t difference = limit(static_cast<int16_t>(row[x] - means[x]), -128, 127);
    const auto stretched = static_cast<int16_t>(difference * gain + kBalanceCentre);
    const auto balanced = static_cast<uint8_t>(limit(stretched, 0, 255));
    row[x] = row[x] < kBalanceLimit ? balanced : row[x];
  }
}

}  // namespace

void balance_band_7x7(const Band& band, uint8_t gain, uint32_t* memory) {
  const Work work(memory, band.width);
  prepare(work, band.width);
  for (int32_t y = -kRadius; y < band.rows - band.bottom_context; y++) {
    uint8_t* const kept = work.kept[(y + kKept) % kKept];
    const int32_t next = y + kRadius;
    slide(next < band.rows ? band.row(next) : work.zeros, kept, work.sums + kRadius, band.width);
    if (y < 0) continue;
    quo_memcpy(kept, band.row(y), static_cast<uint32_t>(band.width));
    if (!band.changes(y)) continue;
    const int32_t height = clipped_extent(y, band.rows);
    add_triples(work.sums, work.triples, band.width + 1);
    take_means(work.sums, work.triples, work.reciprocals[height - kRadius - 1], work.means, band.width);
    stretch(work.means, band.row(y), band.width, gain);
  }
}

}  // namespace quo
