#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "support/testing.h"

using namespace quo_test;
using Packed = std::array<uint8_t, 3>;

namespace {

uint8_t new_dac(quo_gain_settings settings, uint8_t target, uint32_t mode, double mean) {
  quo_gain_settings changed{9, 9, 9, 9, 9};
  EXPECT_EQ(tev_AutoGainDacpInside(&settings, &changed, target, mode, mean), QUO_OK);
  const uint8_t dac = std::exchange(changed.dac, settings.dac);
  EXPECT_EQ(std::memcmp(&changed, &settings, sizeof settings), 0);
  return dac;
}

// The new bytes, for a mean that is already the target, so that only the packing shows.
Packed repack(Packed packed, uint32_t mode) {
  const uint8_t mean = 120;
  EXPECT_EQ(tev_AutoGainDacp(nullptr, 0, 0, &mean, packed.data(), packed.data(), 120, mode), QUO_OK);
  return packed;
}

}  // namespace

TEST(tev_AutoGainDacpInside, HasTheseResults) {
  const double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
  const struct {
    quo_gain_settings settings;
    uint8_t target;
    uint32_t mode;
    double mean;
    uint8_t dac;
  } cases[] = {
      {{0, 0, 0, 0, 100}, 120, 0, 110, 31},  // 10 / 0.145 = 68.97
      {{0, 0, 0, 0, 100}, 120, 1, 110, 168}, {{0, 0, 0, 0, 100}, 120, 2, 110, 168},
      {{0, 0, 0, 0, 100}, 120, 3, 110, 31},  {{0, 0, 0, 0, 100}, 120, UINT32_MAX, 110, 31},
      {{3, 7, 3, 3, 100}, 132, 1, 100, 100},                                   // a change of 0.985
      {{3, 7, 3, 3, 100}, 132, 0, 100, 99},  {{0, 3, 0, 0, 0}, 56, 1, 0, 68},  // 56 / 0.812 = 68.97
      {{0, 6, 2, 1, 0}, 200, 1, 0, 20},                                        // 200 / 9.831 = 20.3
      {{0, 0, 0, 0, 10}, 120, 0, 110, 0},    {{0, 0, 0, 0, 250}, 120, 1, 110, 255},
      {{0, 0, 0, 0, 100}, 0, 1, inf, 0},     {{0, 0, 0, 0, 100}, 0, 0, inf, 255},
      {{0, 0, 0, 0, 100}, 0, 1, 1e300, 0},   {{0, 0, 0, 0, 100}, 0, 0, nan, 0},
      {{0, 15, 7, 7, 100}, 132, 0, 100, 99},  // as 7, 3, 3
  };
  for (const auto& c : cases) {
    EXPECT_EQ(new_dac(c.settings, c.target, c.mode, c.mean), c.dac)
        << "first stage " << int{c.settings.first_stage} << ", mode " << c.mode << ", mean " << c.mean;
  }
  EXPECT_EQ(tev_AutoGainDacpInside(&cases[0].settings, nullptr, 1, 1, 1), QUO_NULL_ARGUMENT);
}

// The gain product is rounded to single precision at every step: where a change is a whole number but for that
// rounding, truncation shows it.
TEST(tev_AutoGainDacpInside, RoundsTheGainToSinglePrecision) {
  const float first[] = {1.0F, 2.0F, 4.0F, 5.6F, 7.0F, 8.0F, 11.3F, 14.0F}, later[] = {1.0F, 2.0F, 3.0F, 4.0F};
  int single_matters = 0;
  for (int i = 0; i < 128; i++) {
    const quo_gain_settings settings{0, static_cast<uint8_t>(i / 16), static_cast<uint8_t>(i / 4 % 4),
                                     static_cast<uint8_t>(i % 4), 0};
    const float a = first[settings.first_stage], b = later[settings.second_stage], c = later[settings.third_stage];
    volatile float gain = a * b;
    gain = gain * c;
    gain = gain * 0.145F;
    const auto single = static_cast<double>(gain);
    const auto exact = static_cast<double>(a) * static_cast<double>(b) * static_cast<double>(c) * 0.145;
    for (int steps = 1; steps < 255 && steps * gain < 255; steps++) {
      const double mean = 255 - steps * exact;
      const double change = (255 - mean) / single;
      ASSERT_EQ(new_dac(settings, 255, 1, mean), static_cast<int>(change)) << i << ", " << steps;
      single_matters += static_cast<int>(change) != static_cast<int>((255 - mean) / exact) ? 1 : 0;
    }
  }
  EXPECT_GT(single_matters, 100);
}

