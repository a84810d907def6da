#include "toolbox/value_distances.h"

#include <algorithm>
#include <cstdlib>

#include "frame/multiversion.h"

namespace {

using quo::kStripColumns;
using quo::kWhite;

constexpr int32_t kStep = 16;  // pixels of a window whose distances are added up at once

void find_distances(const uint8_t* __restrict pixels, uint8_t value, uint8_t* __restrict distances, int32_t count) {
  for (int32_t i = 0; i < count; i++) distances[i] = quo::foreground_distance(pixels[i], value);
}

QUO_MULTIVERSION void slide(const uint8_t* __restrict entering, const uint8_t* __restrict leaving, uint8_t value,
                            uint16_t* __restrict sums, int32_t count) {
  uint8_t gained[kStripColumns], lost[kStripColumns];
  find_distances(entering, value, gained, count);
  find_distances(leaving, value, lost, count);
  for (int32_t i = 0; i < count; i++) sums[i] = static_cast<uint16_t>(sums[i] + gained[i] - lost[i]);
}

// All bits in as many of sixteen bytes as wanted, read that far before the middle.
struct Masks {
  uint8_t bytes[2 * kStep];

  constexpr Masks() : bytes() {
    for (int32_t i = 0; i < kStep; i++) bytes[i] = 255;
  }
};
constexpr Masks kMasks;

// Of sixteen pixels. Unrolled before it becomes a vector, the loop would not become one.
inline uint32_t step_distances(const uint8_t* __restrict pixels, uint8_t value) {
  uint32_t sum = 0;
#pragma GCC unroll 1
  for (int32_t i = 0; i < kStep; i++) sum += static_cast<uint32_t>(std::abs(pixels[i] - value));
  return sum;
}

inline uint32_t masked_distances(const uint8_t* __restrict pixels, const uint8_t* __restrict mask, uint8_t value) {
  uint32_t sum = 0;
#pragma GCC unroll 1
  for (int32_t i = 0; i < kStep; i++) {
    const auto pixel = static_cast<uint8_t>(pixels[i] & mask[i]), masked = static_cast<uint8_t>(value & mask[i]);
    sum += static_cast<uint32_t>(std::abs(pixel - masked));
  }
  return sum;
}

uint32_t distances(const uint8_t* pixels, int32_t count, uint8_t value) {
  uint32_t sum = 0;
  for (int32_t i = 0; i < count; i++) sum += quo::abs_diff(pixels[i], value);
  return sum;
}

uint32_t count_white(const quo::WindowPixels& window) {
  uint32_t count = 0;
  for (int32_t j = 0; j < window.rows; j++) {
    const uint8_t* const row = window.first + j * window.stride;
    for (int32_t i = 0; i < window.columns; i++) count += row[i] == kWhite ? 1 : 0;
  }
  return count;
}

// Whether the distances, those of background included, add up to more than `limit`. Sixteen pixels at a time, of which
// those beyond the window are masked, unless they are beyond the frame.
bool distances_exceed(const quo::WindowPixels& window, uint8_t value, uint32_t limit) {
  const int32_t columns = window.columns, whole = (columns - 1) / kStep * kStep;
  const uint8_t* const mask = kMasks.bytes + kStep - (columns - whole);
  uint32_t sum = 0;
  for (int32_t j = 0; j < window.rows && sum <= limit; j++) {
    const uint8_t* const row = window.first + j * window.stride;
    for (int32_t i = 0; i < whole; i += kStep) sum += step_distances(row + i, value);
    sum += window.end - row >= whole + kStep ? masked_distances(row + whole, mask, value)
                                             : distances(row + whole, columns - whole, value);
  }
  return sum > limit;
}

}  // namespace

void quo::ValueDistances::move_to(int32_t y, const Columns& columns, int32_t half_height) {
  const auto row = [&](int64_t j) {
    return j >= 0 && j < columns.rows ? columns.row(static_cast<int32_t>(j)) : quo::kWhiteRow.pixels;
  };
  const int64_t top = int64_t{y} - half_height, bottom = int64_t{y} + half_height;
  if (row_ != kNone && row_ == y - 1) {
    slide(row(bottom), row(top - 1), value_, sums_, columns.count);
  } else {
    for (int32_t i = 0; i < columns.count; i++) sums_[i] = 0;
    for (int64_t j = top; j <= bottom; j++) slide(row(j), kWhiteRow.pixels, value_, sums_, columns.count);
  }
  row_ = y;
}

bool quo::distances_exceed_number(const WindowPixels& window, uint8_t value, bool may_have_white) {
  const auto area = static_cast<uint32_t>(window.columns * window.rows);
  const uint32_t white = may_have_white ? count_white(window) : 0;
  return distances_exceed(window, value, area - white + white * static_cast<uint32_t>(kWhite - value));
}
