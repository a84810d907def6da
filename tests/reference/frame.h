// Half image and square root as they are defined.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "support/frames.h"

namespace reference {

using quo_test::Image;

/** ZoomImg, one output at a time in its order of writing; outputs that do not fit are left out. */
inline Image half_image(const Image& source, uint8_t mode) {
  const int32_t w = source.width, h = source.height;
  Image half(w >> 1, h >> 1);
  auto put = [&](int32_t x, int32_t y, int value) {
    if (x >= 0 && x < half.width && y >= 0 && y < half.height) half.at(x, y) = static_cast<uint8_t>(value);
  };
  if (mode == 0) {
    for (int32_t y = 0; y < h; y += 2) {
      for (int32_t x = 0; x < w; x += 2) put(x / 2, y / 2, source.at(x, y));
    }
    return half;
  }
  for (int32_t y = 0; y < h; y += 2) {
    put(0, y / 2, source.at(0, y));
    put(half.width - 1, y / 2, source.at(w - 1, y));
  }
  for (int32_t x = 0; x < w; x += 2) {
    put(x / 2, 0, source.at(x, 0));
    put(x / 2, half.height - 1, source.at(x, h - 1));
  }
  for (int32_t y = 2; y < h - 2; y += 2) {
    for (int32_t x = 2; x < w - 2; x += 2) {
      int sum = 0;
      for (int32_t j = -1; j <= 1; j++) {
        for (int32_t i = -1; i <= 1; i++) sum += (2 - std::abs(i)) * (2 - std::abs(j)) * source.at(x + i, y + j);
      }
      put(x / 2, y / 2, sum / 16);
    }
  }
  return half;
}

/** quo_sqrt: every operation in single precision, the subtraction fused with its product. */
inline float fused_sqrt(float x) {
  const uint32_t shifted = static_cast<uint32_t>(std::bit_cast<int32_t>(x) >> 1);
  float y = std::bit_cast<float>(0x5F375A86U - shifted);
  const float half = 0.5F * x;
  for (int step = 0; step < 3; step++) {
    const float product = half * y;
    y = y * std::fma(-y, product, 1.5F);
  }
  return 1.0F / y;
}

}  // namespace reference
