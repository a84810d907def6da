#include "toolbox/global_contrast.h"

#include <algorithm>
#include <cmath>

#include "frame/multiversion.h"

namespace {

using quo::GrayFrame;
using quo::kWhite;

constexpr int32_t kSegment = 224;  // whole vectors of pixels, whose sum fits in 16 bits, and their number in 8
static_assert(kSegment * 255 <= UINT16_MAX && kSegment <= UINT8_MAX);

struct Total {
  uint64_t sum = 0;
  uint64_t count = 0;
};

// Adds the pixels from a gray on, but not those of 255.
QUO_MULTIVERSION void add_segment(const uint8_t* pixels, int32_t count, uint8_t from, Total& total) {
  uint16_t sum = 0;
  uint8_t number = 0;
  for (int32_t i = 0; i < count; i++) {
    const auto taken = static_cast<uint8_t>(((pixels[i] >= from) & (pixels[i] != kWhite)) ? 255 : 0);
    sum = static_cast<uint16_t>(sum + (pixels[i] & taken));
    number = static_cast<uint8_t>(number + (taken & 1));
  }
  total.sum += sum;
  total.count += number;
}

// Rows follow one another without gaps, so one run goes from the first inner pixel to the last; what it counts of the
// border columns is taken off again.
Total total_from(const GrayFrame& frame, uint8_t gray) {
  Total total;
  const uint8_t* const first = frame.row(1) + 1;
  const ptrdiff_t pixels = ptrdiff_t{frame.width} * (frame.height - 2) - 2;
  for (ptrdiff_t at = 0; at < pixels; at += kSegment) {
    add_segment(first + at, static_cast<int32_t>(std::min<ptrdiff_t>(kSegment, pixels - at)), gray, total);
  }
  for (int32_t y = 2; y < frame.height - 1; y++) {
    const uint8_t* const left = frame.row(y);
    for (const uint8_t pixel : {left[-1], left[0]}) {
      const bool taken = pixel >= gray && pixel != kWhite;
      total.sum -= taken ? pixel : 0;
      total.count -= taken ? 1 : 0;
    }
  }
  return total;
}

}  // namespace

// With n pixels of sum s, the distances from the mean s / n add up to e / n, where e = n (high sum - low sum) -
// s (high count - low count) is an integer, below 2^62 for 2^26 pixels, over the pixels above the mean and the others.
// The defining steps are off by 2^-46 for the mean and as much for each distance, which is 128 * 2^-53 of a deviation
// of 1 or more, and by n additions.
bool quo::measure_contrast(const GrayFrame& frame, GlobalContrast& contrast) {
  const Total all = total_from(frame, 0);
  if (all.count == 0) return false;
  const Total high = total_from(frame, static_cast<uint8_t>(all.sum / all.count + 1));
  const uint64_t low_sum = all.sum - high.sum, low_count = all.count - high.count;
  const uint64_t e = all.count * (high.sum - low_sum) - all.sum * (high.count - low_count);
  const auto count = static_cast<double>(all.count);
  contrast = {all.count, static_cast<double>(all.sum) / count, static_cast<double>(e) / (count * count)};
  return high.count > 0;
}

double quo::defined_deviation(const GrayFrame& frame, const GlobalContrast& contrast) {
  double distance[256];
  for (int32_t v = 0; v < kWhite; v++) distance[v] = std::fabs(v - contrast.mean);
  distance[kWhite] = 0;
  double distances = 0;
  for (int32_t y = 1; y < frame.height - 1; y++) {
    const uint8_t* const row = frame.row(y);
    for (int32_t x = 1; x < frame.width - 1; x++) distances += distance[row[x]];
  }
  return distances / static_cast<double>(contrast.count);
}
