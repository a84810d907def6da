#include "reference/sptemplate.h"
#include "sptemplate/records.h"

using namespace quo_test;

namespace {

/** A section of two records: positions that are dark in both, in the first alone, in the second alone, in neither. */
struct Pair {
  size_t both, first, second, neither;
};

// A section of `n` dark positions of which `percent` per cent agree.
Pair scored(size_t percent, size_t n = 100) { return {percent * n / 100, 0, n - percent * n / 100, 0}; }

uint32_t match(const Bytes& first, const Bytes& second) {
  Guarded a(first, Guard::kAfter), b(second, Guard::kAfter);
  uint32_t score = 12345;
  EXPECT_EQ(MatchSpTemplates(a.data(), b.data(), &score), 0U);
  return score;
}

uint32_t score_of(const std::vector<Pair>& sections) {
  std::vector<Bytes> first, second;
  for (const Pair& pair : sections) {
    Bytes a(pair.both + pair.first, 0), b(pair.both, 0);
    append(a, Bytes(pair.second + pair.neither, 255));
    append(b, Bytes(pair.first, 254));
    append(b, Bytes(pair.second, 0));
    append(b, Bytes(pair.neither, 255));
    first.push_back(a);
    second.push_back(b);
  }
  return match(record_of(first), record_of(second));
}

}  // namespace

TEST(MatchSpTemplates, WeighsTheWholeAndTheBestSection) {
  const std::vector<Pair> blank(6, Pair{0, 0, 0, 90});
  EXPECT_EQ(score_of({6, scored(100)}), 100U);
  EXPECT_EQ(score_of(blank), 0U);
  EXPECT_EQ(score_of({}), 0U);
  EXPECT_EQ(score_of({6, scored(60)}), 60U);
  EXPECT_EQ(score_of({scored(60), scored(80)}), 73U);      // 0.7 x 70 + 0.3 x 80
  EXPECT_EQ(score_of({{1, 0, 1, 0}, {1, 1, 1, 0}}), 43U);  // 0.7 x 40 + 0.3 x 50; sections of 50 and 33 differ little
}

// Dark positions must be more than a third of the section, rounded down, for the section and for the whole alike.
TEST(MatchSpTemplates, CountsOnlySectionsWithEnoughDarkPositions) {
  EXPECT_EQ(score_of({{30, 0, 0, 60}}), 0U);
  EXPECT_EQ(score_of({{30, 0, 0, 59}}), 100U);
  EXPECT_EQ(score_of({{31, 0, 0, 59}}), 100U);
  EXPECT_EQ(score_of({{1, 0, 0, 1}}), 100U);
  EXPECT_EQ(score_of({{0, 0, 0, 1}}), 0U);
  // The best section counts where the whole is too bright: 0.3 x 100.
  EXPECT_EQ(score_of({{31, 0, 0, 59}, {0, 0, 0, 90}}), 30U);
  // And sections that do not count themselves count in the whole: 100 x (40 + 0) / (40 + 20), 0.7 x 66 + 0.3 x 100.
  EXPECT_EQ(score_of({{40, 0, 0, 0}, {0, 0, 20, 40}}), 76U);
}

TEST(MatchSpTemplates, RaisesAWeakScoreWhenTheSectionsDifferMuch) {
  // Section scores of 100 and 0 by turns: mean 50, deviation 50, so the whole counts three times.
  std::vector<Pair> turns;
  for (const size_t long_one : {58U, 58U, 62U}) {
    turns.push_back(scored(100, 40));
    turns.push_back(scored(0, long_one));
  }
  EXPECT_EQ(score_of(turns), 100U);  // 120 of 298 is 40; 0.7 x 120 + 0.3 x 100, limited
  // 49 is raised, 50 never.
  EXPECT_EQ(score_of({scored(100, 49), scored(0, 51)}), 100U);
  EXPECT_EQ(score_of({scored(100, 50), scored(0, 50)}), 65U);
  const struct {
    size_t low, high;
    uint32_t expected;
  } cases[] = {
      {10, 68, 47},  // deviation 29: once, 0.7 x 39 + 0.3 x 68
      {10, 70, 49},  // the root of 900 comes out just below 30: once, 0.7 x 40 + 0.3 x 70
      {8, 70, 75},   // 31: twice, 0.7 x 78 + 0.3 x 70
      {0, 87, 86},   // 43 and 44: twice, 0.7 x 86 + 0.3 x 87
      {0, 92, 100},  // 46: three times
  };
  for (const auto& c : cases) {
    EXPECT_EQ(score_of({scored(c.low), scored(c.high)}), c.expected) << c.low << " and " << c.high;
  }
}

// Ten equal sections make no deviation, so the share of 500 in 1300 is raised only when the others are among the first.
TEST(MatchSpTemplates, RecordsTenSectionScoresAtMost) {
  std::vector<Pair> sections(10, scored(20));
  sections.insert(sections.end(), 3, scored(100));
  EXPECT_EQ(score_of(sections), 56U);  // 0.7 x 38 + 0.3 x 100: the best section counts wherever it stands
  std::rotate(sections.begin(), sections.begin() + 10, sections.end());
  EXPECT_EQ(score_of(sections), 83U);  // 0.7 x 76 + 0.3 x 100
}

TEST(MatchSpTemplates, EqualsTheReferenceOnRandomRecords) {
  Random random(55);
  for (int round = 0; round < 3000; round++) {
    std::vector<Bytes> first, second;
    for (int i = random.between(0, 13); i >= 0; i--) {
      const auto length = static_cast<size_t>(random.chance(90) ? random.between(0, 60) : random.between(61, 1000));
      first.push_back(random_profile(random, length));
      second.push_back(random.chance(40) ? first.back() : random_profile(random, length));
    }
    const Bytes a = record_of(first), b = record_of(second);
    ASSERT_EQ(match(a, b), *reference::match(a, b)) << "round " << round;
  }
}

TEST(MatchSpTemplates, RefusesRecordsThatDoNotFitTogether) {
  const Bytes record = record_of({{0, 255, 0}, {0, 0}});
  const struct {
    Bytes first, second;
  } cases[] = {
      {record, record_of({{0, 255, 0}, {0, 0}}, 2)},   // another version
      {record, record_of({{0, 255, 0}, {0, 0, 0}})},   // another payload length
      {record, record_of({{0, 0}, {0, 255, 0}})},      // other section lengths
      {{1, 0, 4, 0, 3, 0, 0}, {1, 0, 4, 0, 3, 0, 0}},  // a section that leads out of the record
      {{1, 0, 4, 0xFF, 0xFF, 0, 0}, {1, 0, 4, 0xFF, 0xFF, 0, 0}},
      {{1, 0, 4, 0, 1, 0, 0}, {1, 0, 4, 0, 1, 0, 0}},  // half a section header
  };
  for (const auto& c : cases) {
    Guarded first(c.first, Guard::kAfter), second(c.second, Guard::kAfter);
    uint32_t score = 77;
    EXPECT_EQ(MatchSpTemplates(first.data(), second.data(), &score), 1U);
    EXPECT_EQ(MatchSpTemplates(second.data(), first.data(), &score), 1U);
    EXPECT_EQ(score, 77U);
  }
  EXPECT_EQ(MatchSpTemplates(record.data(), record.data(), nullptr), 0U);
}
