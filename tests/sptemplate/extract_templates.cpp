#include "reference/sptemplate.h"
#include "sptemplate/records.h"

using namespace quo_test;

TEST(ExtractSpTemplates, WritesVersionLengthsAndSixProfiles) {
  const auto check = [](const Image& frame) {
    uint8_t* record = nullptr;
    uint32_t size = 0;
    ASSERT_EQ(ExtractSpTemplates(ReadOnly(frame).data(), frame.width, frame.height, &record, &size), QUO_OK);
    ASSERT_EQ(size, static_cast<uint32_t>(3 * (frame.width + frame.height - 44) + 3));
    ASSERT_EQ(take(record, size), reference::record(frame)) << frame.width << " x " << frame.height;
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
