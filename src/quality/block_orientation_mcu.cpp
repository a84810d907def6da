#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "quality/block_scores.h"

namespace {

using quo::GrayFrame;

constexpr uint32_t kNoBlockOutput = 2;  // result code of this function alone

constexpr double kBrightMargin = 3.5;           // gray levels above the mean from which a sample counts as bright
constexpr double kFlatDeviation = 10.0;         // a bright block below this deviation is background
constexpr double kBackgroundMean = 180.0;       // from this mean on a block is bright
constexpr double kDirectionDeviation = 6.0;     // a block needs a higher deviation to have a direction
constexpr uint32_t kLineContrast = 50;          // sums of a pair of lines up to here say nothing
constexpr float kClearRatioDifference = 0.45F;  // between the pairs that differ most and least
constexpr float kClearRatio = 0.5F;             // of the pair that differs most

// The eight lines of the direction test, each by six points around the centre; lines d and d + 4 are perpendicular.
constexpr int kLines = 8;
constexpr int kPairs = kLines / 2;
constexpr int kPoints = 6;
constexpr int32_t kReach = 6;
constexpr int8_t kLineDy[kLines][kPoints] = {{0, 0, 0, 0, 0, 0},    {3, 2, 1, -1, -2, -3}, {6, 4, 2, -2, -4, -6},
                                             {6, 4, 2, -2, -4, -6}, {6, 4, 2, -2, -4, -6}, {6, 4, 2, -2, -4, -6},
                                             {6, 4, 2, -2, -4, -6}, {3, 2, 1, -1, -2, -3}};
constexpr int8_t kLineDx[kLines][kPoints] = {{-6, -4, -2, 2, 4, 6}, {-6, -4, -2, 2, 4, 6}, {-6, -4, -2, 2, 4, 6},
                                             {-3, -2, -1, 1, 2, 3}, {0, 0, 0, 0, 0, 0},    {3, 2, 1, -1, -2, -3},
                                             {6, 4, 2, -2, -4, -6}, {6, 4, 2, -2, -4, -6}};

bool has_room_for_lines(const GrayFrame& frame) { return frame.width > 2 * kReach && frame.height > 2 * kReach; }

/** The points of the lines as distances from the centre in a frame's memory. */
struct LineOffsets {
  ptrdiff_t at[kLines][kPoints];

