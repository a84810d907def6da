// Bytes looked at as one number.
#pragma once

#include <bit>
#include <cstdint>

namespace quo {

static_assert(std::endian::native == std::endian::little, "the first byte is the lowest of the number");

/** A byte times this is that byte eight times. */
inline constexpr uint64_t kEightTimes = 0x0101010101010101;

inline uint64_t load_eight(const uint8_t* bytes) {
  uint64_t eight;
  __builtin_memcpy(&eight, bytes, sizeof eight);
  return eight;
}

/** Two bytes, the first of them in the low one. */
inline uint16_t load_two(const uint8_t* bytes) {
  uint16_t two;
  __builtin_memcpy(&two, bytes, sizeof two);
  return two;
}

inline void store_eight(uint8_t* bytes, uint64_t eight) { __builtin_memcpy(bytes, &eight, sizeof eight); }

/** The top bit of each byte that is 0. Above the first such byte, which alone is certain, a borrow may set others. */
inline uint64_t zero_bytes(uint64_t eight) { return (eight - kEightTimes) & ~eight & kEightTimes * 0x80; }

/** Whether one of the bytes is 0. */
inline bool has_zero_byte(uint64_t eight) { return zero_bytes(eight) != 0; }

}  // namespace quo
