// The background value as the operators use it.
#pragma once

#include <cstdint>

#include "frame/gray.h"
#include "quoFPAlg.h"

namespace quo {

/** The estimated background value of a frame, or kNoBackground: every block that is not all white counts as finger. */
inline uint8_t background_value(const uint8_t* image, int32_t width, int32_t height) {
  uint8_t value = kNoBackground;
  FindBgValue(image, width, height, &value);
  return value;
}

}  // namespace quo
