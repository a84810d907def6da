#include <algorithm>

#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

namespace {

constexpr int32_t kReach = 15;  // positions of the neighbourhood on either side
constexpr int32_t kWindow = 2 * kReach + 1;
constexpr int32_t kBlock = kReach + 1;  // positions binarized together
constexpr uint8_t kBright = 255;
constexpr uint8_t kFirstKept = 254;  // saturated pixels from here on stay as they are

// The local mean, sum / count truncated, is less than the integer p exactly when sum < count * p: no division. The sums
// are differences of prefix sums modulo 2^32; 16 bits hold them, and vectors twice as many of those.
static_assert(kWindow * 255 <= INT16_MAX);
uint8_t binarized(uint8_t pixel, uint32_t sum, int32_t count) {
  const auto scaled = static_cast<int16_t>(count * pixel);
  const uint8_t binary = static_cast<int16_t>(sum) < scaled ? kBright : quo::kDark;
  return pixel >= kFirstKept ? pixel : binary;
}

// A line too short for blocks.
void binarize_short_line(uint8_t* __restrict line, const uint32_t* __restrict sums, int32_t n) {
  for (int32_t i = 0; i < n; i++) {
    const int32_t low = std::max(i - kReach, 0), high = std::min(i + kReach + 1, n);
    line[i] = binarized(line[i], sums[high] - sums[low], high - low);
  }
}

// Positions whose window is cut at the beginning of the line or at its end, and the first or last one with a whole
// window, which makes them a block.
void binarize_ends(uint8_t* __restrict line, const uint32_t* __restrict sums, int32_t n) {
  for (int32_t i = 0; i < kBlock; i++) {
    line[i] = binarized(line[i], sums[i + kReach + 1] - sums[0], i + kReach + 1);
  }
  uint8_t* const last = line + (n - kBlock);
  const uint32_t* const begin = sums + (n - kBlock - kReach);
  for (int32_t i = 0; i < kBlock; i++) {
    last[i] = binarized(last[i], sums[n] - begin[i], kWindow - i);
  }
}

// Positions in whole blocks, with whole windows: position i of `line` has the one from sums[i] to sums[i + kWindow].
// What is left of `count` after them stays as it is.
void binarize_whole_windows(uint8_t* __restrict line, const uint32_t* __restrict sums, int32_t count) {
  const int32_t whole = count / kBlock * kBlock;
  for (int32_t i = 0; i < whole; i++) line[i] = binarized(line[i], sums[i + kWindow] - sums[i], kWindow);
}

// At least three blocks. Positions left after whole ones are taken in a block that overlaps the last one: black and
// white stay what they are.
void binarize_long_line(uint8_t* line, const uint32_t* sums, int32_t n) {
  binarize_ends(line, sums, n);
  binarize_whole_windows(line + kBlock, sums + (kBlock - kReach), n - 2 * kBlock);
  const int32_t last = n - 2 * kBlock;
  if (n % kBlock > 0) binarize_whole_windows(line + last, sums + (last - kReach), kBlock);
}

}  // namespace

uint32_t AdaptiveLineBinary(uint8_t* line, int32_t n) {
  if (n <= 0) return QUO_OK;
  const uint64_t entries = static_cast<uint64_t>(n) + 1;
  quo::Scratch<uint32_t> integral;
  if (!integral.allocate(2 * entries)) return QUO_NO_MEMORY;
  GetGrayIntegralImage(line, integral.get(), n, 1, n);
  const uint32_t* const sums = integral.get() + entries;

  if (n < 3 * kBlock) {
    binarize_short_line(line, sums, n);
  } else {
    binarize_long_line(line, sums, n);
  }
  return QUO_OK;
}
