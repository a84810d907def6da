// Gray values as a file holds them, before they become a frame of 8 bits.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quofp {

struct Samples {
  int32_t width = 0;
  int32_t height = 0;
  int32_t maximum = 255;         // the value of white, 1 to 65535; no value is above it
  std::vector<uint16_t> values;  // row by row
  std::string kind = {};         // what the file holds, where that is more than its values tell: "8-bit colour"

  size_t count() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
};

/** "(12, 7)" of the value with this index. */
inline std::string place_of(const Samples& samples, size_t index) {
  const auto width = static_cast<size_t>(samples.width);
  return "(" + std::to_string(index % width) + ", " + std::to_string(index / width) + ")";
}

}  // namespace quofp
