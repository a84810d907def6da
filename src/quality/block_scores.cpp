#include "quality/block_scores.h"

namespace quo {

namespace {

constexpr double kBestScore = 100.0;

double magnitude(double value) { return value < 0.0 ? -value : value; }

// A component's part of the merged score: itself times the mean of the other two, weighted by the square of what it
// lacks. The order of the products is part of the result.
double weighted_term(double component, double sum_of_others, double total_weight) {
  const double shortfall = kBestScore - component;
  return shortfall * (shortfall * (component * (sum_of_others / 200.0))) / total_weight;
}

}  // namespace

BlockAverages average_blocks(const quo_block_record* blocks, size_t count) {
  BlockAverages average;
  for (size_t i = 0; i < count; i++) {
    const quo_block_record& block = blocks[i];
    if (block.direction == kBackgroundBlock) continue;
    average.finger++;
    if (block.direction != 0) average.directed++;
    average.mean += block.mean;
    average.deviation += block.deviation;
    average.bright += block.bright;
  }
  if (average.finger == 0) return average;
  const auto finger = static_cast<double>(average.finger);
  average.mean /= finger;
  average.deviation /= finger;
  average.bright /= finger;
  for (size_t i = 0; i < count; i++) {
    const quo_block_record& block = blocks[i];
    if (block.direction == kBackgroundBlock) continue;
    average.mean_spread += magnitude(block.mean - average.mean);
    average.deviation_spread += magnitude(block.deviation - average.deviation);
  }
  average.mean_spread /= finger;
  average.deviation_spread /= finger;
  return average;
}

uint8_t merge_scores(const ComponentScores& scores, double gain) {
  const double a = scores.direction, b = scores.contrast, d = scores.brightness;
  const double exact_weight =
      ((kBestScore - a) * (kBestScore - a) + (kBestScore - b) * (kBestScore - b)) + (kBestScore - d) * (kBestScore - d);
  if (exact_weight == 0.0) return 0;
  const double weight = static_cast<double>(static_cast<float>(exact_weight));
  const double sum = (a + b) + d;
  const double terms =
      (weighted_term(a, sum - a, weight) + weighted_term(b, sum - b, weight)) + weighted_term(d, sum - d, weight);
  const double merged = gain * terms;
  if (merged < 0.0) return 0;
  return static_cast<uint8_t>(merged >= kBestScore ? kBestScore : merged);
}

}  // namespace quo
