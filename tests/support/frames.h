// Frames for tests: small images written by hand, and generated ones of every character that the algorithms tell apart.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <vector>

#include "support/random.h"

namespace quo_test {

/** A gray image that owns its pixels. Pixel access is unchecked outside debug builds of the standard library. */
struct Image {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> pixels;

  Image() = default;
  Image(int32_t w, int32_t h, uint8_t value = 0);
  Image(int32_t w, int32_t h, std::initializer_list<int> values);
  Image(int32_t w, int32_t h, const std::function<int(int32_t x, int32_t y)>& value);

  uint8_t& at(int32_t x, int32_t y) { return pixels[index(x, y)]; }
  uint8_t at(int32_t x, int32_t y) const { return pixels[index(x, y)]; }
  uint8_t* data() { return pixels.data(); }
  const uint8_t* data() const { return pixels.data(); }
  bool operator==(const Image&) const = default;

 private:
  size_t index(int32_t x, int32_t y) const {
    return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
  }
};

/** Kinds of generated frames. */
enum class Fill {
  kNoise,      // every value equally likely
  kDark,       // 0 to 3
  kBright,     // 252 to 255
  kTwoValued,  // 0 or 255
  kFlat,       // one value, with a rare outlier
  kRidges,     // ridge pattern under an oval on a bright background, with noise
};
inline constexpr Fill kAllFills[] = {Fill::kNoise,     Fill::kDark, Fill::kBright,
                                     Fill::kTwoValued, Fill::kFlat, Fill::kRidges};

/** A frame of the given kind; the same for the same generator state everywhere. */
Image generate(Random& random, int32_t width, int32_t height, Fill fill);

/** Stripes four pixels wide, 60 where `phase(x, y)` / 4 is even and 180 elsewhere. */
Image stripes(int32_t width, int32_t height, const std::function<int32_t(int32_t x, int32_t y)>& phase);

}  // namespace quo_test
