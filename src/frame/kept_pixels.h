// Rows of a mask in which the pixels that pass a test are set.
#pragma once

#include <cstdint>

#include "frame/gray.h"

namespace quo {

/** The mask of a pixel that passes exactly when the bits that it has in common with others are all set. */
inline uint8_t all_set(int pixels_in_common) { return pixels_in_common == kWhite ? kWhite : 0; }

/** Sets pixels that pass, and counts them. */
class KeptPixels {
 public:
  static constexpr int32_t kMost = 1024;  // columns that a call may look at

  /** Sets the outputs of the columns that `test` gives 255, of those that it gives 0 no bit changes. Columns left after
   *  whole blocks are looked at in a block that overlaps the last one, where setting once more changes nothing. */
  template <typename Test>
  [[gnu::always_inline]] inline void keep(const Test& test, uint8_t* output, int32_t count) {
    if (count < kBlock) {
      for (int32_t x = 0; x < count; x++) keep_one(test(x), output[x]);
      return;
    }
    if (blocks_ > kMostBlocks - (kMost + kBlock - 1) / kBlock) add_up();
    const int32_t left = count % kBlock;
    for (int32_t x = 0; x < count - left; x += kBlock) keep_block(test, x, 0, output);
    if (left > 0) keep_block(test, count - kBlock, kBlock - left, output);
  }

  void keep_one(uint8_t set, uint8_t& output) {
    output |= set;
    sum_ += set & 1U;
  }

  /** Of all pixels set so far. */
  uint32_t number() {
    add_up();
    return sum_;
  }

 private:
  static constexpr int32_t kBlock = 32;        // columns set together
  static constexpr int32_t kMostBlocks = 255;  // that a byte can count
  static_assert((kMost + kBlock - 1) / kBlock <= kMostBlocks);

  /** Counts from the column `fresh` of the block on. */
  template <typename Test>
  [[gnu::always_inline]] inline void keep_block(const Test& test, int32_t x, int32_t fresh, uint8_t* output) {
    uint8_t set[kBlock];
    for (int32_t k = 0; k < kBlock; k++) set[k] = test(x + k);
    for (int32_t k = 0; k < kBlock; k++) output[x + k] |= set[k];
    for (int32_t k = 0; k < kBlock; k++) {
      in_blocks_[k] = static_cast<uint8_t>(in_blocks_[k] + (k >= fresh ? set[k] & 1 : 0));
    }
    blocks_++;
  }

  [[gnu::always_inline]] inline void add_up() {
    for (uint8_t& number : in_blocks_) {
      sum_ += number;
      number = 0;
    }
    blocks_ = 0;
  }

  uint8_t in_blocks_[kBlock] = {};  // pixels set in each column of the blocks since the last adding up
  int32_t blocks_ = 0;              // since then
  uint32_t sum_ = 0;
};

}  // namespace quo
