#include "frame/scratch.h"
#include "quality/block_scores.h"
#include "quality/direction_bins.h"
#include "quality/orientation_field.h"

namespace {

// Marks in the orientation field, above every orientation.
constexpr uint8_t kFlatPixel = 254;
constexpr uint8_t kBackgroundPixel = 255;

constexpr uint8_t kBrightestFlat = 179;  // a pixel without gradients that is brighter is background
constexpr int64_t kEnergyPerPixel = 20;  // a window with no more gradient energy than this has no orientation

constexpr double kFingerShare = 0.8;    // of a block's pixels, or it is background
constexpr float kDominantShare = 0.8F;  // of a block's finger pixels in one bin, or it has no direction
constexpr double kBrightMargin = 3.5;   // gray levels above the mean from which a pixel counts as bright
constexpr double kBackgroundMean = 255.0;

// Bins of a block's histogram: flat pixels, the eight bins of orientations, background pixels.
constexpr uint32_t kBins = 9;
constexpr uint32_t kBackgroundBin = kBins;

/** The histogram bin of every value of the field. */
struct BinTable {
  uint8_t of[256] = {};

  constexpr BinTable() {
    for (int32_t degrees = 0; degrees < kFlatPixel; degrees++) {
      of[degrees] = static_cast<uint8_t>(quo::direction_bin(degrees) + 1);
    }
    of[kFlatPixel] = 0;
    of[kBackgroundPixel] = kBackgroundBin;
  }
};
constexpr BinTable kBin;

// No sum is above 2^31 - 1, which a radius of 2^20 exceeds by far.
int64_t energy_threshold(int32_t radius) {
  const int64_t side = 2 * int64_t{radius < 0 ? 0 : radius > 1 << 20 ? 1 << 20 : radius} + 1;
  return kEnergyPerPixel * side * side;
}

// Replaces orientations that too little gradient energy supports; returns the number of background pixels.
uint32_t mark_weak_pixels(const int32_t* __restrict energy, const uint8_t* __restrict gray, int64_t threshold,
                          uint8_t* __restrict field, int32_t count) {
  uint32_t background = 0;
  for (int32_t x = 0; x < count; x++) {
    const uint8_t mark = gray[x] > kBrightestFlat ? kBackgroundPixel : kFlatPixel;
    field[x] = energy[x] > threshold ? field[x] : mark;
    background += field[x] == kBackgroundPixel ? 1 : 0;
  }
  return background;
}

// Fills the orientation field; returns the number of background pixels.
uint64_t fill_field(const quo::HalfFrame& half, const quo::OrientationTables& tables, const uint32_t* energy,
                    int64_t threshold, uint8_t* field) {
  int32_t window_energy[quo::kColumnsAtOnce];
  uint64_t background = 0;
  for (int32_t y = 0; y < half.height; y++) {
    for (int32_t x = 0; x < half.width; x += quo::kColumnsAtOnce) {
      const int32_t left = half.width - x, count = left < quo::kColumnsAtOnce ? left : quo::kColumnsAtOnce;
      uint8_t* const row = field + half.row(y) + x;
      quo::orient_pixels(half, tables, x, y, count, row);
      quo::window_sums(half, energy, x, y, count, window_energy);
      background += mark_weak_pixels(window_energy, half.pixels + half.row(y) + x, threshold, row, count);
    }
  }
  return background;
}

/** One block of the half-size frame and of its field. */
struct Block {
  const uint8_t* gray;
  const uint8_t* field;
  int32_t stride;
  int32_t width;
  int32_t height;

  int64_t area() const { return int64_t{width} * height; }

  /** Runs over the gray values row by row. */
  template <typename Visit>
  void for_each_gray(Visit visit) const {
    for (int32_t y = 0; y < height; y++) {
      const uint8_t* const row = gray + static_cast<ptrdiff_t>(y) * stride;
      for (int32_t x = 0; x < width; x++) visit(row[x]);
    }
  }
};

struct Histogram {
  uint32_t counts[kBins + 1] = {};  // the background last

  explicit Histogram(const Block& block) {
    for (int32_t y = 0; y < block.height; y++) {
      const uint8_t* const row = block.field + static_cast<ptrdiff_t>(y) * block.stride;
      for (int32_t x = 0; x < block.width; x++) counts[kBin.of[row[x]]]++;
    }
  }

