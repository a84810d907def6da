#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/block_marks.h"
#include "frame/eight_bytes.h"
#include "frame/multiversion.h"
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

// Positions that are compared at once: as many as a vector register has.
using SixteenBytes = uint8_t __attribute__((vector_size(16)));
using ThirtyTwoBytes = uint8_t __attribute__((vector_size(32)));
constexpr uint32_t kMostAtOnce = 224;  // positions whose number a byte holds, in whole blocks of either size
static_assert(kMostAtOnce <= UINT8_MAX && kMostAtOnce % sizeof(ThirtyTwoBytes) == 0);

/** Counts dark positions in whole blocks, each place of a block in a byte of its own. */
template <typename Block>
class BlockCounts {
 public:
  /** Looks at one block; places where `counted` is 0 do not count, where it is 255 they do. */
  [[gnu::always_inline]] inline void add(const uint8_t* a, const uint8_t* b, const Block& counted) {
    static_assert(quo::kDark == 0);
    Block of_a, of_b;
    __builtin_memcpy(&of_a, a, sizeof of_a);
    __builtin_memcpy(&of_b, b, sizeof of_b);
    considered_ -= counted & reinterpret_cast<Block>((of_a == 0) | (of_b == 0));
    agreeing_ -= counted & reinterpret_cast<Block>((of_a | of_b) == 0);
  }

  [[gnu::always_inline]] inline uint32_t considered() const { return sum(considered_); }
  [[gnu::always_inline]] inline uint32_t agreeing() const { return sum(agreeing_); }

 private:
  // The product has the sum of eight bytes, below 256, in its top byte.
  [[gnu::always_inline]] static inline uint32_t sum(const Block& counts) {
    uint64_t eights[sizeof counts / sizeof(uint64_t)], sums = 0;
    __builtin_memcpy(eights, &counts, sizeof eights);
    for (const uint64_t eight : eights) sums += eight;
    return static_cast<uint32_t>(sums * quo::kEightTimes >> 56);
  }

  Block considered_{};
  Block agreeing_{};
};

// The positions after whole blocks are looked at in a block that overlaps the last one, where they alone count.
template <typename Block>
[[gnu::always_inline]] inline Overlap overlap_in_blocks(const uint8_t* a, const uint8_t* b, uint32_t length) {
  constexpr uint32_t kBlock = sizeof(Block);
  const uint32_t left = length % kBlock, whole = length - left;
  BlockCounts<Block> counts;
  for (uint32_t i = 0; i < whole; i += kBlock) counts.add(a + i, b + i, ~Block{});
  Block last;
  __builtin_memcpy(&last, quo::kLastOfBlock<kBlock>.data() + left, sizeof last);
  counts.add(a + length - kBlock, b + length - kBlock, last);
  return {length, counts.considered(), counts.agreeing()};
}

Overlap overlap_of_few(const uint8_t* a, const uint8_t* b, uint32_t length) {
  Overlap few{length};
  for (uint32_t i = 0; i < length; i++) {
    const bool dark_a = a[i] == quo::kDark, dark_b = b[i] == quo::kDark;
    few.considered += dark_a | dark_b;
    few.agreeing += dark_a & dark_b;
  }
  return few;
}

template <typename Block>
[[gnu::always_inline]] inline Overlap overlap(const uint8_t* a, const uint8_t* b, uint32_t length) {
  Overlap sum;
  for (uint32_t at = 0, count; at < length; at += count) {
    count = std::min(length - at, kMostAtOnce);
    const bool few = count < sizeof(Block);
    sum += few ? overlap_of_few(a + at, b + at, count) : overlap_in_blocks<Block>(a + at, b + at, count);
  }
  return sum;
}

/** What the sections of two records have in common. */
struct Comparison {
  Overlap total;
  uint32_t best = 0;
  uint32_t scores[kMostScores] = {};
  uint32_t recorded = 0;

  void add(const Overlap& section) {
    total += section;
    if (!section.scores()) return;
    const uint32_t score = section.score();
    best = std::max(best, score);
    if (recorded < kMostScores) scores[recorded++] = score;
  }
};

// False when the records do not fit together.
template <typename Block>
[[gnu::always_inline]] inline bool compare_blocks(const uint8_t* first, const uint8_t* second, Comparison& comparison) {
  if (first[0] != second[0] || quo::payload_length(first) != quo::payload_length(second)) return false;
  quo::SectionWalk a(first), b(second);
  while (!a.at_end()) {
    quo::Section of_a{}, of_b{};
    if (!a.next(of_a) || !b.next(of_b) || of_a.length != of_b.length) return false;
    comparison.add(overlap<Block>(of_a.profile, of_b.profile, of_a.length));
  }
  return true;
}

QUO_BASELINE bool compare(const uint8_t* first, const uint8_t* second, Comparison& comparison) {
  return compare_blocks<SixteenBytes>(first, second, comparison);
}

#ifdef QUO_WIDE
QUO_WIDE bool compare(const uint8_t* first, const uint8_t* second, Comparison& comparison) {
  return compare_blocks<ThirtyTwoBytes>(first, second, comparison);
}
#endif

// Standard deviation of the section scores about their truncated mean.
float spread(const Comparison& comparison) {
  if (comparison.recorded == 0) return 0;
  const uint32_t count = comparison.recorded;
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

// How many times a weak overall score counts. Scores between 0 and 100 spread less than 51: at most three times.
uint32_t weight_of_weak(const Comparison& comparison) {
  const double deviation = static_cast<double>(spread(comparison));
  return deviation > kSpreadUnit ? static_cast<uint32_t>(deviation / kSpreadUnit) : 1;
}

uint32_t final_score(const Comparison& comparison) {
  uint32_t overall = comparison.total.score();
  if (overall <= kWeakOverall) overall *= weight_of_weak(comparison);  // at most 147
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
