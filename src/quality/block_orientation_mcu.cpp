#include <cstddef>

#include "frame/gray.h"
#include "frame/scratch.h"
#include "quality/block_samples.h"
#include "quality/block_scores.h"

namespace {

using quo::GrayFrame;

constexpr uint32_t kNoBlockOutput = 2;  // result code of this function alone

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

// The direction code of a measured block whose middle is at (x, y). One that is all white is bright and flat.
int8_t direction(const GrayFrame& frame, const LineOffsets& lines, int32_t x, int32_t y,
                 const quo_block_record& block) {
  if (block.deviation < kFlatDeviation && block.mean >= kBackgroundMean) return quo::kBackgroundBlock;
  if (block.deviation <= kDirectionDeviation || !has_room_for_lines(frame)) return 0;
  return dominant_line(frame.row(with_reach(y, frame.height)) + with_reach(x, frame.width), lines);
}

void fill_records(const GrayFrame& frame, int32_t size, quo_block_record* block) {
  if (frame.width < size || frame.height < size) return;
  const LineOffsets lines(frame.width);
  const int32_t across = frame.width / size, bottom = frame.height / size * size;
  for (int32_t y = 0; y < bottom; y += size, block += across) {
    quo::measure_blocks(frame, size, y, block);
    for (int32_t i = 0; i < across; i++) {
      block[i].direction = direction(frame, lines, i * size + size / 2, y + size / 2, block[i]);
    }
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
  fill_records({image, width, height}, size, records.get());
  *blocks = records.release();
  *count = static_cast<int32_t>(records_needed);
  return QUO_OK;
}