  /** The fullest bin when it dominates the finger pixels, else 0; the lowest one among equals. */
  int8_t dominant_bin(uint32_t finger) const {
    uint32_t fullest = 0;
    for (uint32_t bin = 1; bin < kBins; bin++) {
      if (counts[bin] > counts[fullest]) fullest = bin;
    }
    const bool dominates = static_cast<float>(counts[fullest]) > static_cast<float>(finger) * kDominantShare;
    return static_cast<int8_t>(dominates ? fullest : 0);
  }
};

// Mean, deviation and bright percentage of the pixels below `limit`. The deviations are added up in the order of the
// pixels, since neither the mean nor the differences from it are exact in general.
void measure_gray(const Block& block, int32_t limit, quo_block_record& record) {
  uint64_t sum = 0, count = 0;
  block.for_each_gray([&](uint8_t gray) {
    sum += gray < limit ? gray : 0;
    count += gray < limit ? 1 : 0;
  });
  record.mean = record.deviation = record.bright = 0.0;
  if (count == 0) return;
  const double pixels = static_cast<double>(count), mean = static_cast<double>(sum) / pixels;
  const auto threshold = static_cast<int32_t>(mean + kBrightMargin);
  double deviation = 0.0;
  uint64_t brighter = 0;
  block.for_each_gray([&](uint8_t gray) {
    if (gray >= limit) return;
    const double difference = gray - mean;
    deviation += difference < 0.0 ? -difference : difference;
    brighter += gray > threshold ? 1 : 0;
  });
  record.mean = mean;
  record.deviation = deviation / pixels;
  record.bright = static_cast<double>(brighter * 100 / count);
}

void set_background(quo_block_record& record) {
  record.direction = quo::kBackgroundBlock;
  record.mean = kBackgroundMean;
  record.deviation = 0.0;
  record.bright = 0.0;
}

void summarise(const Block& block, quo_block_record& record) {
  const Histogram histogram(block);
  const int64_t finger = block.area() - histogram.counts[kBackgroundBin];
  if (static_cast<int64_t>(static_cast<double>(block.area()) * kFingerShare) > finger) {
    set_background(record);
    return;
  }
  record.direction = histogram.dominant_bin(static_cast<uint32_t>(finger));
  const bool whole = finger == block.area();
  measure_gray(block, whole ? 256 : 255, record);
}

void summarise_blocks(const quo::HalfFrame& half, const uint8_t* field, int32_t block_width, int32_t block_height,
                      quo_block_record* record, int32_t columns, int32_t rows) {
  for (int32_t by = 0; by < rows; by++) {
    for (int32_t bx = 0; bx < columns; bx++) {
      if (block_width < 1 || block_height < 1) {
        set_background(*record++);
        continue;
      }
      const size_t corner = half.row(by * block_height) + static_cast<size_t>(bx * block_width);
      summarise({half.pixels + corner, field + corner, half.width, block_width, block_height}, *record++);
    }
  }
}

}  // namespace

uint32_t BlockOrientation(const uint8_t* image, int32_t width, int32_t height, quo_block_record* blocks, int32_t nbx,
                          int32_t nby, int32_t radius, uint8_t* area) {
  const uint64_t cells = quo::pixel_count(width / 2, height / 2);
  if (cells > quo::kMostCells) return QUO_NO_MEMORY;
  quo::Scratch<uint8_t> gray, field;
  quo::Scratch<uint32_t> energy, product, difference, row_sums;
  if (!gray.allocate(cells)) return QUO_NO_MEMORY;
  ZoomImg(image, gray.get(), width, height, 1);
  if (!energy.allocate(cells) || !product.allocate(cells) || !difference.allocate(cells) || !row_sums.allocate(cells)) {
    return QUO_NO_MEMORY;
  }
  const quo::HalfFrame half(gray.get(), width / 2, height / 2, radius);
  const quo::OrientationTables tables{product.get(), difference.get()};
  quo::sum_energy(half, energy.get());
  quo::sum_orientation(half, tables);
  row_sums.reset();  // Rows are summed in place; the array belongs to the requests that a program's hooks rely on.
  if (!field.allocate(cells)) return QUO_NO_MEMORY;
  const uint64_t background = fill_field(half, tables, energy.get(), energy_threshold(radius), field.get());
  quo::store(area, static_cast<uint8_t>(cells == 0 ? 0 : (cells - background) * 100 / cells));
  product.reset();
  difference.reset();
  if (nbx <= 0 || nby <= 0) return QUO_OK;
  summarise_blocks(half, field.get(), width / nbx / 2, height / nby / 2, blocks, nbx, nby);
  return QUO_OK;
}