TEST(tev_AutoGainDacp, CarriesEverythingButTheDacThroughTheLongLayout) {
  for (int byte = 0; byte < 256; byte++) {
    for (const uint32_t mode : {0U, 1U, 4U, 77U}) {
      const Packed settings = {static_cast<uint8_t>(byte), static_cast<uint8_t>(255 - byte), 0x40};
      ASSERT_EQ(repack(settings, mode), settings);
    }
  }
}

TEST(tev_AutoGainDacp, MovesTheShortLayoutIntoTheLongOne) {
  for (const uint32_t mode : {2U, 3U}) {
    EXPECT_EQ(repack({0b111'10'101, 0xFF, 0x40}, mode), (Packed{0b10'101'000, 0xFC, 0x40}));
    EXPECT_EQ(repack({0b000'01'010, 0x00, 0x41}, mode), (Packed{0b01'010'000, 0x00, 0x41}));
  }
}

TEST(tev_AutoGainDacp, UsesTheGainsOfItsLayout) {
  const uint8_t mean = 100;
  Packed changed;
  auto dac = [&](Packed settings, uint8_t target, uint32_t mode) {
    EXPECT_EQ(tev_AutoGainDacp(nullptr, 0, 0, &mean, settings.data(), changed.data(), target, mode), QUO_OK);
    return int{changed[2]};
  };
  // First stage 3 (5.6), second 1 (2), third 3 (4) and 0 (1): 6.496 and 1.624 gray levels a step.
  EXPECT_EQ(dac({0x5A, 0xF3, 0x40}, 150, 1), 0x40 + 7);
  EXPECT_THAT(changed, testing::ElementsAre(0x5A, 0xF3, 0x40 + 7));
  EXPECT_EQ(dac({0b000'01'011, 0xF3, 0x40}, 150, 2), 0x40 + 30);
  EXPECT_EQ(dac({0b000'01'011, 0xF3, 0x40}, 150, 3), 0x40 - 31);
}

TEST(tev_AutoGainDacp, MeasuresTheFingerWhenNoMeanIsGiven) {
  const Image finger(16, 8, [](int32_t x, int32_t) { return x < 8 ? 110 : 240; }), background(16, 8, 240);
  const Packed settings = {0, 0, 100};
  Packed changed = {7, 7, 7};
  EXPECT_EQ(tev_AutoGainDacp(background.data(), 16, 8, nullptr, settings.data(), changed.data(), 120, 1),
            QUO_NO_FINGER);
  EXPECT_EQ(tev_AutoGainDacp(nullptr, 16, 8, nullptr, settings.data(), changed.data(), 120, 1), QUO_NULL_ARGUMENT);
  EXPECT_EQ(tev_AutoGainDacp(finger.data(), 16, 8, nullptr, nullptr, changed.data(), 120, 1), QUO_NULL_ARGUMENT);
  EXPECT_EQ(tev_AutoGainDacp(finger.data(), 16, 8, nullptr, settings.data(), nullptr, 120, 1), QUO_NULL_ARGUMENT);
  EXPECT_EQ(changed, (Packed{7, 7, 7}));
  EXPECT_EQ(tev_AutoGainDacp(finger.data(), 16, 8, nullptr, settings.data(), changed.data(), 120, 1), QUO_OK);
  EXPECT_EQ(changed, (Packed{0, 0, 168}));

  for (const uint8_t mean : {220, 221}) {
    EXPECT_EQ(tev_AutoGainDacp(finger.data(), 16, 8, &mean, settings.data(), changed.data(), 220, 1),
              mean == 220 ? QUO_OK : QUO_NO_FINGER);
  }
}
