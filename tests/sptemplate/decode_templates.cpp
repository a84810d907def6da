#include "sptemplate/records.h"

using namespace quo_test;

namespace {

struct Decoded {
  uint32_t result;
  Bytes record;
};

Decoded decoded(const Bytes& sp_template) {
  Guarded input(sp_template, Guard::kAfter);
  uint8_t* record = nullptr;
  uint32_t size = 0;
  const uint32_t result = DecodeSpTemplates(input.data(), &record, &size);
  EXPECT_EQ(result == QUO_OK, record != nullptr);
  return {result, take(record, size)};
}

/** A template of runs as given, value and count. */
Bytes template_of(size_t payload, const Bytes& coded, uint8_t version = 1, uint8_t trailer = 1) {
  Bytes bytes{version};
  append(bytes, u16(payload));
  append(bytes, coded);
  bytes.push_back(trailer);
  return bytes;
}

}  // namespace

TEST(DecodeSpTemplates, ExpandsTheRunsOfEverySection) {
  const struct {
    Bytes sp_template;
    Bytes expected;
  } cases[] = {
      {template_of(138, {0, 0x88, 0, 0x88}), record_of({Bytes(136, 0)})},
      {template_of(8, {0, 3, 7, 2, 8, 1, 0, 1, 8, 1}), record_of({{7, 7, 8}, {8}})},
      {template_of(262, {1, 4, 0, 255, 0, 5}), record_of({Bytes(260, 0)})},  // two runs of one value
      {template_of(0, {}), record_of({})},
      {template_of(3, {0, 1, 5, 1}, 200, 200), record_of({{5}}, 200)},
      {template_of(3, {0, 1, 5, 1}, 0, 77), record_of({{5}}, 0)},  // version 0 has no trailer to compare
  };
  for (const auto& c : cases) EXPECT_EQ(decoded(c.sp_template).record, c.expected);
}

// What no encoder writes but stays within the record: a run that goes beyond its section, a run for an empty section.
TEST(DecodeSpTemplates, ExpandsLooseRunsWithinTheRecord) {
  EXPECT_EQ(decoded(template_of(6, {0, 2, 9, 4})).record, (Bytes{1, 0, 6, 0, 2, 9, 9, 9, 9}));
  EXPECT_EQ(decoded(template_of(7, {0, 0, 9, 2, 0, 1, 8, 1})).record, (Bytes{1, 0, 7, 0, 0, 9, 9, 0, 1, 8}));
  for (const uint8_t run : {5, 30, 59}) {  // amid room for runs of any length
    const auto left = static_cast<uint8_t>(60 - run);
    Bytes expected{1, 0, 64, 0, 1};
    append(expected, Bytes(run, 9));
    append(expected, {0, left});
    append(expected, Bytes(left, 8));
    EXPECT_EQ(decoded(template_of(64, {0, 1, 9, run, 0, left, 8, left})).record, expected);
  }
}

TEST(DecodeSpTemplates, RejectsWhatDoesNotFitTheRecord) {
  const Bytes rejected[] = {
      {1, 0x03, 0xFD},                       // T of 1021, rejected before anything else is read
      {0, 0xFF, 0xFF},                       // T of 65535
      template_of(3, {0, 1, 5, 1}, 1, 2),    // another trailer
      template_of(3, {0, 1, 5, 1}, 255, 0),  //
      {1, 0, 1},                             // half a section header
      template_of(4, {0, 1, 5, 1}),          // likewise, after a section
      {1, 0, 5, 0, 4},                       // a section longer than what remains
      {1, 0, 5, 0xFF, 0xFF},                 //
      {1, 0, 2, 0, 0},                       // an empty section without room for its run
      {1, 0, 5, 0, 3, 5, 4},                 // a run longer than what remains
      {1, 0, 5, 0, 3, 5, 2, 5, 255},         //
      {1, 0, 5, 0, 3, 5, 0},                 // a count of 0
      {1, 0, 5, 0, 0, 5, 0},                 // also for an empty section
      {1, 0, 40, 0, 38, 5, 3, 7, 0},         // and where there is room for many runs
      {1, 0, 70, 0, 68, 5, 40, 7, 40},       // runs of middle length, longer than what remains
      {1, 0, 70, 0, 68, 5, 9, 7, 60},        //
      {1, 0, 70, 0, 20, 5, 20, 0, 47},       // a section longer than what remains, amid room for runs
  };
  for (const Bytes& bytes : rejected) {
    EXPECT_EQ(decoded(bytes).result, QUO_BAD_TEMPLATE) << testing::PrintToString(bytes);
  }
}

TEST(DecodeSpTemplates, UndoesTheEncodingAndReadsNoFurther) {
  Random random(53);
  for (int round = 0; round < 500; round++) {
    std::vector<Bytes> profiles;
    for (size_t left = 1020; left > 2 && profiles.size() < 12;) {
      const auto most = std::min<int32_t>(static_cast<int32_t>(left) - 2, random.chance(10) ? 1018 : 200);
      profiles.push_back(random_profile(random, static_cast<size_t>(random.between(1, most))));
      left -= profiles.back().size() + 2;
    }
    const Bytes record = record_of(profiles, random.byte());
    uint8_t* coded = nullptr;
    uint32_t size = 0;
    ASSERT_EQ(EncodeSpTemplates(record.data(), &coded, &size), QUO_OK);
    Bytes bytes = take(coded, size);
    if (bytes[0] == 0) bytes.pop_back();  // nor is the trailer of version 0 read
    ASSERT_EQ(decoded(bytes).record, record);
  }
}

// Every length about those that are written in steps.
TEST(DecodeSpTemplates, UndoesTheEncodingOfShortRecords) {
  Random random(54);
  for (size_t positions = 1; positions < 70; positions++) {
    const Bytes record = record_of({random_profile(random, positions)});
    uint8_t* coded = nullptr;
    uint32_t size = 0;
    ASSERT_EQ(EncodeSpTemplates(record.data(), &coded, &size), QUO_OK);
    ASSERT_EQ(decoded(take(coded, size)).record, record);
  }
}

// The longest reading there is: runs of one position through the largest record.
TEST(DecodeSpTemplates, ReadsNoMoreThanItsBound) {
  Bytes coded = u16(1018);
  for (int i = 0; i < 1018; i++) append(coded, {static_cast<uint8_t>(i), 1});
  const Bytes longest = template_of(1020, coded);
  EXPECT_EQ(longest.size(), QUO_SP_MAX_READ);
  EXPECT_EQ(decoded(longest).result, QUO_OK);
}
