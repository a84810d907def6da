// Capture preprocessing against its literal form.
// Input: function, failing allocation, arguments, then a frame.
#include "reference/preproc.h"
#include "support/drawn.h"

using namespace quo_fuzz;

namespace {

constexpr int kTouched = 77;

void background_and_area(Input& input, uint8_t) {
  const uint8_t given = input.byte();
  Image image;
  const Size size = frame(input, image);
  const auto found = reference::background_value(image);
  const uint8_t bg = found.value_or(255);
  uint8_t value = kTouched, other = kTouched;
  require(FindBgValue(address(image), size.width, size.height, &value) == (found ? 1 : 0), "found");
  require(value == found.value_or(kTouched), "the background value is the reference's");
  require(FP_GetImageBgValue(address(image), size.width, size.height, &other) == QUO_OK && other == bg, "or 255");

  reference::ValidArea area, info, shares;
  const auto expected = reference::valid_area(image, given), estimated = reference::valid_area(image, bg);
  GetValidArea(address(image), size.width, size.height, given, &area.percentage, &area.mean, &area.x, &area.y);
  FP_GetFingerprintInfo(address(image), size.width, size.height, &info.mean, &info.percentage, &info.x, &info.y);
  FP_GetValidArea(address(image), size.width, size.height, given, &shares.percentage, &shares.mean);
  const auto& shared = given == 0 ? estimated : expected;
  require(area == expected && info == estimated, "the area is the reference's");
  require(shares.percentage == shared.percentage && shares.mean == shared.mean, "so are its share and mean");
}

void quarters(Input& input, uint8_t failing) {
  const uint8_t asked = input.byte();
  Image image;
  const Size size = frame(input, image);
  const auto [result, means] = same_twice(failing, [&] {
    Bytes out(4, kTouched);
    uint8_t* place[4];
    for (size_t i = 0; i < 4; i++) place[i] = (asked >> i & 1) == 0 ? &out[i] : nullptr;
    const uint32_t code =
        FP_GetBlockValidArea(address(image), size.width, size.height, place[0], place[1], place[2], place[3]);
    return std::tuple(code, out);
  });
  require(result == (allocation_failed() ? QUO_NO_MEMORY : QUO_OK), "only memory can fail");
  const int32_t w = image.width / 2, h = image.height / 2;
  for (int32_t i = 0; i < 4; i++) {
    const Image part(w, h, [&](int32_t x, int32_t y) { return image.at(x + i % 2 * w, y + i / 2 * h); });
    const uint8_t mean = reference::valid_area(part, reference::background_value(image).value_or(255)).mean;
    const bool written = result == QUO_OK && (asked >> i & 1) == 0;
    require(means[static_cast<size_t>(i)] == (written ? mean : kTouched), "the means are the reference's");
  }
}

void stripes(Input& input, uint8_t failing) {
  const uint8_t kind = choice(input, 3);
  const bool in_place = choice(input, 2) == 0;
  Image image;
  const Size size = frame(input, image);
  const auto remove = kind == 0   ? RemoveVerticalStripes
                      : kind == 1 ? RemoveVerticalStripes_All
                                  : RemoveVerticalStripes_Sector;
  const auto [done, cleaned] = same_twice(failing, [&] {
    Image source = image, destination = image;
    const uint8_t code =
        remove(address(in_place ? destination : source), address(destination), size.width, size.height);
    require(source == image, "the source stays");
    return std::tuple(code, destination);
  });
  require((done == 1) == !(kind == 2 ? allocation_failed() : lacked_memory(size.width)), "only memory can fail");
  if (done == 0 || image.pixels.empty()) {
    require(cleaned == image, "nothing is written");
  } else {
    require(
        cleaned == (kind == 2 ? reference::without_sector_stripes(image, image) : reference::without_stripes(image)),
        "the frame without stripes is the reference's");
  }
}

void balance(Input& input, uint8_t failing) {
  const int32_t radius = number(input), band = number(input);
  const uint8_t gain = input.byte(), top = static_cast<uint8_t>(number(input)),
                bottom = static_cast<uint8_t>(number(input));
  Image image;
  const Size size = frame(input, image);
  const auto [result, out] = same_twice(failing, [&] {
    Image copy = image;
    const uint8_t code = LocalGrayBalance_Slice(address(copy), size.width, size.height, static_cast<uint32_t>(radius),
                                                static_cast<uint32_t>(band), gain, top, bottom);
    return std::tuple(code, copy);
  });
  // A band's memory may be more than a request can ask for, or than these hooks give.
  const uint64_t rows = band != 0 ? static_cast<uint32_t>(band) : static_cast<uint64_t>(std::max(size.height, 0));
  const bool huge = (static_cast<uint64_t>(std::max(size.width, 0)) + 1) * (rows + 1) > UINT32_MAX / 4;
  require((result != QUO_OK) == (gain >= 2 && (huge || allocation_failed())), "only memory can fail");
  Image expected = image;
  if (result == QUO_OK && !image.pixels.empty()) {
    const auto within = [](int32_t value, int32_t most) { return value < 0 ? most : std::min(value, most); };
    expected = reference::balanced(image, {.radius = within(radius, 1 << 16),
                                           .band_rows = band == 0 ? image.height : within(band, image.height),
                                           .gain = gain,
                                           .top = top,
                                           .bottom = bottom});
  }
  require(out == expected, "the balanced frame is the reference's");
}

void enhance(Input& input, uint8_t failing) {
  const int32_t slice = number(input), target = number(input);
  Image image;
  const Size size = frame(input, image);
  const double coefficient = image.pixels.empty() ? (target == 0 ? 0.0 : 1.0)
                                                  : GetEnhanceCoef(image.data(), static_cast<uint32_t>(image.width),
                                                                   static_cast<uint32_t>(image.height), target);
  require(coefficient == reference::enhance_coefficient(image, target), "the coefficient is the reference's");
  const auto [result, out] = same_twice(failing, [&] {
    Image copy = image;
    const uint32_t code = FP_ImageEnhance_Slice(address(copy), size.width, size.height, slice, target);
    return std::tuple(code, copy);
  });
  require(result == (allocation_failed() ? QUO_NO_MEMORY : QUO_OK), "only memory can fail");
  if (result == QUO_OK) require(out == reference::contrasted(image, target), "slices give what the whole does");
}

void preprocess(Input& input, uint8_t failing) {
  const uint8_t entry = choice(input, 4), bg = input.byte(), flags = input.byte();
  const int32_t required = input.byte() - 128;  // below 0: not asked
  Image image;
  const Size size = frame(input, image);
  const auto [result, share, out] = same_twice(failing, [&] {
    Image copy = image;
    auto area = static_cast<uint8_t>(std::max(required, 0));
    uint8_t* const asked = required < 0 ? nullptr : &area;
    const int32_t w = size.width, h = size.height;
    const uint32_t code = entry == 0   ? FP_ImagePreproc(address(copy), w, h, bg, asked, flags)
                          : entry == 1 ? FP_ImagePreproc_Step1(address(copy), w, h, bg, asked, flags)
                          : entry == 2 ? FP_ImagePreproc_Step2(address(copy), w, h)
                                       : FP_ImagePreproc_MCU(address(copy), w, h, flags);
    return std::tuple(code, int{area}, copy);
  });
  Image expected = entry == 2 ? image : reference::bordered(image, flags);
  if (required >= 0 && entry < 2) {
    const auto estimated = reference::background_value(expected).value_or(255);
    require(share == reference::valid_area(expected, bg == 0 ? estimated : bg).percentage, "the coverage is measured");
    require((result == QUO_LOW_COVERAGE) == (share < required), "and held against the one required");
  }
  if (result == QUO_LOW_COVERAGE) {
    require(entry < 2 && required > 0 && out == expected, "nothing is done but the borders");
    return;
  }
  require(result == ((entry == 2 ? allocation_failed() : lacked_memory(size.width)) ? QUO_NO_MEMORY : QUO_OK),
          "only memory can fail");
  if (result != QUO_OK) return;
  if (entry != 2 && !image.pixels.empty()) expected = reference::without_stripes(expected);
  if (entry == 0 || entry == 2) expected = reference::contrasted(expected, 100);
  require(out == expected, "the cleaned frame is the reference's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  static constexpr void (*kTargets[])(Input&, uint8_t) = {background_and_area, quarters, stripes, balance, enhance,
                                                          preprocess};
  const uint8_t target = choice(input, std::size(kTargets)), failing = input.byte();
  kTargets[target](input, failing);
  return 0;
}
