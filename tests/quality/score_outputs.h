// Calls of the quality scores, whose functions take the same arguments.
#pragma once

#include <ostream>

#include "reference/quality.h"
#include "support/testing.h"

namespace quo_test {

inline constexpr uint8_t kUntouched = 238;

struct Outputs {
  uint32_t result;
  int quality, area, bright, mean_gray;
  bool operator==(const Outputs&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Outputs& o) {
  return out << o.result << ": " << o.quality << " " << o.area << " " << o.bright << " " << o.mean_gray;
}

/** Bit i of `given` decides whether the i-th output has a pointer. */
template <typename Function>
Outputs run(Function function, const Image& image, int given = 15) {
  uint8_t q = kUntouched, a = kUntouched, b = kUntouched, m = kUntouched;
  const uint32_t result = function(image.data(), image.width, image.height, given & 1 ? &q : nullptr,
                                   given & 2 ? &a : nullptr, given & 4 ? &b : nullptr, given & 8 ? &m : nullptr);
  return {result, q, a, b, m};
}

/** What a call that succeeds leaves in the outputs that it was given. */
inline Outputs as_given(const reference::Scores& scores, int given) {
  const auto at = [&](int bit, int value) { return given & bit && value >= 0 ? value : kUntouched; };
  return {QUO_OK, at(1, scores.quality), at(2, scores.area), at(4, scores.bright), at(8, scores.mean_gray)};
}

}  // namespace quo_test
