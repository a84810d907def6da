#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;
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
  const auto gain = static_cast<int>(reference::enhance_coefficient(frame, 100));
  EXPECT_GE(gain, 2);  // or there is nothing to see
  return reference::balanced(frame, {.band_rows = frame.height, .gain = gain});
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
    EXPECT_EQ(frame, result == QUO_OK ? balanced(reference::without_stripes(with_borders)) : with_borders);
  }
}

TEST(FP_ImagePreproc_Step2, RefusesSizesBeyondMemory) {
  Image frame(1, 1, 255);
  reset_hooks();
  EXPECT_EQ(FP_ImagePreproc_Step2(frame.data(), 1 << 16, 1 << 16), QUO_NO_MEMORY);
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}

TEST(FP_ImagePreproc_MCU, RepairsBordersAndStripesSilently) {
  for (const uint8_t flags : {0, 9}) {
    Image frame = finger();
    reset_hooks();
    EXPECT_EQ(FP_ImagePreproc_MCU(frame.data(), 40, 40, flags), QUO_OK);
    EXPECT_EQ(frame, reference::without_stripes(bordered(finger(), flags)));
    EXPECT_EQ(hooks().events, Events{});
  }
}
