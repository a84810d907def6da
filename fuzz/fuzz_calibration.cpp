// Finger mean, DAC settings and the choice of a frame against their definitions.
// Input: function, arguments, then a frame.
#include <array>
#include <bit>
#include <cmath>

#include "reference/calibration.h"
#include "support/drawn.h"

using namespace quo_fuzz;

namespace {

constexpr int kTouched = 77;

void measure(Input& input) {
  const uint8_t asked = choice(input, 4);
  Image image;
  const Size size = frame(input, image);
  reference::Finger finger{kTouched, kTouched}, expected = reference::finger(image);
  if ((asked & 1) != 0) expected.mean = kTouched;
  if ((asked & 2) != 0) expected.coverage = kTouched;
  const uint32_t result =
      tev_GetFingerMean(address(image), size.width, size.height, (asked & 1) != 0 ? nullptr : &finger.mean,
                        (asked & 2) != 0 ? nullptr : &finger.coverage);
  require(result == QUO_OK && finger == expected, "the finger is the reference's");
  require(tev_GetFingerMean(nullptr, size.width, size.height, &finger.mean, &finger.coverage) == QUO_NULL_ARGUMENT &&
              finger == expected,
          "nothing is written without a frame");
}

// The gain rounds to single precision at each product.
uint8_t dac_for(const quo_gain_settings& settings, uint8_t target, uint32_t mode, double mean) {
  static constexpr float kFirst[] = {1.0F, 2.0F, 4.0F, 5.6F, 7.0F, 8.0F, 11.3F, 14.0F};
  volatile float gain = kFirst[settings.first_stage % 8];
  gain = gain * static_cast<float>(settings.second_stage % 4 + 1);
  gain = gain * static_cast<float>(settings.third_stage % 4 + 1);
  gain = gain * 0.145F;
  const double change = (target - mean) / static_cast<double>(gain);
  const double dac = mode == 1 || mode == 2 ? settings.dac + change : settings.dac - change;
  return std::isnan(dac) ? 0 : static_cast<uint8_t>(std::clamp(dac, 0.0, 255.0));
}

// Any mean: also what is not a number, and what is far outside gray levels.
void adjust(Input& input) {
  quo_gain_settings settings;
  for (uint8_t* field :
       {&settings.carried, &settings.first_stage, &settings.second_stage, &settings.third_stage, &settings.dac}) {
    *field = input.byte();
  }
  const uint8_t target = input.byte();
  const auto mode = static_cast<uint32_t>(number(input));
  uint64_t bits = 0;
  const bool any = choice(input, 2) == 0;
  for (int i = 0; i < 8 && any; i++) bits = bits << 8 | input.byte();
  const double mean = any ? std::bit_cast<double>(bits) : input.u16() / 256.0;
  quo_gain_settings expected = settings, changed;
  expected.dac = dac_for(settings, target, mode, mean);
  require(tev_AutoGainDacpInside(&settings, &changed, target, mode, mean) == QUO_OK, "it succeeds");
  require(std::bit_cast<std::array<uint8_t, 5>>(changed) == std::bit_cast<std::array<uint8_t, 5>>(expected), "the DAC");
  require(tev_AutoGainDacpInside(&settings, &settings, target, mode, mean) == QUO_OK && settings.dac == expected.dac,
          "in place too");
}

void adjust_packed(Input& input) {
  const uint8_t a = input.byte(), b = input.byte(), c = input.byte(), target = input.byte(), given = input.byte();
  const auto mode = static_cast<uint32_t>(number(input));
  const bool measured = choice(input, 2) == 0;
  Image image;
  const Size size = frame(input, image);
  const uint8_t mean = measured ? given : reference::finger(image).mean;
  const Bytes packed = {a, b, c};
  Bytes out(3, kTouched), expected = out;
  const uint32_t result = tev_AutoGainDacp(measured ? nullptr : address(image), size.width, size.height,
                                           measured ? &given : nullptr, packed.data(), out.data(), target, mode);
  require(result == (mean > 220 ? QUO_NO_FINGER : QUO_OK), "a finger is not brighter than 220");
  if (result == QUO_OK) {
    const auto bits = [](int value, int shift, int count) {
      return static_cast<uint8_t>(value >> shift & ((1 << count) - 1));
    };
    const bool is_short = mode == 2 || mode == 3;
    const quo_gain_settings settings =
        is_short ? quo_gain_settings{0, bits(a, 0, 3), bits(a, 3, 2), 0, c}
                 : quo_gain_settings{bits(a, 0, 3), bits(a, 3, 3), bits(a, 6, 2), bits(b, 0, 2), c};
    expected[0] = static_cast<uint8_t>(settings.carried | settings.first_stage << 3 | settings.second_stage << 6);
    expected[1] = static_cast<uint8_t>((b & 0xFC) | settings.third_stage);
    expected[2] = dac_for(settings, target, mode, mean);
  }
  require(out == expected, "the settings are the reference's");
}

enum class Kind { kNothing, kDark, kContrasted, kFlatBright, kFlatMid, kFlat };

// The class of a frame, and its share of low pixels.
Kind classify(const Image& image, double& low_share) {
  double dark = 0, low = 0, high = 0, sum = 0, deviations = 0;
  std::vector<uint32_t> levels(200);
  for (const uint8_t pixel : image.pixels) {
    if (pixel >= 200) continue;
    levels[pixel]++;
    (pixel < 15 ? dark : pixel < 128 ? low : high)++;
    if (pixel >= 15) sum += pixel;
  }
  if (low + high == 0 || dark + low + high <= 1000) return Kind::kNothing;
  const double mean = sum / (low + high);
  for (uint32_t level = 15; level < 200; level++) deviations += levels[level] * std::fabs(level - mean);
  const double deviation = deviations / (low + high);
  low_share = 100.0 * low / (dark + low + high);
  if (100.0 * dark / (dark + low + high) > 25) return Kind::kDark;
  if (deviation >= 15) return Kind::kContrasted;
  if (low_share < 10) return Kind::kFlatBright;
  return deviation > 10 ? Kind::kFlatMid : Kind::kFlat;
}

// Index of the frame to be chosen, -1 for none.
int best_of(const std::vector<Image>& frames) {
  std::vector<int> of_kind[6];
  double best_share = 0;
  int best = -1;
  for (size_t i = 0; i < frames.size(); i++) {
    double share = 0;
    const Kind kind = classify(frames[i], share);
    of_kind[static_cast<int>(kind)].push_back(static_cast<int>(i));
    if (kind == Kind::kContrasted && share > best_share) best_share = share, best = static_cast<int>(i);
  }
  const auto& dark = of_kind[static_cast<int>(Kind::kDark)];
  const auto& mid = of_kind[static_cast<int>(Kind::kFlatMid)];
  if (frames.empty()) return 255;
  if (best >= 0) return best;
  if (dark.size() == frames.size()) return static_cast<int>(frames.size()) - 1;
  if (dark.size() == 1 && !of_kind[static_cast<int>(Kind::kFlatBright)].empty()) return dark[0];
  return !dark.empty() && mid.size() == 1 ? mid[0] : -1;
}

// Several frames of one content, each with another contrast and brightness; some are missing.
void choose(Input& input) {
  std::vector<int> contrasts(choice(input, 7)), brightnesses;
  for (int& contrast : contrasts) {
    contrast = input.byte();
    brightnesses.push_back(input.byte());
  }
  Image image;
  const Size size = frame(input, image);
  std::vector<Image> frames;
  std::vector<const uint8_t*> places;
  for (size_t i = 0; i < contrasts.size(); i++) {
    const bool missing = contrasts[i] == 255;
    frames.emplace_back(missing ? 0 : image.width, missing ? 0 : image.height, [&](int32_t x, int32_t y) {
      return std::clamp(image.at(x, y) * contrasts[i] / 128 + brightnesses[i] - 64, 0, 255);
    });
    places.push_back(missing ? nullptr : address(frames.back()));
  }
  uint8_t chosen = kTouched;
  const int expected = best_of(frames);
  const uint32_t result =
      FP_ChooseBestHist(places.data(), static_cast<uint8_t>(places.size()), size.width, size.height, &chosen);
  require(result == (expected < 0 ? QUO_NO_CANDIDATE : QUO_OK), "a frame is found when there is one");
  require(chosen == (expected < 0 ? kTouched : expected), "it is the reference's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  static constexpr void (*kTargets[])(Input&) = {measure, adjust, adjust_packed, choose};
  kTargets[choice(input, std::size(kTargets))](input);
  return 0;
}
