#include "quality/block_samples.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>

#include "frame/multiversion.h"

namespace quo {

namespace {

constexpr double kBrightMargin = 3.5;  // gray levels above the mean from which a sample counts as bright
constexpr size_t kBlocks = 32;         // neighbours that are measured together

void store(double mean, double deviations, int32_t brighter, size_t count, quo_block_record& record) {
  record.mean = mean;
  record.deviation = deviations / static_cast<double>(count);
  record.bright = brighter * 100 / static_cast<int32_t>(count);
}

int32_t bright_threshold(double mean) { return static_cast<int32_t>(mean + kBrightMargin); }

// The samples of one block, each beside the one before, but for white pixels; returns their number.
size_t take_samples(const uint8_t* __restrict block, int32_t width, int32_t size, int32_t step,
                    uint8_t* __restrict samples) {
  size_t count = 0;
  for (int32_t y = 0; y < size; y += step) {
    const uint8_t* const row = block + static_cast<ptrdiff_t>(y) * width;
    for (int32_t x = 0; x < size; x += step) {
      samples[count] = row[x];
      count += row[x] != kWhite ? 1 : 0;
    }
  }
  return count;
}

constexpr size_t kMostSamples = 25;  // in a block

// A block that has white pixels. The deviations are added up in the order of the samples: a mean of other than 16
// samples is rounded, and so are the differences from it.
void measure_block(const uint8_t* block, int32_t width, int32_t size, int32_t step, quo_block_record& record) {
  uint8_t samples[kMostSamples];
  const size_t count = take_samples(block, width, size, step, samples);
  if (count == 0) {
    record.mean = kWhite;
    record.deviation = 0.0;
    record.bright = 0.0;
    return;
  }
  int32_t sum = 0, brighter = 0;
  for (size_t k = 0; k < count; k++) sum += samples[k];
  const double mean = sum / static_cast<double>(count);
  const int32_t threshold = bright_threshold(mean);
  double deviations = 0.0;
  for (size_t k = 0; k < count; k++) {
    deviations += std::fabs(samples[k] - mean);
    brighter += samples[k] > threshold ? 1 : 0;
  }
  store(mean, deviations, brighter, count, record);
}

// Blocks of ten have 25 samples. Those of neighbours: number k of block i at [k][i].
constexpr int32_t kSide = 10, kSampleStep = 2;
constexpr size_t kSamples = 25;
using Samples = int16_t[kSamples][kBlocks];
static_assert(kSamples * kWhite <= INT16_MAX);

void take_neighbours(const uint8_t* first, int32_t width, size_t count, Samples& samples) {
  constexpr size_t kPerRow = kSide / kSampleStep;
  for (size_t i = 0; i < count; i++) {
    const uint8_t* row = first + static_cast<ptrdiff_t>(i) * kSide;
    for (size_t k = 0; k < kSamples; k += kPerRow, row += static_cast<ptrdiff_t>(kSampleStep) * width) {
      for (size_t x = 0; x < kPerRow; x++) samples[k + x][i] = row[x * kSampleStep];
    }
  }
}

/** Measures of neighbours. */
struct Measures {
  double means[kBlocks];
  double deviations[kBlocks];
  int16_t brighter[kBlocks];
  int16_t highest[kBlocks];
};

QUO_MULTIVERSION
void measure(const Samples& __restrict samples, size_t count, Measures& __restrict measures) {
  int16_t sums[kBlocks], thresholds[kBlocks];
  for (size_t i = 0; i < count; i++) {
    int16_t sum = 0, highest = 0;
    for (const auto& of_blocks : samples) {
      sum = static_cast<int16_t>(sum + of_blocks[i]);
      highest = highest > of_blocks[i] ? highest : of_blocks[i];
    }
    sums[i] = sum;
    measures.highest[i] = highest;
  }
  for (size_t i = 0; i < count; i++) {
    measures.means[i] = sums[i] / static_cast<double>(kSamples);
    thresholds[i] = static_cast<int16_t>(bright_threshold(measures.means[i]));
  }
  for (size_t i = 0; i < count; i++) {
    double deviations = 0.0;
    for (const auto& of_blocks : samples) deviations += std::fabs(of_blocks[i] - measures.means[i]);
    measures.deviations[i] = deviations;
  }
  for (size_t i = 0; i < count; i++) {
    int16_t brighter = 0;
    for (const auto& of_blocks : samples) brighter = static_cast<int16_t>(brighter + (of_blocks[i] > thresholds[i]));
    measures.brighter[i] = brighter;
  }
}

void measure_blocks_of_25_samples(const uint8_t* first, int32_t width, size_t count, quo_block_record* records) {
  Samples samples;
  take_neighbours(first, width, count, samples);
  Measures measures;
  measure(samples, count, measures);
  for (size_t i = 0; i < count; i++) {
    if (measures.highest[i] == kWhite) {
      measure_block(first + static_cast<ptrdiff_t>(i) * kSide, width, kSide, kSampleStep, records[i]);
    } else {
      store(measures.means[i], measures.deviations[i], measures.brighter[i], kSamples, records[i]);
    }
  }
}

// Sixteen samples a block in four rows of four; those of neighbours beside each other.
constexpr size_t kFour = 4;
constexpr size_t kSixteen = kFour * kFour;
constexpr size_t kColumns = kBlocks * kFour;
static_assert(kSixteen * kWhite <= INT16_MAX && kFour * kSixteen * kWhite <= UINT16_MAX);

static_assert(std::endian::native == std::endian::little, "the first pixel is the lowest byte of a step");

// The first pixel of every step: whole steps are loaded, as vectors can, and end where a block does.
template <typename Step>
void take_row(const uint8_t* __restrict row, size_t columns, int16_t* __restrict samples) {
  for (size_t i = 0; i < columns; i++) {
    Step pixels;
    __builtin_memcpy(&pixels, row + i * sizeof pixels, sizeof pixels);
    samples[i] = static_cast<int16_t>(pixels & 0xFF);
  }
}

/** Sums over the four rows, column by column. */
struct ColumnSums {
  int16_t samples[kColumns];
  uint16_t deviations[kColumns];  // in sixteenths
  uint16_t brighter[kColumns];
  uint16_t white[kColumns];
};

template <typename Sum>
int32_t sum_of_block(const Sum* columns, size_t block) {
  const Sum* const four = columns + block * kFour;
  return four[0] + four[1] + four[2] + four[3];
}

// A mean of sixteen samples and the differences from it are whole sixteenths, which need no rounding: their sum has no
// order.
QUO_MULTIVERSION
void measure_columns(const int16_t (&__restrict samples)[kFour][kColumns], size_t columns,
                     ColumnSums& __restrict sums) {
  constexpr auto kMargin = static_cast<int32_t>(16 * kBrightMargin);
  for (size_t i = 0; i < columns; i++) {
    sums.samples[i] = static_cast<int16_t>(samples[0][i] + samples[1][i] + samples[2][i] + samples[3][i]);
  }
  int16_t of_block[kColumns];
  for (size_t i = 0; i < columns; i += kFour) {
    const auto sum = static_cast<int16_t>(sum_of_block(sums.samples, i / kFour));
    for (size_t k = 0; k < kFour; k++) of_block[i + k] = sum;
  }
  for (size_t i = 0; i < columns; i++) {
    const int16_t sum = of_block[i];
    const auto threshold = static_cast<int16_t>((sum + kMargin) >> 4);
    uint16_t deviation = 0, brighter = 0, white = 0;
    for (const auto& row : samples) {
      const auto difference = static_cast<int16_t>(16 * row[i] - sum);
      deviation = static_cast<uint16_t>(deviation + (difference < 0 ? -difference : difference));
      brighter = static_cast<uint16_t>(brighter + (row[i] > threshold));
      white = static_cast<uint16_t>(white + (row[i] == kWhite));
    }
    sums.deviations[i] = deviation;
    sums.brighter[i] = brighter;
    sums.white[i] = white;
  }
}

template <typename Step>
void measure_blocks_of_16_samples(const uint8_t* first, int32_t width, size_t count, quo_block_record* records) {
  constexpr int32_t kStep = sizeof(Step), kSize = kStep * int32_t{kFour};
  constexpr double kSixteenth = 1.0 / kSixteen;
  int16_t samples[kFour][kColumns];
  for (size_t y = 0; y < kFour; y++) {
    take_row<Step>(first + static_cast<ptrdiff_t>(y) * kStep * width, count * kFour, samples[y]);
  }
  ColumnSums sums;
  measure_columns(samples, count * kFour, sums);
  for (size_t i = 0; i < count; i++) {
    if (sum_of_block(sums.white, i) > 0) {
      measure_block(first + static_cast<ptrdiff_t>(i) * kSize, width, kSize, kStep, records[i]);
    } else {
      store(sum_of_block(sums.samples, i) * kSixteenth, sum_of_block(sums.deviations, i) * kSixteenth,
            sum_of_block(sums.brighter, i), kSixteen, records[i]);
    }
  }
}

}  // namespace

void measure_blocks(const GrayFrame& frame, int32_t size, int32_t y, quo_block_record* blocks) {
  const auto measure_neighbours = size == 16   ? measure_blocks_of_16_samples<uint32_t>
                                  : size == 10 ? measure_blocks_of_25_samples
                                               : measure_blocks_of_16_samples<uint16_t>;
  const int32_t across = frame.width / size;
  for (int32_t i = 0; i < across; i += int32_t{kBlocks}) {
    const size_t count = std::min(kBlocks, static_cast<size_t>(across - i));
    measure_neighbours(frame.row(y) + i * size, frame.width, count, blocks + i);
  }
}

}  // namespace quo
