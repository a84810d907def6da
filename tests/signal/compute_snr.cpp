#include "reference/signal.h"
#include "support/testing.h"

using namespace quo_test;
using reference::Snr;

namespace {

Snr measure(const Image& frame) {
  uint8_t snr = 77, signal = 77, noise = 77;
  const auto width = static_cast<uint32_t>(frame.width), height = static_cast<uint32_t>(frame.height);
  EXPECT_EQ(FP_ComputeSNR(ReadOnly(frame).data(), width, height, &snr, &signal, &noise), QUO_OK);
  return {snr, signal, noise};
}

// Stripes along x that the smoothing keeps: 4 pixels of each gray, so only the pixels at the steps change.
Image bars(int32_t width, int32_t height, int low, int high) {
  return Image(width, height, [&](int32_t x, int32_t) { return x / 4 % 2 == 0 ? low : high; });
}

}  // namespace

TEST(FP_ComputeSNR, HasTheseResults) {
  const struct {
    Image frame;
    Snr expected;
  } cases[] = {
      {Image(100, 100, 137), {0, 0, 1}},
      // Bars of 100 and 140: smoothed to 100 100 110 130 140 140 130 110 with variance 250; what is left is 0, 0, -10,
      // 10, 0, 0, 10, -10 with variance 50. 2500 / 51 = 49.01; the roots of 2500 and 51 are 50 and 7.14.
      {bars(40, 40, 100, 140), {49, 50, 7}},
      // Twice the contrast, four times both variances: 10000 / 201 = 49.75, not rounded.
      {bars(40, 40, 20, 100), {49, 100, 14}},
  };
  for (const auto& c : cases) EXPECT_EQ(measure(c.frame), c.expected);
}

TEST(FP_ComputeSNR, EqualsItsDefinition) {
  for_each_frame(5, 40, {{160, 160}}, [](const Image& frame, Random&, Guard) {
    if (frame.width < 16 || frame.height < 16) return;
    ASSERT_EQ(measure(frame), reference::snr(frame)) << frame.width << "x" << frame.height;
  });
}

// The truncated mean matters only where the rest is cut off at 0 or 255, as in frames of few extreme grays.
TEST(FP_ComputeSNR, TakesTheMeanOfTheSmoothedFrame) {
  Random random(6);
  for (int round = 0; round < 6000; round++) {
    const int32_t dark = random.between(0, 40), bright = random.between(60, 255);
    const Image frame(17, 17, [&](int32_t, int32_t) { return random.chance(50) ? dark : bright; });
    ASSERT_EQ(measure(frame), reference::snr(frame)) << "round " << round;
  }
}

TEST(FP_ComputeSNR, RefusesSizesBeyondMemory) {
  uint8_t snr = 77;
  reset_hooks();  // nothing is asked for, nothing read
  for (const auto& [width, height] : {std::pair{65536U, 65536U}, {65536U, 32768U}, {UINT32_MAX, 1U}, {1U << 30, 1U}}) {
    EXPECT_EQ(FP_ComputeSNR(nullptr, width, height, &snr, nullptr, nullptr), QUO_NO_MEMORY) << width << "x" << height;
  }
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
