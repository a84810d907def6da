#include "sptemplate/records.h"

using namespace quo_test;

namespace {

// Nothing for what is refused.
Bytes encoded(const Bytes& record) {
  Guarded input(record, Guard::kAfter);
  uint8_t* sp_template = nullptr;
  uint32_t size = 0;
  const uint32_t result = EncodeSpTemplates(input.data(), &sp_template, &size);
  EXPECT_EQ(result, sp_template != nullptr ? QUO_OK : QUO_NO_MEMORY);
  return take(sp_template, size);
}

}  // namespace

TEST(EncodeSpTemplates, WritesRunsBetweenLengthsAndTrailer) {
  const struct {
    Bytes record;
    Bytes expected;
  } cases[] = {
      {record_of({Bytes(136, 0)}), {1, 0, 138, 0, 0x88, 0, 0x88, 1}},
      {record_of({{0, 255, 0, 255, 0, 255}}), {1, 0, 8, 0, 6, 0, 1, 255, 1, 0, 1, 255, 1, 0, 1, 255, 1, 1}},
      {record_of({{7, 7, 8}, {8}}), {1, 0, 8, 0, 3, 7, 2, 8, 1, 0, 1, 8, 1, 1}},  // runs end with their section
      {record_of({Bytes(255, 0)}), {1, 1, 1, 0, 255, 0, 255, 1}},
      {record_of({Bytes(256, 0)}), {1, 1, 2, 1, 0, 0, 255, 0, 1, 1}},
      {record_of({Bytes(600, 9)}), {1, 2, 90, 2, 88, 9, 255, 9, 255, 9, 90, 1}},
      {record_of({{5}}, 200), {200, 0, 3, 0, 1, 5, 1, 200}},
      {record_of({}), {1, 0, 0, 1}},
  };
  for (const auto& c : cases) EXPECT_EQ(encoded(c.record), c.expected);
}

TEST(EncodeSpTemplates, FillsItsWorkBufferWithTheWorstRecords) {
  Bytes restless(65533);
  for (size_t i = 0; i < restless.size(); i++) restless[i] = static_cast<uint8_t>(i % 2);
  EXPECT_EQ(encoded(record_of({restless})).size(), 3U + 2U + 2U * 65533U + 1U);
  EXPECT_EQ(encoded(record_of({{1}, {1}, {1}})).size(), 3U + 3U * 4U + 1U);
}

TEST(EncodeSpTemplates, RefusesWhatIsNoProfileRecord) {
  const Bytes no_records[] = {
      {1, 0, 4, 0, 3, 5, 5},        // the section is one byte longer than the record
      {1, 0, 4, 0xFF, 0xFF, 5, 5},  // far longer
      {1, 0, 4, 0, 1, 5, 0},        // half a section header is left
      {1, 0, 1, 0},                 // likewise
      {1, 0, 2, 0, 0},              // an empty section
      {1, 0, 5, 0, 0, 0, 1, 5},     // likewise
  };
  for (const Bytes& record : no_records) EXPECT_EQ(encoded(record), Bytes()) << testing::PrintToString(record);
}
