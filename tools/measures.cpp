#include "measures.h"

#include "failure.h"
#include "quoFPAlg.h"

namespace quofp {
namespace {

constexpr uint8_t kNoMean = 255;  // what the library says where there is no finger to take a mean of

std::optional<uint8_t> mean_of(uint8_t mean) { return mean == kNoMean ? std::nullopt : std::optional(mean); }

// The level against which the library judges a frame: the background of the half-size one.
uint8_t reference_level(const Frame& frame) {
  const int32_t width = frame.width / 2, height = frame.height / 2;
  std::vector<uint8_t> half(static_cast<size_t>(width) * static_cast<size_t>(height));
  ZoomImg(frame.data(), half.data(), frame.width, frame.height, 0);
  uint8_t background = 255;
  FindBgValue(half.data(), width, height, &background);
  return background;
}

// Where the library measures blocks of 16 x 16 pixels, a frame without one is what it most likely refuses.
void check_blocks(const Frame& frame, std::string_view function, uint32_t result) {
  if (result == QUO_NO_MEMORY) throw refusal(frame.name, function, result, kNoBlock);
  check_result(frame.name, function, result);
}

}  // namespace

Finger find_finger(const Frame& frame, uint8_t background) {
  Finger finger;
  finger.background_found = FindBgValue(frame.data(), frame.width, frame.height, nullptr) == 1;
  finger.background = background;
  if (background == 0) {
    check_result(frame.name, "FP_GetImageBgValue",
                 FP_GetImageBgValue(frame.data(), frame.width, frame.height, &finger.background));
  }
  uint8_t mean = kNoMean;
  GetValidArea(frame.data(), frame.width, frame.height, finger.background, &finger.coverage, &mean, &finger.centre_x,
               &finger.centre_y);
  finger.mean = mean_of(mean);
  return finger;
}

Scores score(const Frame& frame) {
  Scores scores;
  uint8_t mean = kNoMean;  // no mean is this bright: samples of 255 do not count
  check_result(
      frame.name, "FP_ImageQuality",
      FP_ImageQuality(frame.data(), frame.width, frame.height, &scores.quality, &scores.area, &scores.bright, &mean));
  check_result(frame.name, "ImageQuality",
               ImageQuality(frame.data(), frame.width, frame.height, &scores.field_quality, nullptr, nullptr, nullptr));
  scores.mean_gray = mean_of(mean);
  return scores;
}

SignalToNoise measure_noise(const Frame& frame) {
  SignalToNoise found;
  check_blocks(frame, "FP_ComputeSNR",
               FP_ComputeSNR(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height),
                             &found.snr, &found.signal, &found.noise));
  return found;
}

std::vector<uint8_t> Defects::pixel_marks(const Frame& frame) const {
  std::vector<uint8_t> result(frame.pixels.size());
  for (size_t i = 0; i < result.size(); i++) {
    const size_t x = i % static_cast<size_t>(frame.width), y = i / static_cast<size_t>(frame.width);
    if (columns[x] == 0 && rows[y] == 0) result[i] = marks[i];
  }
  return result;
}

Defects find_defects(const Frame& frame) {
  Defects found;
  found.background = reference_level(frame);
  uint8_t *marks = nullptr, *columns = nullptr, *rows = nullptr;
  uint32_t column_pixels = 0, row_pixels = 0;
  uint32_t result = FP_GetBadPixelsNum(frame.data(), frame.width, frame.height, &found.pixels, &marks);
  found.marks.reset(marks);
  check_result(frame.name, "FP_GetBadPixelsNum", result);
  result = CheckBadLine(frame.data(), frame.width, frame.height, found.background, &column_pixels, &row_pixels,
                        &columns, &rows);
  found.columns.reset(columns);
  found.rows.reset(rows);
  check_result(frame.name, "CheckBadLine", result);
  found.line_pixels = column_pixels + row_pixels;
  return found;
}

Bubbles find_bubbles(const Frame& frame) {
  Bubbles bubbles;
  uint8_t* image = nullptr;
  const uint32_t result = CreateBubbleImage(frame.data(), static_cast<uint32_t>(frame.width),
                                            static_cast<uint32_t>(frame.height), &bubbles.pixels, &image);
  bubbles.image.reset(image);
  check_blocks(frame, "CreateBubbleImage", result);
  return bubbles;
}

}  // namespace quofp
