#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "preproc/column_counts.h"
#include "preproc/stripe_correction.h"

namespace {

constexpr int32_t kSector = 16;         // columns
constexpr int32_t kMeasured = 4;        // first columns of a sector, whose means are taken
constexpr int32_t kStripSectors = 64;   // sectors that are counted and corrected together
constexpr int32_t kBandRows = 8;        // rows that are corrected together
constexpr uint8_t kCountedLimit = 254;  // white pixels are neither counted nor changed

struct Means {
  uint8_t column[kMeasured];  // kWhite for a column without a counted pixel
};

// The pixels of all columns are counted: a vector of a few columns costs no less than one of a whole sector.
void take_strip_means(const uint8_t* image, int32_t width, int32_t height, Means* means, int32_t sectors) {
  uint16_t partial_sums[kStripSectors * kSector];
  uint8_t partial_counts[kStripSectors * kSector];
  uint64_t sums[kStripSectors][kMeasured];
  uint32_t counts[kStripSectors][kMeasured];
  for (int32_t s = 0; s < sectors; s++) {
    for (int32_t j = 0; j < kMeasured; j++) sums[s][j] = counts[s][j] = 0;
  }
  for (int32_t y = 0; y < height;) {
    const int32_t rows = std::min(quo::kPartialRows, height - y);
    const uint8_t* const top = image + static_cast<ptrdiff_t>(y) * width;
    quo::count_columns(top, width, sectors * kSector, rows, kCountedLimit, partial_sums, partial_counts);
    for (int32_t s = 0; s < sectors; s++) {
      for (int32_t j = 0; j < kMeasured; j++) {
        sums[s][j] += partial_sums[s * kSector + j];
        counts[s][j] += partial_counts[s * kSector + j];
      }
    }
    y += rows;
  }
  for (int32_t s = 0; s < sectors; s++) {
    for (int32_t j = 0; j < kMeasured; j++) {
      means[s].column[j] = counts[s][j] != 0 ? static_cast<uint8_t>(sums[s][j] / counts[s][j]) : quo::kWhite;
    }
  }
}

void take_means(const uint8_t* image, int32_t width, int32_t height, Means* means, int32_t sectors) {
  for (int32_t s = 0; s < sectors;) {
    const int32_t strip = std::min(kStripSectors, sectors - s);
    take_strip_means(image + s * kSector, width, height, means + s, strip);
    s += strip;
  }
}

// Offset of a column from the mean of itself and its two neighbours.
int16_t offset_of(const Means& means, int32_t j) {
  return static_cast<int16_t>(means.column[j] - (means.column[j - 1] + means.column[j] + means.column[j + 1]) / 3);
}

struct Correction {
  int32_t column;
  int16_t offset;
};

// Lists the columns of some sectors that differ from their neighbours. Returns their number.
int32_t list_corrections(const Means* means, int32_t sectors, Correction* corrections) {
  int32_t count = 0;
  for (int32_t s = 0; s < sectors; s++) {
    for (const int32_t j : {1, 2}) {
      const int16_t offset = offset_of(means[s], j);
      if (offset != 0) corrections[count++] = {s * kSector + j, offset};
    }
  }
  return count;
}

void correct_column(const uint8_t* source, uint8_t* destination, int32_t width, int32_t rows, int16_t offset) {
  for (int32_t y = 0; y < rows; y++) {
    const ptrdiff_t i = static_cast<ptrdiff_t>(y) * width;
    destination[i] = source[i] <= kCountedLimit ? quo::take_offset_off(source[i], offset) : source[i];
  }
}

// Few rows at a time: the pixels of a column of a wide frame share so few places of the cache that more rows would
// drive one another out before the next column needs them.
void correct_strip(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height, const Means* means,
                   int32_t sectors) {
  Correction corrections[kStripSectors * 2];
  const int32_t count = list_corrections(means, sectors, corrections);
  for (int32_t y = 0; y < height;) {
    const int32_t rows = std::min(kBandRows, height - y);
    const ptrdiff_t band = static_cast<ptrdiff_t>(y) * width;
    for (int32_t i = 0; i < count; i++) {
      const ptrdiff_t top = band + corrections[i].column;
      correct_column(source + top, destination + top, width, rows, corrections[i].offset);
    }
    y += rows;
  }
}

void correct(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height, const Means* means,
             int32_t sectors) {
  for (int32_t s = 0; s < sectors;) {
    const int32_t strip = std::min(kStripSectors, sectors - s);
    correct_strip(source + s * kSector, destination + s * kSector, width, height, means + s, strip);
    s += strip;
  }
}

}  // namespace

uint8_t RemoveVerticalStripes_Sector(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height) {
  const int32_t sectors = std::max(width, 0) / kSector;
  quo::Scratch<Means> means;
  if (!means.allocate(static_cast<uint32_t>(sectors))) return 0;
  if (height <= 0) return 1;
  take_means(source, width, height, means.get(), sectors);
  correct(source, destination, width, height, means.get(), sectors);
  return 1;
}
