#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/sptemplate.h"
#include "sptemplate/records.h"
#include "support/frames.h"
#include "support/guarded.h"
#include "support/hooks.h"

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
  Random random(52);
  for (const auto& [width, height] : std::vector<std::pair<int32_t, int32_t>>{{160, 160},
                                                                              {120, 200},
                                                                              {25, 25},
                                                                              {25, 26},
                                                                              {26, 25},
                                                                              {64, 37},
                                                                              {37, 64},
                                                                              {131, 117},
                                                                              {192, 192},
                                                                              {400, 30}}) {
    for (const Fill fill : kAllFills) {
      const Image frame = generate(random, width, height, fill);
      Guarded pixels(frame.pixels, Guard::kAfter);
      pixels.make_read_only();
      uint8_t* record = nullptr;
      uint32_t size = 0;
      ASSERT_EQ(ExtractSpTemplates(pixels.data(), width, height, &record, &size), QUO_OK);
      ASSERT_EQ(size, static_cast<uint32_t>(3 * (width + height - 44) + 3));
      ASSERT_EQ(take(record, size), expected_record(frame)) << width << " x " << height;
    }
  }
}

TEST(ExtractSpTemplates, HandsOutOnlyWhatIsAskedFor) {
  const Image frame(30, 40, 7);
  uint8_t* record = nullptr;
  uint32_t size = 0;
  reset_hooks();
  EXPECT_EQ(ExtractSpTemplates(frame.data(), 30, 40, nullptr, &size), QUO_OK);
  EXPECT_EQ(size, 81U);
  EXPECT_EQ(hooks().live_blocks, 0U);
  EXPECT_EQ(ExtractSpTemplates(frame.data(), 30, 40, &record, nullptr), QUO_OK);
  EXPECT_EQ(take(record, size), expected_record(frame));
  EXPECT_EQ(hooks().live_blocks, 0U);
}

TEST(ExtractSpTemplates, RefusesFramesWithoutRoomBetweenTheMarginsOrTooLongForTheLengthField) {
  const uint8_t* const nowhere = nullptr;  // not read
  for (const auto& [width, height] : std::vector<std::pair<int32_t, int32_t>>{{24, 100},
                                                                              {100, 24},
                                                                              {0, 0},
                                                                              {-1, 100},
                                                                              {100, INT32_MIN},
                                                                              {25, 21865},
                                                                              {21865, 25},
                                                                              {65536 + 100, 100},
                                                                              {INT32_MAX, INT32_MAX}}) {
    uint8_t* record = nullptr;
    uint32_t size = 99;
    EXPECT_EQ(ExtractSpTemplates(nowhere, width, height, &record, &size), QUO_NO_MEMORY) << width << " x " << height;
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(size, 99U);
  }
  const Image longest(25, 21864, 9);
  uint8_t* record = nullptr;
  uint32_t size = 0;
  EXPECT_EQ(ExtractSpTemplates(longest.data(), 25, 21864, &record, &size), QUO_OK);
  EXPECT_EQ(size, 65538U);
  EXPECT_EQ(take(record, size), expected_record(longest));
}
