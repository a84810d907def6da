#include "reference/sptemplate.h"
#include "sptemplate/records.h"

using namespace quo_test;

namespace {

Bytes row(const Image& frame, int32_t y) {
  Bytes line;
  for (int32_t x = 12; x <= frame.width - 13; x++) line.push_back(frame.at(x, y));
  return reference::binarized(line);
}

Bytes column(const Image& frame, int32_t x) {
  Bytes line;
  for (int32_t y = 12; y <= frame.height - 13; y++) line.push_back(frame.at(x, y));
  return reference::binarized(line);
}

Bytes expected_record(const Image& frame) {
  const int32_t w = frame.width, h = frame.height;
  return record_of({row(frame, 12), row(frame, h / 2), row(frame, h - 12), column(frame, 12), column(frame, w / 2),
                    column(frame, w - 12)});
}

}  // namespace

TEST(ExtractSpTemplates, WritesVersionLengthsAndSixProfiles) {
  const auto check = [](const Image& frame) {
    uint8_t* record = nullptr;
    uint32_t size = 0;
    ASSERT_EQ(ExtractSpTemplates(ReadOnly(frame).data(), frame.width, frame.height, &record, &size), QUO_OK);
    ASSERT_EQ(size, static_cast<uint32_t>(3 * (frame.width + frame.height - 44) + 3));
    ASSERT_EQ(take(record, size), expected_record(frame)) << frame.width << " x " << frame.height;
  };
  Random random(52);
  const Size sizes[] = {{160, 160}, {120, 200}, {25, 25}, {25, 26}, {26, 25}, {131, 117}, {400, 30}, {25, 21864}};
  for (const auto& [width, height] : sizes) {
    for (const Fill fill : kAllFills) check(generate(random, width, height, fill));
  }
}

TEST(ExtractSpTemplates, RefusesFramesWithoutRoomBetweenTheMarginsOrTooLongForTheLengthField) {
  const uint8_t* const nowhere = nullptr;  // not read
  const Size sizes[] = {{24, 100}, {100, 24}, {25, 21865}, {21865, 25}, {65536 + 100, 100}, {INT32_MAX, INT32_MAX}};
  for (const auto& [width, height] : sizes) {
    uint8_t* record = nullptr;
    EXPECT_EQ(ExtractSpTemplates(nowhere, width, height, &record, nullptr), QUO_NO_MEMORY) << width << " x " << height;
    EXPECT_EQ(record, nullptr);
  }
}
