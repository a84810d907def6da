// The sensor quality score.
#include "quality/block_scores.h"

namespace {

constexpr double kGain = 1.3;
constexpr double kEvennessWeight = 60.0;   // of blocks that are alike, in contrast and in brightness
constexpr double kLevelWeight = 40.0;      // of their average contrast and brightness
constexpr double kMeanSpread = 40.0;       // gray levels at which nothing is left for alike means
constexpr double kDeviationSpread = 20.0;  // the same for alike deviations
constexpr double kFullDeviation = 30.0;    // average deviation of full contrast
constexpr double kBestMean = 128.0;
constexpr double kMeanRange = 255.0;

quo::ComponentScores score(const quo::BlockAverages& blocks) {
  const double off_mean = blocks.mean < kBestMean ? kBestMean - blocks.mean : blocks.mean - kBestMean;
  return {.direction = static_cast<double>(blocks.directed) * 100.0 / static_cast<double>(blocks.finger),
          .contrast = quo::weighted_unit(kEvennessWeight, 1.0 - blocks.deviation_spread / kDeviationSpread) +
                      quo::weighted_unit(kLevelWeight, blocks.deviation / kFullDeviation),
          .brightness = quo::weighted_unit(kEvennessWeight, 1.0 - blocks.mean_spread / kMeanSpread) +
                        quo::weighted_unit(kLevelWeight, 1.0 - off_mean / kMeanRange)};
}

}  // namespace

uint32_t ImageQuality_MCU(const uint8_t* image, int32_t width, int32_t height, uint8_t* quality, uint8_t* area,
                          uint8_t* bright, uint8_t* mean_gray) {
  quo_block_record* records;
  int32_t count;
  const uint32_t result = BlockOrientation_MCU(image, width, height, &records, &count);
  if (result != QUO_OK) return result;
  const quo::BlockAverages blocks = quo::average_blocks(records, static_cast<size_t>(count));
  tev_quo_free(records);
  if (blocks.finger == 0) {
    quo::store(quality, 0);
    quo::store(area, 0);
    quo::store(bright, 0);
    return QUO_OK;
  }
  quo::store(mean_gray, static_cast<uint8_t>(blocks.mean));
  quo::store(quality, quo::merge_scores(score(blocks), kGain));
  quo::store(area, static_cast<uint8_t>(uint64_t{blocks.finger} * 100 / static_cast<uint64_t>(count)));
  quo::store(bright, static_cast<uint8_t>(blocks.bright));
  return QUO_OK;
}

uint32_t FP_ImageQuality_MCU(const uint8_t* image, int32_t width, int32_t height, uint8_t* quality, uint8_t* area,
                             uint8_t* bright, uint8_t* mean_gray) {
  if (image == nullptr) return QUO_NO_OUTPUT;
  return ImageQuality_MCU(image, width, height, quality, area, bright, mean_gray);
}

uint32_t FP_ImageQuality(const uint8_t* image, int32_t width, int32_t height, uint8_t* quality, uint8_t* area,
                         uint8_t* bright, uint8_t* mean_gray) {
  return FP_ImageQuality_MCU(image, width, height, quality, area, bright, mean_gray);
}
