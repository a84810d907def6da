#include <algorithm>

#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

namespace {

constexpr int32_t kReach = 15;  // positions of the neighbourhood on either side
constexpr int32_t kWindow = 2 * kReach + 1;
constexpr uint32_t kBright = 255;
constexpr uint32_t kFirstKept = 254;  // saturated pixels from here on stay as they are

// The local mean, sum / count truncated, is less than the integer p exactly when sum < count * p: no division. The sums
// are differences of prefix sums modulo 2^32 and themselves at most 31 * 255.
uint8_t binarized(uint32_t pixel, uint32_t sum, uint32_t count) {
  const uint32_t binary = sum < count * pixel ? kBright : quo::kDark;
  return static_cast<uint8_t>(pixel >= kFirstKept ? pixel : binary);
}

// Position i of `line` has the window from sums[i] to sums[i + kWindow].
void binarize_whole_windows(uint8_t* __restrict line, const uint32_t* __restrict sums, int32_t count) {
  for (int32_t i = 0; i < count; i++) line[i] = binarized(line[i], sums[i + kWindow] - sums[i], kWindow);
}

// Positions whose window is cut at the beginning of the line, at its end, or at both.
void binarize_cut_windows(uint8_t* __restrict line, const uint32_t* __restrict sums, int32_t n) {
  if (n < kWindow) {
    for (int32_t i = 0; i < n; i++) {
      const int32_t low = std::max(i - kReach, 0), high = std::min(i + kReach + 1, n);
      line[i] = binarized(line[i], sums[high] - sums[low], static_cast<uint32_t>(high - low));
    }
    return;
  }
  const uint32_t* const begin = sums + kReach + 1;
  for (int32_t i = 0; i < kReach; i++) {
    line[i] = binarized(line[i], begin[i] - sums[0], static_cast<uint32_t>(i + kReach + 1));
  }
  uint8_t* const last = line + (n - kReach);
  const uint32_t* const end = sums + (n - 2 * kReach);
  for (int32_t i = 0; i < kReach; i++) {
    last[i] = binarized(last[i], sums[n] - end[i], static_cast<uint32_t>(2 * kReach - i));
  }
}

}  // namespace

uint32_t AdaptiveLineBinary(uint8_t* line, int32_t n) {
  if (n <= 0) return QUO_OK;
  const uint64_t entries = static_cast<uint64_t>(n) + 1;
  quo::Scratch<uint32_t> integral;
  if (!integral.allocate(2 * entries)) return QUO_NO_MEMORY;
  GetGrayIntegralImage(line, integral.get(), n, 1, n);
  const uint32_t* const sums = integral.get() + entries;

  binarize_cut_windows(line, sums, n);
  if (n >= kWindow) binarize_whole_windows(line + kReach, sums, n - 2 * kReach);
  return QUO_OK;
}
