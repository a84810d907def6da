#include "quoFPAlg.h"

namespace {

constexpr float kFirstStage[8] = {1.0F, 2.0F, 4.0F, 5.6F, 7.0F, 8.0F, 11.3F, 14.0F};
constexpr float kSecondStage[4] = {1.0F, 2.0F, 3.0F, 4.0F};
constexpr float kThirdStage[4] = {1.0F, 2.0F, 3.0F, 4.0F};
constexpr float kGrayPerStep = 0.145F;   // gray levels by which one DAC step moves the mean at unit gain
constexpr uint8_t kLargestMean = 220;    // of a finger; above it nothing touches the sensor
constexpr uint32_t kFirstStageMask = 7;  // indices of the gain stages have 3, 2 and 2 bits
constexpr uint32_t kLaterStageMask = 3;

uint8_t bits(uint8_t byte, int shift, uint32_t mask) { return static_cast<uint8_t>((uint32_t{byte} >> shift) & mask); }

// The short layout has no third stage and no field to carry through.
bool has_short_layout(uint32_t mode) { return mode == 2 || mode == 3; }

bool dac_raises_mean(uint32_t mode) { return mode == 1 || mode == 2; }

quo_gain_settings unpack(const uint8_t* packed, uint32_t mode) {
  if (has_short_layout(mode)) {
    return {.carried = 0,
            .first_stage = bits(packed[0], 0, kFirstStageMask),
            .second_stage = bits(packed[0], 3, kLaterStageMask),
            .third_stage = 0,
            .dac = packed[2]};
  }
  return {.carried = bits(packed[0], 0, 7),
          .first_stage = bits(packed[0], 3, kFirstStageMask),
          .second_stage = bits(packed[0], 6, kLaterStageMask),
          .third_stage = bits(packed[1], 0, kLaterStageMask),
          .dac = packed[2]};
}

// The same in every mode, the short layout's too. Bits 2 to 7 of the second byte are carried through.
void pack(const quo_gain_settings& settings, uint8_t second_byte, uint8_t* packed) {
  packed[0] = static_cast<uint8_t>(settings.first_stage << 3 | settings.second_stage << 6 | settings.carried);
  packed[1] = static_cast<uint8_t>((second_byte & ~kLaterStageMask) | settings.third_stage);
  packed[2] = settings.dac;
}

// Gray levels by which one DAC step moves the mean; every product rounds to single precision.
float gain_factor(const quo_gain_settings& settings) {
  return kFirstStage[settings.first_stage & kFirstStageMask] * kSecondStage[settings.second_stage & kLaterStageMask] *
         kThirdStage[settings.third_stage & kLaterStageMask] * kGrayPerStep;
}

// Truncated and limited to a byte; 0 for a value that is not a number.
uint8_t to_dac(double value) {
  if (!(value > 0.0)) return 0;
  return value < 255.0 ? static_cast<uint8_t>(value) : 255;
}

}  // namespace

uint32_t tev_AutoGainDacpInside(const quo_gain_settings* settings_in, quo_gain_settings* settings_out, uint8_t target,
                                uint32_t mode, double mean) {
  if (settings_out == nullptr) return QUO_NULL_ARGUMENT;
  *settings_out = *settings_in;
  const double change = (target - mean) / static_cast<double>(gain_factor(*settings_out));
  const double dac = settings_out->dac;
  settings_out->dac = to_dac(dac_raises_mean(mode) ? dac + change : dac - change);
  return QUO_OK;
}

uint32_t tev_AutoGainDacp(const uint8_t* frame, int32_t width, int32_t height, const uint8_t* measured_mean,
                          const uint8_t* packed_in, uint8_t* packed_out, uint8_t target, uint32_t mode) {
  if (packed_in == nullptr || packed_out == nullptr) return QUO_NULL_ARGUMENT;
  uint8_t mean = 0;
  if (measured_mean != nullptr) {
    mean = *measured_mean;
  } else if (const uint32_t result = tev_GetFingerMean(frame, width, height, &mean, nullptr); result != QUO_OK) {
    return result;
  }
  if (mean > kLargestMean) return QUO_NO_FINGER;

  const quo_gain_settings old_settings = unpack(packed_in, mode);
  quo_gain_settings new_settings;
  tev_AutoGainDacpInside(&old_settings, &new_settings, target, mode, mean);
  pack(new_settings, packed_in[1], packed_out);
  return QUO_OK;
}
