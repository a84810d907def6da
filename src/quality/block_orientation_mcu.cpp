#include <cstddef>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "quality/block_scores.h"

namespace {

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

struct Frame {
  const uint8_t* pixels;
  int32_t width;
  int32_t height;

  const uint8_t* at(int32_t x, int32_t y) const { return pixels + static_cast<ptrdiff_t>(y) * width + x; }
  bool has_room_for_lines() const { return width > 2 * kReach && height > 2 * kReach; }
};

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

// Collects every step-th pixel of every step-th row of a block, without those of value 255; returns their number.
template <int32_t size>
int32_t take_samples(const uint8_t* __restrict block, int32_t width, uint8_t* __restrict samples) {
  constexpr int32_t step = size / 4;
  int32_t count = 0;
  for (int32_t y = 0; y < size; y += step) {
    const uint8_t* const row = block + static_cast<ptrdiff_t>(y) * width;
    for (int32_t x = 0; x < size; x += step) {
      samples[count] = row[x];
      count += row[x] != quo::kWhite ? 1 : 0;
    }
  }
  return count;
}

// Mean, deviation and bright percentage. The sums run in the order of the samples: a mean of other than 16 samples is
// rounded, and so are the differences from it.
void measure_samples(const uint8_t* samples, int32_t count, quo_block_record& block) {
  int32_t sum = 0;
  for (int32_t i = 0; i < count; i++) sum += samples[i];
  block.mean = static_cast<double>(sum) / count;
  const auto threshold = static_cast<int32_t>(block.mean + kBrightMargin);
  double deviation = 0.0;
  int32_t brighter = 0;
  for (int32_t i = 0; i < count; i++) {
    const double difference = samples[i] - block.mean;
    deviation += difference < 0.0 ? -difference : difference;
    brighter += samples[i] > threshold ? 1 : 0;
  }
  block.deviation = deviation / count;
  block.bright = brighter * 100 / count;
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

template <int32_t size>
void measure_block(const Frame& frame, const LineOffsets& lines, int32_t x, int32_t y, quo_block_record& block) {
  constexpr size_t per_side = (size + size / 4 - 1) / (size / 4);
  uint8_t samples[per_side * per_side];
  const int32_t count = take_samples<size>(frame.at(x, y), frame.width, samples);
  block.direction = quo::kBackgroundBlock;
  if (count == 0) {
    block.mean = quo::kWhite;
    block.deviation = 0.0;
    block.bright = 0.0;
    return;
  }
  measure_samples(samples, count, block);
  if (block.deviation < kFlatDeviation && block.mean >= kBackgroundMean) return;
  block.direction = 0;
  if (block.deviation > kDirectionDeviation && frame.has_room_for_lines()) {
    const int32_t centre_x = with_reach(x + size / 2, frame.width), centre_y = with_reach(y + size / 2, frame.height);
    block.direction = dominant_line(frame.at(centre_x, centre_y), lines);
  }
}

template <int32_t size>
void measure_blocks(const Frame& frame, quo_block_record* block) {
  if (frame.width < size || frame.height < size) return;
  const LineOffsets lines(frame.width);
  const int32_t right = frame.width / size * size, bottom = frame.height / size * size;
  for (int32_t y = 0; y < bottom; y += size) {
    for (int32_t x = 0; x < right; x += size) measure_block<size>(frame, lines, x, y, *block++);
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
  const Frame frame{image, width, height};
  if (size == 16) measure_blocks<16>(frame, records.get());
  if (size == 10) measure_blocks<10>(frame, records.get());
  if (size == 8) measure_blocks<8>(frame, records.get());
  *blocks = records.release();
  *count = static_cast<int32_t>(records_needed);
  return QUO_OK;
}
