// The quality score from the dense orientation field.
#include "frame/scratch.h"
#include "quality/block_scores.h"

namespace {

constexpr double kGain = 1.1;
constexpr int32_t kBlockSize = 8;          // pixels of the frame
constexpr int32_t kRadius = 3;             // of the averaging window, in half-size pixels
constexpr double kEvennessWeight = 40.0;   // of blocks whose deviations are alike
constexpr double kLevelWeight = 60.0;      // of their average
constexpr double kDeviationSpread = 60.0;  // gray levels at which nothing is left for alike deviations
constexpr double kFullDeviation = 30.0;    // average deviation of full contrast
constexpr double kPerMeanSpread = 1.0 / 128.0;
constexpr double kWideSpreadStart = 100.0;  // spreads of the means from here to the end score 100, not 0
constexpr double kWideSpreadEnd = 150.0;

quo::ComponentScores score(const quo::BlockAverages& blocks) {
  const bool wide_spread = blocks.mean_spread >= kWideSpreadStart && blocks.mean_spread <= kWideSpreadEnd;
  return {.direction = static_cast<double>(blocks.directed) * 100.0 / static_cast<double>(blocks.finger),
          .contrast = quo::weighted_unit(kEvennessWeight, 1.0 - blocks.deviation_spread / kDeviationSpread) +
                      quo::weighted_unit(kLevelWeight, blocks.deviation / kFullDeviation),
          .brightness = wide_spread ? 100.0 : quo::weighted_unit(100.0, 1.0 - blocks.mean_spread * kPerMeanSpread)};
}

// Averages over the blocks of the frame; no finger block when the frame has no block at all.
uint32_t measure(const uint8_t* image, int32_t width, int32_t height, uint8_t* area, quo::BlockAverages& averages) {
  const int32_t columns = width / kBlockSize, rows = height / kBlockSize;
  const uint64_t count = quo::pixel_count(columns, rows);
  quo::Scratch<quo_block_record> records;
  if (!records.allocate(count)) return QUO_NO_MEMORY;
  const uint32_t result = BlockOrientation(image, width, height, records.get(), columns, rows, kRadius, area);
  if (result == QUO_OK) averages = quo::average_blocks(records.get(), static_cast<size_t>(count));
  return result;
}

}  // namespace

uint32_t ImageQuality(const uint8_t* image, int32_t width, int32_t height, uint8_t* quality, uint8_t* area,
                      uint8_t* bright, uint8_t* mean_gray) {
  quo::BlockAverages blocks;
  const uint32_t result = measure(image, width, height, area, blocks);
  if (blocks.finger == 0) {
    quo::store(quality, 0);
    quo::store(bright, 0);
    return result;
  }
  quo::store(mean_gray, static_cast<uint8_t>(blocks.mean));
  quo::store(quality, quo::merge_scores(score(blocks), kGain));
  quo::store(bright, static_cast<uint8_t>(blocks.bright));
  return QUO_OK;
}
