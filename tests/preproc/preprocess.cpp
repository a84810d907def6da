#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/preproc.h"
#include "support/hooks.h"

using namespace quo_test;
using testing::ElementsAre;
using Events = std::vector<std::string>;

namespace {

const char kStart[] = "FP_ImagePreproc_Step1/22", kBorders[] = "FillBorders/12",
           kStripes[] = "RemoveVerticalStripes/22", kStep1End[] = "FP_ImagePreproc_Step1_FunEnd/29",
           kStep2End[] = "FP_ImagePreproc_Step2_FunEnd/29";

// A finger over the left 24 of 40 columns, 60 per cent of the blocks, on a background of 200 (background value 186).
Image finger() {
  Random random(34);
  return Image(40, 40, [&](int32_t x, int32_t y) {
    return x < 24 ? 90 + 20 * ((x + y) / 3 % 2) + random.between(0, 6) + (x == 12 ? 9 : 0) : 200;
  });
}

Image bordered(Image frame, uint8_t flags) {
  FillBorders(frame.data(), frame.width, frame.height, flags);
  return frame;
}

Image balanced(const Image& frame) {
  const auto gain = static_cast<int>(quo_reference::enhance_coefficient(frame, 100));
  EXPECT_GE(gain, 2);  // or there is nothing to see
  return quo_reference::balanced(frame, {.band_rows = frame.height, .gain = gain});
}

}  // namespace

TEST(FP_ImagePreproc, RunsTheWholeChainUnlessTheCoverageIsTooLow) {
  const struct {
    int required, bg, flags;
    uint32_t result;
    int measured;
    Events events;
  } cases[] = {
      {61, 0, 6, QUO_LOW_COVERAGE, 60, {kStart, kBorders, kStep1End}},
      {101, 255, 0, QUO_LOW_COVERAGE, 100, {kStart, kStep1End}},
      {1, 50, 0, QUO_LOW_COVERAGE, 0, {kStart, kStep1End}},
      {60, 0, 15, QUO_OK, 60, {kStart, kBorders, kStripes, kStep1End, kStep2End}},
      {0, 50, 0, QUO_OK, 0, {kStart, kStripes, kStep1End, kStep2End}},
      {61, 255, 0, QUO_OK, 100, {kStart, kStripes, kStep1End, kStep2End}},
  };
  for (const auto& [required, bg, flags, result, measured, events] : cases) {
    Image frame = finger();
    auto area = static_cast<uint8_t>(required);
    reset_hooks();
    EXPECT_EQ(FP_ImagePreproc(frame.data(), 40, 40, static_cast<uint8_t>(bg), &area, static_cast<uint8_t>(flags)),
              result);
    EXPECT_EQ(area, measured);
    EXPECT_EQ(hooks().events, events);
    const Image with_borders = bordered(finger(), static_cast<uint8_t>(flags));
    EXPECT_EQ(frame, result == QUO_OK ? balanced(quo_reference::without_stripes(with_borders)) : with_borders);
  }
}

// Four arrays of the stripe removal, the integral image, the probe: what is done by then stays. Without an area no
// coverage is checked, though nothing is darker than a background value of 1.
TEST(FP_ImagePreproc, ReportsEveryAllocationThatFails) {
  Image frame;
  const Image with_borders = bordered(finger(), 3), without_stripes = quo_reference::without_stripes(with_borders);
  const auto call = [&] {
    frame = finger();
    return FP_ImagePreproc(frame.data(), 40, 40, 1, nullptr, 3);
  };
  for_each_failing_allocation(call, [&](uint64_t index, uint32_t result) {
    EXPECT_EQ(result, QUO_NO_MEMORY);
    EXPECT_EQ(hooks().live_blocks, 0U);
    EXPECT_EQ(frame, index < 4 ? with_borders : index == 4 ? without_stripes : balanced(without_stripes)) << index;
    EXPECT_EQ(hooks().events.back(), index < 4 ? kStep1End : kStep2End);
  });
  EXPECT_EQ(frame, balanced(without_stripes));
  EXPECT_THAT(hooks().sizes, ElementsAre(160, 40, 40, 80, 41 * 41 * 4, 1600));
  EXPECT_EQ(hooks().live_blocks, 0U);
}

TEST(FP_ImagePreproc, RefusesNullFramesInEveryStage) {
  uint8_t area = 50;
  reset_hooks();
  EXPECT_EQ(FP_ImagePreproc(nullptr, 40, 40, 0, &area, 15), QUO_NO_IMAGE);
  EXPECT_EQ(FP_ImagePreproc_Step1(nullptr, 40, 40, 0, &area, 15), QUO_NO_IMAGE);
  EXPECT_EQ(FP_ImagePreproc_Step2(nullptr, 40, 40), QUO_NO_IMAGE);
  EXPECT_EQ(FP_ImagePreproc_MCU(nullptr, 40, 40, 15), QUO_NO_IMAGE);
  EXPECT_EQ(area, 50);
  EXPECT_EQ(hooks().events, (Events{kStep1End, kStep1End, kStep2End}));
  EXPECT_THAT(hooks().sizes, ElementsAre());
}

TEST(FP_ImagePreproc_Step2, ProbesForAFrameEvenWhenNothingIsBalanced) {
  Image frame(16, 16, 255);
  reset_hooks();
  EXPECT_EQ(FP_ImagePreproc_Step2(frame.data(), 16, 16), QUO_OK);
  EXPECT_EQ(FP_ImagePreproc_Step2(frame.data(), -16, -16), QUO_OK);
  EXPECT_THAT(hooks().sizes, ElementsAre(256, 0));
  EXPECT_EQ(FP_ImagePreproc_Step2(frame.data(), 1 << 16, 1 << 16), QUO_NO_MEMORY);
  EXPECT_EQ(hooks().sizes.size(), 2U);
}

TEST(FP_ImagePreproc_MCU, RepairsBordersAndStripesSilently) {
  for (const uint8_t flags : {0, 9}) {
    Image frame = finger();
    reset_hooks();
    EXPECT_EQ(FP_ImagePreproc_MCU(frame.data(), 40, 40, flags), QUO_OK);
    EXPECT_EQ(frame, quo_reference::without_stripes(bordered(finger(), flags)));
    EXPECT_EQ(hooks().events, Events{});
    fail_allocation(0);
    EXPECT_EQ(FP_ImagePreproc_MCU(frame.data(), 40, 40, flags), QUO_NO_MEMORY);
  }
}
