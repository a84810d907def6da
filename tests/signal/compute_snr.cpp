#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/signal.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;
using quo_reference::Snr;

namespace {

struct Measured {
  uint32_t result;
  uint8_t snr = 77, signal = 77, noise = 77;
  bool untouched() const { return snr == 77 && signal == 77 && noise == 77; }
};

Measured measure(const uint8_t* frame, uint32_t width, uint32_t height) {
  Measured m;
  m.result = FP_ComputeSNR(frame, width, height, &m.snr, &m.signal, &m.noise);
  return m;
}

Measured measure(const Image& frame) {
  return measure(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height));
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
  for (const auto& c : cases) {
    const Measured m = measure(c.frame);
    EXPECT_EQ(m.result, QUO_OK);
    EXPECT_EQ((Snr{m.snr, m.signal, m.noise}), c.expected);
  }
}

TEST(FP_ComputeSNR, EqualsItsDefinition) {
  Random random(5);
  auto check = [&](int32_t width, int32_t height, Fill fill) {
    const Image frame = generate(random, width, height, fill);
    Guarded guarded(frame.pixels, random.chance(50) ? Guard::kAfter : Guard::kBefore);
    guarded.make_read_only();
    const Measured m = measure(guarded.data(), static_cast<uint32_t>(width), static_cast<uint32_t>(height));
    ASSERT_EQ(m.result, QUO_OK);
    ASSERT_EQ((Snr{m.snr, m.signal, m.noise}), quo_reference::snr(frame)) << width << "x" << height;
  };
  for (const Fill fill : kAllFills) {
    for (int i = 0; i < 60; i++) check(random.between(16, 90), random.between(16, 90), fill);
    check(160, 160, fill);
  }
}

TEST(FP_ComputeSNR, RefusesFramesWithoutABlockAndSizesBeyondMemory) {
  const Image frame(100, 16);
  EXPECT_EQ(measure(frame.data(), 100, 16).result, QUO_OK);
  for (const auto& [width, height] : {std::pair{15U, 100U}, {100U, 15U}, {0U, 100U}, {100U, 0U}, {0U, UINT32_MAX}}) {
    const Measured m = measure(frame.data(), width, height);
    EXPECT_EQ(m.result, QUO_NO_MEMORY) << width << "x" << height;
    EXPECT_TRUE(m.untouched());
  }
  reset_hooks();  // nothing is asked for, nothing read
  for (const auto& [width, height] : {std::pair{65536U, 65536U}, {65536U, 32768U}, {UINT32_MAX, 1U}, {1U << 30, 1U}}) {
    EXPECT_EQ(measure(nullptr, width, height).result, QUO_NO_MEMORY) << width << "x" << height;
  }
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}

TEST(FP_ComputeSNR, WritesOnlyTheOutputsGiven) {
  const Image frame = bars(40, 40, 100, 140);
  uint8_t snr = 0, other = 77;
  EXPECT_EQ(FP_ComputeSNR(frame.data(), 40, 40, nullptr, &other, &other), QUO_NO_OUTPUT);
  EXPECT_EQ(other, 77);
  EXPECT_EQ(FP_ComputeSNR(frame.data(), 40, 40, &snr, nullptr, &other), QUO_OK);
  EXPECT_EQ(snr, 49);
  EXPECT_EQ(other, 7);
  EXPECT_EQ(FP_ComputeSNR(frame.data(), 40, 40, &snr, &other, nullptr), QUO_OK);
  EXPECT_EQ(other, 50);
}

TEST(FP_ComputeSNR, GivesBackEverythingWhateverFails) {
  const Image frame = bars(60, 40, 100, 140);
  reset_hooks();
  EXPECT_EQ(measure(frame).result, QUO_OK);
  const uint32_t pixels = 2400, blocks = 8 * 4 * 2;
  EXPECT_THAT(hooks().sizes,
              testing::ElementsAre(pixels, pixels, 4 * 60, 256, blocks, 2 * pixels, 256, blocks, blocks));
  EXPECT_EQ(hooks().live_blocks, 0U);
  for_each_failing_allocation([&] { return measure(frame); },
                              [](uint64_t index, const Measured& m) {
                                EXPECT_EQ(m.result, QUO_NO_MEMORY) << index;
                                EXPECT_TRUE(m.untouched());
                                EXPECT_EQ(hooks().live_blocks, 0U);
                              });
  reset_hooks();
}
