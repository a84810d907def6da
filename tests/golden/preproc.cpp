#include <algorithm>

#include "golden/functions.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

uint8_t byte(Case& c) { return c.random().byte(); }

void call_background(Case& c) {
  const uint8_t* const frame = c.frame();
  c.add(FindBgValue(frame, c.width, c.height, c.maybe(c.output<uint8_t>())));
}

void call_image_background(Case& c) {
  const uint8_t* const frame = c.maybe(c.frame());
  c.add(FP_GetImageBgValue(frame, c.width, c.height, c.maybe(c.output<uint8_t>())));
}

struct AreaOutputs {
  explicit AreaOutputs(Case& c)
      : percentage(c.maybe(c.output<uint8_t>())),
        mean(c.maybe(c.output<uint8_t>())),
        x(c.maybe(c.output<int32_t>())),
        y(c.maybe(c.output<int32_t>())) {}
  uint8_t* percentage;
  uint8_t* mean;
  int32_t* x;
  int32_t* y;
};

void call_valid_area(Case& c) {
  const uint8_t* const frame = c.frame();
  const AreaOutputs out(c);
  c.add(GetValidArea(frame, c.width, c.height, byte(c), out.percentage, out.mean, out.x, out.y));
}

void call_fp_valid_area(Case& c) {
  const uint8_t* const frame = c.frame();
  const AreaOutputs out(c);
  c.add(FP_GetValidArea(frame, c.width, c.height, c.pick<uint8_t>({0, 128, 200, 255}), out.percentage, out.mean));
}

void call_fingerprint_info(Case& c) {
  const uint8_t* const frame = c.frame();
  const AreaOutputs out(c);
  c.add(FP_GetFingerprintInfo(frame, c.width, c.height, out.mean, out.percentage, out.x, out.y));
}

void call_block_valid_area(Case& c) {
  const uint8_t* const frame = c.frame();
  uint8_t* out[4];
  for (uint8_t*& mean : out) mean = c.maybe(c.output<uint8_t>());
  c.add(FP_GetBlockValidArea(frame, c.width, c.height, out[0], out[1], out[2], out[3]));
}

void call_borders(Case& c) {
  uint8_t* const frame = c.in_place(c.content());
  FillBorders(frame, c.width, c.height, byte(c));
}

template <auto remove>
void call_stripes(Case& c) {
  if (c.random().chance(50)) {
    uint8_t* const frame = c.in_place(c.content());
    c.add(remove(frame, frame, c.width, c.height));
  } else {
    const uint8_t* const frame = c.frame();
    c.add(remove(frame, c.image_output(c.width, c.height), c.width, c.height));
  }
}

void call_coefficient(Case& c) {
  const int32_t target = c.pick({100, 100, 1, 0, -50, INT_MAX, INT_MIN});
  const uint8_t* const frame = c.maybe(c.frame());
  c.add(GetEnhanceCoef(frame, static_cast<uint32_t>(c.width), static_cast<uint32_t>(c.height), target));
}

void call_balance_slice(Case& c) {
  uint8_t* const frame = c.in_place(c.content());
  const auto radius = static_cast<uint32_t>(c.argument(0, 9));
  const auto band_rows = static_cast<uint32_t>(c.argument(1, 40));
  const auto gain = static_cast<uint8_t>(c.argument(2, 12));
  const auto top = static_cast<uint8_t>(c.argument(0, 4));
  const auto bottom = static_cast<uint8_t>(c.argument(0, 4));
  c.add(LocalGrayBalance_Slice(frame, c.width, c.height, radius, band_rows, gain, top, bottom));
}

template <auto preprocess>
void call_preprocess(Case& c) {
  uint8_t* const frame = c.maybe(c.in_place(c.content()));
  const uint8_t bg = c.pick<uint8_t>({0, 0, 0, 200});
  uint8_t* const area = c.maybe(c.output<uint8_t>(c.pick<uint8_t>({0, 20, 60, 101})));
  c.add(preprocess(frame, c.width, c.height, bg, area, byte(c)));
}

void call_step2(Case& c) { c.add(FP_ImagePreproc_Step2(c.maybe(c.in_place(c.content())), c.width, c.height)); }

void call_mcu(Case& c) {
  uint8_t* const frame = c.maybe(c.in_place(c.content()));
  c.add(FP_ImagePreproc_MCU(frame, c.width, c.height, byte(c)));
}

void call_enhance_slice(Case& c) {
  uint8_t* const frame = c.maybe(c.in_place(c.content()));
  const int32_t rows = c.argument(3, 40);
  c.add(FP_ImageEnhance_Slice(frame, c.width, c.height, rows, c.pick({100, 100, 50, 0, -1, 255})));
}

}  // namespace

const std::vector<Function> kPreprocFunctions = {
    {"FindBgValue", call_background},
    {"FP_GetImageBgValue", call_image_background},
    {"GetValidArea", call_valid_area},
    {"FP_GetValidArea", call_fp_valid_area},
    {"FP_GetFingerprintInfo", call_fingerprint_info},
    {"FP_GetBlockValidArea", call_block_valid_area},
    {"FillBorders", call_borders},
    {"RemoveVerticalStripes", call_stripes<RemoveVerticalStripes>},
    {"RemoveVerticalStripes_All", call_stripes<RemoveVerticalStripes_All>},
    {"RemoveVerticalStripes_Sector", call_stripes<RemoveVerticalStripes_Sector>},
    {"GetEnhanceCoef", call_coefficient},
    {"LocalGrayBalance_Slice", call_balance_slice},
    {"FP_ImagePreproc", call_preprocess<FP_ImagePreproc>},
    {"FP_ImagePreproc_Step1", call_preprocess<FP_ImagePreproc_Step1>},
    {"FP_ImagePreproc_Step2", call_step2},
    {"FP_ImagePreproc_MCU", call_mcu},
    {"FP_ImageEnhance_Slice", call_enhance_slice},
};

}  // namespace golden