  explicit LineOffsets(int32_t width) {
    for (int line = 0; line < kLines; line++) {
      for (int i = 0; i < kPoints; i++) at[line][i] = ptrdiff_t{kLineDy[line][i]} * width + kLineDx[line][i];
    }
  }
};

int32_t block_size(int32_t width, int32_t height) {
  const int32_t shorter = width < height ? width : height;
  return shorter >= 192 ? 16 : shorter >= 160 ? 10 : 8;
}

constexpr size_t kBlocks = 8;  // neighbours whose samples are measured together

// Of each block every step-th pixel of every step-th row is a sample, but for those of value 255.
template <int32_t size>
struct Sampling {
  static constexpr int32_t kStep = size / 4;
  static constexpr int32_t kPerSide = (size + kStep - 1) / kStep;
  static constexpr size_t kSamples = kPerSide * kPerSide;
};

// The pixels that are samples unless they are white: number k of block i at [k][i].
template <int32_t size>
void take_neighbours(const uint8_t* const (&blocks)[kBlocks], int32_t width, int32_t (*samples)[kBlocks]) {
  constexpr int32_t kStep = Sampling<size>::kStep;
  for (int32_t y = 0; y < size; y += kStep) {
    for (int32_t x = 0; x < size; x += kStep, samples++) {
      for (size_t i = 0; i < kBlocks; i++) (*samples)[i] = blocks[i][static_cast<ptrdiff_t>(y) * width + x];
    }
  }
}

// The samples of one block, each beside the one before; returns their number.
template <int32_t size>
size_t take_samples(const uint8_t* __restrict block, int32_t width, int32_t (*__restrict samples)[1]) {
  size_t count = 0;
  for (int32_t y = 0; y < size; y += Sampling<size>::kStep) {
    const uint8_t* const row = block + static_cast<ptrdiff_t>(y) * width;
    for (int32_t x = 0; x < size; x += Sampling<size>::kStep) {
      samples[count][0] = row[x];
      count += row[x] != quo::kWhite ? 1 : 0;
    }
  }
  return count;
}

// Sums over the samples of `blocks` neighbours.
template <size_t blocks>
struct Measures {
  int32_t sums[blocks];
  int32_t brighter[blocks];
  int32_t thresholds[blocks];
  double means[blocks];
  double deviations[blocks];
};

// The sums run in the order of the samples: a mean of other than 16 samples is rounded, and so are the differences from
// it.
template <size_t blocks>
void measure(const int32_t (*__restrict samples)[blocks], size_t count, Measures<blocks>& __restrict measures) {
  for (size_t i = 0; i < blocks; i++) {
    measures.sums[i] = measures.brighter[i] = 0;
    measures.deviations[i] = 0.0;
  }
  for (size_t k = 0; k < count; k++) {
    for (size_t i = 0; i < blocks; i++) measures.sums[i] += samples[k][i];
  }
  for (size_t i = 0; i < blocks; i++) {
    measures.means[i] = measures.sums[i] / static_cast<double>(count);
    measures.thresholds[i] = static_cast<int32_t>(measures.means[i] + kBrightMargin);
  }
  for (size_t k = 0; k < count; k++) {
    for (size_t i = 0; i < blocks; i++) measures.deviations[i] += std::fabs(samples[k][i] - measures.means[i]);
    for (size_t i = 0; i < blocks; i++) measures.brighter[i] += samples[k][i] > measures.thresholds[i] ? 1 : 0;
  }
}

template <size_t blocks>
void store(const Measures<blocks>& measures, size_t i, size_t count, quo_block_record& block) {
  block.mean = measures.means[i];
  block.deviation = measures.deviations[i] / static_cast<double>(count);
  block.bright = measures.brighter[i] * 100 / static_cast<int32_t>(count);
}

uint32_t sum_along(const uint8_t* centre, const ptrdiff_t (&points)[kPoints]) {
  uint32_t sum = 0;
  for (const ptrdiff_t point : points) sum += quo::abs_diff(*centre, centre[point]);
  return sum;
}

// The line along which the gray varies least, as a direction code; 0 when none stands out. Perpendicular lines are
// compared pair by pair, by the ratio of the smaller sum to the larger one. Sums are at most 1530, exact as floats.
int8_t dominant_line(const uint8_t* centre, const LineOffsets& lines) {
  float lowest = 65535.0F, highest = 0.0F;
  int8_t code = 0;
  for (int pair = 0; pair < kPairs; pair++) {
    const uint32_t along = sum_along(centre, lines.at[pair]);
    const uint32_t across = sum_along(centre, lines.at[pair + kPairs]);
    if (along + across <= kLineContrast) continue;
    const bool follows_first = across >= along;
    const float ratio = follows_first ? static_cast<float>(along) / static_cast<float>(across)
                                      : static_cast<float>(across) / static_cast<float>(along);
    if (ratio < lowest) {
      lowest = ratio;
      code = static_cast<int8_t>(follows_first ? pair + 1 : pair + kPairs + 1);
    }
    if (ratio > highest) highest = ratio;
  }
  return highest - lowest >= kClearRatioDifference && lowest < kClearRatio ? code : int8_t{0};
}

// A centre moved so far inside that the lines around it fit.
int32_t with_reach(int32_t centre, int32_t size) {
  if (centre < kReach) return kReach;
  return centre >= size - kReach ? size - kReach - 1 : centre;
}

// A block that has white pixels.
template <int32_t size>
void measure_samples(const uint8_t* block, int32_t width, quo_block_record& record) {
  int32_t samples[Sampling<size>::kSamples][1];
  const size_t count = take_samples<size>(block, width, samples);
  if (count == 0) {
    record.mean = quo::kWhite;
    record.deviation = 0.0;
    record.bright = 0.0;
    return;
  }
  Measures<1> measures;
  measure(samples, count, measures);
  store(measures, 0, count, record);
}

// At most kBlocks neighbours; the last one stands in for those that are missing.
template <int32_t size>
void measure_neighbours(const uint8_t* first, int32_t width, size_t count, quo_block_record* records) {
  const uint8_t* blocks[kBlocks];
  for (size_t i = 0; i < kBlocks; i++) blocks[i] = first + static_cast<ptrdiff_t>(std::min(i, count - 1)) * size;
  int32_t samples[Sampling<size>::kSamples][kBlocks];
  take_neighbours<size>(blocks, width, samples);
  int32_t highest[kBlocks] = {0, 0, 0, 0, 0, 0, 0, 0};
  for (const auto& of_blocks : samples) {
    for (size_t i = 0; i < kBlocks; i++) highest[i] = std::max(highest[i], of_blocks[i]);
  }
  Measures<kBlocks> measures;
  measure(samples, Sampling<size>::kSamples, measures);
  for (size_t i = 0; i < count; i++) {
    if (highest[i] == quo::kWhite) {
      measure_samples<size>(blocks[i], width, records[i]);
    } else {
      store(measures, i, Sampling<size>::kSamples, records[i]);
    }
  }
}

// The direction code of a measured block. One that is all white is bright and flat.
template <int32_t size>
int8_t direction(const GrayFrame& frame, const LineOffsets& lines, int32_t x, int32_t y,
                 const quo_block_record& block) {
  if (block.deviation < kFlatDeviation && block.mean >= kBackgroundMean) return quo::kBackgroundBlock;
  if (block.deviation <= kDirectionDeviation || !has_room_for_lines(frame)) return 0;
  const int32_t centre_x = with_reach(x + size / 2, frame.width), centre_y = with_reach(y + size / 2, frame.height);
  return dominant_line(frame.row(centre_y) + centre_x, lines);
}

template <int32_t size>
void measure_blocks(const GrayFrame& frame, quo_block_record* block) {
  if (frame.width < size || frame.height < size) return;
  const LineOffsets lines(frame.width);
  const int32_t across = frame.width / size, bottom = frame.height / size * size;
  for (int32_t y = 0; y < bottom; y += size, block += across) {
    for (int32_t i = 0; i < across; i += int32_t{kBlocks}) {
      const size_t count = std::min(kBlocks, static_cast<size_t>(across - i));
      measure_neighbours<size>(frame.row(y) + i * size, frame.width, count, block + i);
    }
    for (int32_t i = 0; i < across; i++) block[i].direction = direction<size>(frame, lines, i * size, y, block[i]);
  }
}

}  // namespace

uint32_t BlockOrientation_MCU(const uint8_t* image, int32_t width, int32_t height, quo_block_record** blocks,
                              int32_t* count) {
  if (blocks == nullptr || count == nullptr) return kNoBlockOutput;
  const int32_t size = block_size(width, height);
  const uint64_t records_needed = quo::pixel_count(width / size, height / size);
  quo::Scratch<quo_block_record> records;
  if (!records.allocate(records_needed)) return QUO_NO_MEMORY;
  const GrayFrame frame{image, width, height};
  if (size == 16) measure_blocks<16>(frame, records.get());
  if (size == 10) measure_blocks<10>(frame, records.get());
  if (size == 8) measure_blocks<8>(frame, records.get());
  *blocks = records.release();
  *count = static_cast<int32_t>(records_needed);
  return QUO_OK;
}
