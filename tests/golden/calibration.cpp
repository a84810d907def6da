#include "golden/functions.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

void call_finger_mean(Case& c) {
  const uint8_t* const frame = c.maybe(c.frame());
  uint8_t *const mean = c.maybe(c.output<uint8_t>()), *const coverage = c.maybe(c.output<uint8_t>());
  c.add(tev_GetFingerMean(frame, c.width, c.height, mean, coverage));
}

uint32_t mode(Case& c) { return static_cast<uint32_t>(c.argument(0, 5)); }

void call_gain_inside(Case& c) {
  for (int i = 0; i < 16; i++) {
    quo_gain_settings settings;
    for (uint8_t* field :
         {&settings.carried, &settings.first_stage, &settings.second_stage, &settings.third_stage, &settings.dac}) {
      *field = c.random().byte();
    }
    const uint8_t target = c.random().byte();
    const uint32_t kind = mode(c);
    const double mean = c.random().between(-1000, 30000) / 100.0;
    c.add(tev_AutoGainDacpInside(&settings, c.maybe(&settings), target, kind, mean));
    c.add(settings.dac);
  }
}

void call_gain(Case& c) {
  const uint8_t* const frame = c.maybe(c.frame());
  const uint8_t measured = c.random().byte(), target = c.random().byte();
  const uint8_t* const mean = c.random().chance(50) ? &measured : nullptr;
  uint8_t* const settings = c.array<uint8_t>(3, 0);
  for (int i = 0; i < 3; i++) settings[i] = c.random().byte();
  uint8_t* const other = c.maybe(c.array<uint8_t>(3, 9));
  uint8_t* const output = c.random().chance(50) ? settings : other;
  c.add(tev_AutoGainDacp(frame, c.width, c.height, mean, settings, output, target, mode(c)));
}

void call_choose(Case& c) {
  std::vector<const uint8_t*> frames(static_cast<size_t>(c.random().between(0, 5)));
  for (const uint8_t*& frame : frames) frame = c.maybe(c.frame());
  const auto count = static_cast<uint8_t>(frames.size());
  c.add(FP_ChooseBestHist(frames.data(), count, c.width, c.height, c.maybe(c.output<uint8_t>())));
}

}  // namespace

const std::vector<Function> kCalibrationFunctions = {
    {"tev_GetFingerMean", call_finger_mean},
    {"tev_AutoGainDacpInside", call_gain_inside},
    {"tev_AutoGainDacp", call_gain},
    {"FP_ChooseBestHist", call_choose},
};

}  // namespace golden
