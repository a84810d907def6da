#include <algorithm>
#include <cstddef>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "preproc/column_stripes.h"

namespace {

constexpr int32_t kSector = 16;                     // columns
constexpr int32_t kMeans = 4;                       // first columns of a sector whose means are taken
constexpr uint8_t kCountedLimit = quo::kWhite - 1;  // white pixels are neither counted nor changed
static_assert(quo::kColumnStrip % kSector == 0);

struct Means {
  uint8_t column[kMeans];
};

// Means of the first columns of each sector, by whole strips of columns: the other columns of a sector cost nothing
// that vector registers would not spend anyway.
void sector_means(const uint8_t* image, int32_t width, int32_t height, Means* means, int32_t sectors) {
  constexpr int32_t kStripSectors = quo::kColumnStrip / kSector;
  uint32_t sums[quo::kColumnStrip];
  uint8_t counts[quo::kColumnStrip];
  uint8_t columns[quo::kColumnStrip];
  for (int32_t first = 0; first < sectors; first += kStripSectors) {
    const int32_t count = std::min(kStripSectors, sectors - first);
    quo::column_means(image + first * kSector, width, count * kSector, height, kCountedLimit, sums, counts, columns);
    for (int32_t s = 0; s < count; s++) {
      for (int32_t j = 0; j < kMeans; j++) means[first + s].column[j] = columns[s * kSector + j];
    }
  }
}

// Offset of column j of a sector from the mean of itself and its two neighbours.
int16_t column_offset(const Means& means, int32_t j) {
  return static_cast<int16_t>(means.column[j] - (means.column[j - 1] + means.column[j] + means.column[j + 1]) / 3);
}

void correct_column(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height, int16_t offset) {
  if (offset == 0) return;
  for (int32_t y = 0; y < height; y++) {
    *destination = *source <= kCountedLimit ? quo::correct_pixel(*source, offset) : *source;
    source += width;
    destination += width;
  }
}

}  // namespace

uint8_t RemoveVerticalStripes_Sector(const uint8_t* source, uint8_t* destination, int32_t width, int32_t height) {
  const int32_t sectors = std::max(width, 0) / kSector;
  quo::Scratch<Means> means;
  if (!means.allocate(static_cast<uint32_t>(sectors))) return 0;
  sector_means(source, width, height, means.get(), sectors);
  for (int32_t s = 0; s < sectors; s++) {
    for (const int32_t j : {1, 2}) {
      const int32_t x = s * kSector + j;
      correct_column(source + x, destination + x, width, height, column_offset(means[static_cast<size_t>(s)], j));
    }
  }
  return 1;
}
