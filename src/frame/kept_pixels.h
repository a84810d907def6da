// Rows of a mask in which the pixels that pass a test are set.
#pragma once

#include <cstdint>

#include "frame/gray.h"

namespace quo {

inline constexpr int32_t kKeptBlock = 32;               // columns set together
inline constexpr int32_t kMostKept = 255 * kKeptBlock;  // columns of a call, of which bytes count every 32nd

/** The mask of a pixel that passes exactly when the bits that it has in common with others are all set. */
inline uint8_t all_set(int pixels_in_common) { return pixels_in_common == kWhite ? kWhite : 0; }

/** Sets one block, and counts the pixels set from the column `fresh` of it on. */
template <typename Test>
[[gnu::always_inline]] inline void keep_block(const Test& test, int32_t x, int32_t fresh, uint8_t* output,
                                              uint8_t* kept) {
  uint8_t set[kKeptBlock];
  for (int32_t k = 0; k < kKeptBlock; k++) set[k] = test(x + k);
  for (int32_t k = 0; k < kKeptBlock; k++) output[x + k] |= set[k];
  for (int32_t k = 0; k < kKeptBlock; k++) kept[k] = static_cast<uint8_t>(kept[k] + (k >= fresh ? set[k] & 1 : 0));
}

/** Sets the outputs of the columns that `test` gives 255, of those that it gives 0 no bit changes. Returns how many it
 *  sets of at most kMostKept. Columns left after whole blocks are looked at in a block that overlaps the last one,
 *  where setting once more changes nothing. */
template <typename Test>
[[gnu::always_inline]] inline uint32_t keep_passing(const Test& test, uint8_t* output, int32_t count) {
  uint32_t sum = 0;
  if (count < kKeptBlock) {
    for (int32_t x = 0; x < count; x++) {
      const uint8_t set = test(x);
      output[x] |= set;
      sum += set & 1U;
    }
    return sum;
  }
  uint8_t kept[kKeptBlock];
  for (uint8_t& number : kept) number = 0;
  const int32_t left = count % kKeptBlock;
  for (int32_t x = 0; x < count - left; x += kKeptBlock) keep_block(test, x, 0, output, kept);
  if (left > 0) keep_block(test, count - kKeptBlock, kKeptBlock - left, output, kept);
  for (const uint8_t number : kept) sum += number;
  return sum;
}

}  // namespace quo
