// Marks for some bytes of a block.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quo {

/** Read from n on, the last n bytes of a block are 255 and those before are 0. */
template <size_t kBlock>
inline constexpr std::array<uint8_t, 2 * kBlock> kLastOfBlock = [] {
  std::array<uint8_t, 2 * kBlock> marks{};
  for (size_t k = kBlock; k < marks.size(); k++) marks[k] = 255;
  return marks;
}();

/** Read from n on, byte kBlock - n of a block is 255 and the others are 0; from 0 on, all are. */
template <size_t kBlock>
inline constexpr std::array<uint8_t, 2 * kBlock> kOneOfBlock = [] {
  std::array<uint8_t, 2 * kBlock> marks{};
  marks[kBlock] = 255;
  return marks;
}();

}  // namespace quo
