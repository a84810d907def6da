#include <algorithm>
#include <cmath>

#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

namespace {

constexpr int kMostScores = 10;        // scored sections that enter the spread
constexpr uint32_t kWeakOverall = 49;  // overall scores up to here are raised when the section scores differ much
constexpr double kSpreadUnit = 15.0;   // spread above which they are raised, and the divisor of the factor
constexpr double kOverallWeight = 0.7;
constexpr double kBestWeight = 0.3;
constexpr uint32_t kFullScore = 100;

/** Positions of two profiles as sets of dark ones. Records hold at most 65535 positions. */
struct Overlap {
  uint32_t length = 0;
  uint32_t considered = 0;  // dark in at least one profile
  uint32_t agreeing = 0;    // dark in both

  void operator+=(const Overlap& other) {
    length += other.length;
    considered += other.considered;
    agreeing += other.agreeing;
  }

  /** Share of the dark positions that agree in percent, for more than a third of dark positions. */
  bool scores() const { return considered > length / 3; }
  uint32_t score() const { return scores() ? 100 * agreeing / considered : 0; }
};
static_assert(100U * UINT16_MAX <= UINT32_MAX);

// Counts up to this fit in a byte, so that as many positions are counted at once as profile bytes fit in a vector.
constexpr uint32_t kMostAtOnce = UINT8_MAX;

Overlap overlap_at_once(const uint8_t* __restrict a, const uint8_t* __restrict b, uint32_t length) {
  uint8_t considered = 0, agreeing = 0;
  for (uint32_t i = 0; i < length; i++) {
    const bool dark_a = a[i] == quo::kDark, dark_b = b[i] == quo::kDark;
    considered = static_cast<uint8_t>(considered + (dark_a | dark_b));
    agreeing = static_cast<uint8_t>(agreeing + (dark_a & dark_b));
  }
  return {length, considered, agreeing};
}

Overlap overlap(const uint8_t* a, const uint8_t* b, uint32_t length) {
  Overlap sum;
  for (uint32_t at = 0; at < length; at += kMostAtOnce) {
    sum += overlap_at_once(a + at, b + at, std::min(length - at, kMostAtOnce));
  }
  return sum;
}

/** What the sections of two records have in common. */
struct Comparison {
  Overlap total;
  uint32_t best = 0;
  uint32_t scores[kMostScores] = {};
  int recorded = 0;

  void add(const Overlap& section) {
    total += section;
    if (!section.scores()) return;
    const uint32_t score = section.score();
    best = std::max(best, score);
    if (recorded < kMostScores) scores[recorded++] = score;
  }
};

// False when the records do not fit together.
bool compare(const uint8_t* first, const uint8_t* second, Comparison& comparison) {
  if (first[0] != second[0] || quo::payload_length(first) != quo::payload_length(second)) return false;
  quo::SectionWalk a(first), b(second);
  while (!a.at_end()) {
    quo::Section of_a{}, of_b{};
    if (!a.next(of_a) || !b.next(of_b) || of_a.length != of_b.length) return false;
    comparison.add(overlap(of_a.profile, of_b.profile, of_a.length));
  }
  return true;
}

// Standard deviation of the section scores about their truncated mean.
float spread(const Comparison& comparison) {
  if (comparison.recorded == 0) return 0;
  const auto count = static_cast<uint32_t>(comparison.recorded);
  uint32_t sum = 0;
  for (uint32_t i = 0; i < count; i++) sum += comparison.scores[i];
  const auto mean = static_cast<int32_t>(sum / count);
  double squares = 0;
  for (uint32_t i = 0; i < count; i++) {
    const int32_t difference = static_cast<int32_t>(comparison.scores[i]) - mean;
    squares += difference * difference;
  }
  return quo_sqrt(static_cast<float>(squares) / static_cast<float>(count));
}

// A spread of scores between 0 and 100 stays below 60, so the factor is at most 3 and the sum below 200.
uint32_t final_score(const Comparison& comparison) {
  uint32_t overall = comparison.total.score();
  const double deviation = static_cast<double>(spread(comparison));
  if (overall <= kWeakOverall && deviation > kSpreadUnit) overall *= static_cast<uint32_t>(deviation / kSpreadUnit);
  const auto best = static_cast<double>(comparison.best);
  const double score = std::fma(best, kBestWeight, overall * kOverallWeight);
  return std::min(static_cast<uint32_t>(score), kFullScore);
}

}  // namespace

uint32_t MatchSpTemplates(const uint8_t* first, const uint8_t* second, uint32_t* score) {
  Comparison comparison;
  if (!compare(first, second, comparison)) return 1;
  if (score != nullptr) *score = final_score(comparison);
  return QUO_OK;
}
