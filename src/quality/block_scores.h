// What the two quality scores have in common: averages over the block records, and the merge of three components.
#pragma once

#include <cstddef>
#include <cstdint>

#include "quoFPAlg.h"

namespace quo {

inline constexpr int8_t kBackgroundBlock = -1;  // direction code

/** Averages over the records that are not background; all zero when there is none. */
struct BlockAverages {
  size_t finger = 0;            // records that are not background
  size_t directed = 0;          // of these, with a dominant direction
  double mean = 0;              // average of the means
  double deviation = 0;         // average of the deviations
  double bright = 0;            // average of the bright percentages
  double mean_spread = 0;       // mean absolute deviation of the means from their average
  double deviation_spread = 0;  // the same of the deviations
};

BlockAverages average_blocks(const quo_block_record* blocks, size_t count);

/** Component scores, each from 0 to 100. */
struct ComponentScores {
  double direction;
  double contrast;
  double brightness;
};

/** The score of all three, 0 to 100: the terms in which the components are weighted, scaled by `gain`. */
uint8_t merge_scores(const ComponentScores& scores, double gain);

/** `weight` times a value limited to 0..1. */
inline double weighted_unit(double weight, double value) {
  return weight * (value < 0.0 ? 0.0 : value > 1.0 ? 1.0 : value);
}

inline void store(uint8_t* output, uint8_t value) {
  if (output != nullptr) *output = value;
}

}  // namespace quo
