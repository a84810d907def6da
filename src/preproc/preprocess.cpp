#include "frame/scratch.h"
#include "preproc/enhance_coef.h"

namespace {

constexpr int32_t kTargetSpread = 100;  // gray levels
constexpr uint32_t kRadius = 3;         // of the neighbourhood that the balance takes means over, pixels

// Traces a point reached; the length counts the terminating NUL.
template <uint32_t length>
void trace(const char (&tag)[length]) {
  tev_quo_log(tag, length);
}

uint32_t repair_and_check(uint8_t* frame, int32_t width, int32_t height, uint8_t bg, uint8_t* area,
                          uint8_t border_flags) {
  const uint8_t required = area != nullptr ? *area : 0;
  if (border_flags != 0) {
    trace("FillBorders");
    FillBorders(frame, width, height, border_flags);
  }
  if (area == nullptr) return QUO_OK;
  FP_GetValidArea(frame, width, height, bg, area, nullptr);
  return *area < required ? QUO_LOW_COVERAGE : QUO_OK;
}

uint32_t remove_stripes(uint8_t* frame, int32_t width, int32_t height) {
  return RemoveVerticalStripes(frame, frame, width, height) == 1 ? QUO_OK : QUO_NO_MEMORY;
}

uint32_t balance_gray(uint8_t* frame, int32_t width, int32_t height) {
  const uint8_t gain = quo::enhance_gain(frame, width, height, kTargetSpread);
  return LocalGrayBalance_Slice(frame, width, height, kRadius, static_cast<uint32_t>(height), gain, 0, 0);
}

// Whether a buffer the size of the frame could be had.
uint32_t probe_memory(int32_t width, int32_t height) {
  quo::Scratch<uint8_t> probe;
  return probe.allocate(quo::pixel_count(width, height)) ? QUO_OK : QUO_NO_MEMORY;
}

}  // namespace

uint32_t FP_ImagePreproc(uint8_t* frame, int32_t width, int32_t height, uint8_t bg, uint8_t* area,
                         uint8_t border_flags) {
  const uint32_t result = FP_ImagePreproc_Step1(frame, width, height, bg, area, border_flags);
  return result != QUO_OK ? result : FP_ImagePreproc_Step2(frame, width, height);
}

uint32_t FP_ImagePreproc_Step1(uint8_t* frame, int32_t width, int32_t height, uint8_t bg, uint8_t* area,
                               uint8_t border_flags) {
  uint32_t result = QUO_NO_IMAGE;
  if (frame != nullptr) {
    trace("FP_ImagePreproc_Step1");
    result = repair_and_check(frame, width, height, bg, area, border_flags);
    if (result == QUO_OK) {
      trace("RemoveVerticalStripes");
      result = remove_stripes(frame, width, height);
    }
  }
  trace("FP_ImagePreproc_Step1_FunEnd");
  return result;
}

uint32_t FP_ImagePreproc_Step2(uint8_t* frame, int32_t width, int32_t height) {
  uint32_t result = QUO_NO_IMAGE;
  if (frame != nullptr) {
    result = balance_gray(frame, width, height);
    if (result == QUO_OK) result = probe_memory(width, height);
  }
  trace("FP_ImagePreproc_Step2_FunEnd");
  return result;
}

uint32_t FP_ImagePreproc_MCU(uint8_t* frame, int32_t width, int32_t height, uint8_t border_flags) {
  if (frame == nullptr) return QUO_NO_IMAGE;
  FillBorders(frame, width, height, border_flags);
  return remove_stripes(frame, width, height);
}
