#include <algorithm>

#include "calibration/histogram_class.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

using quo::HistogramClass;

constexpr uint32_t kGrayLevels = 256;
constexpr uint8_t kNone = 255;

// Counts modulo 65536. Parts of the frame keep within what CalcHistogram can count.
void count_grays(const uint8_t* frame, uint64_t pixels, uint16_t (&bins)[kGrayLevels]) {
  constexpr uint64_t kPart = uint64_t{1} << 30;
  for (uint16_t& bin : bins) bin = 0;
  for (uint64_t first = 0; first < pixels; first += kPart) {
    uint32_t part[kGrayLevels];
    CalcHistogram(frame + first, static_cast<int32_t>(std::min(kPart, pixels - first)), part, kGrayLevels);
    for (uint32_t gray = 0; gray < kGrayLevels; gray++) bins[gray] = static_cast<uint16_t>(bins[gray] + part[gray]);
  }
}

// What the frames seen so far offer to the choice.
struct Candidates {
  double best_low_share = 0;  // of a contrasted frame; 0 when none is eligible
  uint8_t best = kNone;
  uint8_t last_dark = kNone;
  uint8_t last_flat_mid = kNone;
  uint32_t dark = 0;
  uint32_t flat_bright = 0;
  uint32_t flat_mid = 0;

  void add(uint8_t index, const quo::HistogramFigures& figures) {
    switch (quo::classify(figures)) {
      case HistogramClass::kDark:
        dark++;
        last_dark = index;
        break;
      case HistogramClass::kContrasted:
        if (figures.low_share > best_low_share) {
          best_low_share = figures.low_share;
          best = index;
        }
        break;
      case HistogramClass::kFlatBright:
        flat_bright++;
        break;
      case HistogramClass::kFlatMid:
        flat_mid++;
        last_flat_mid = index;
        break;
      case HistogramClass::kUnclassified:
      case HistogramClass::kFlat:
        break;
    }
  }

  // The chosen one of `count` frames, or kNone. An index is at most 254, so kNone is none of them.
  uint8_t choose(uint8_t count) const {
    if (best_low_share > 0.0) return best;
    if (dark == count) return static_cast<uint8_t>(count - 1);
    if (flat_bright >= 1 && dark == 1) return last_dark;
    if (dark >= 1 && flat_mid == 1) return last_flat_mid;
    return kNone;
  }
};

}  // namespace

uint32_t FP_ChooseBestHist(const uint8_t* const* frames, uint8_t count, int32_t width, int32_t height,
                           uint8_t* chosen) {
  Candidates candidates;
  for (uint8_t i = 0; i < count; i++) {
    if (frames[i] == nullptr) continue;
    uint16_t bins[kGrayLevels];
    count_grays(frames[i], quo::pixel_count(width, height), bins);
    candidates.add(i, quo::histogram_figures(bins));
  }
  const uint8_t index = count > 0 ? candidates.choose(count) : kNone;
  if (count > 0 && index == kNone) return QUO_NO_CANDIDATE;
  if (chosen != nullptr) *chosen = index;
  return QUO_OK;
}
