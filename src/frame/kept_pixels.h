// Areas of a mask in which the pixels that pass a test are set.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "frame/block_marks.h"
#include "frame/gray.h"

namespace quo {

/** The mask of a pixel that passes exactly when the bits that it has in common with others are all set. */
inline uint8_t all_set(int pixels_in_common) { return pixels_in_common == kWhite ? kWhite : 0; }

/** Rows of an image, or a part of each. */
struct Area {
  ptrdiff_t columns;  // at least 1
  ptrdiff_t rows;     // at least 1
  ptrdiff_t width;    // of the image
};

/** Counts the pixels that it sets; keep_pixels() below is what uses it. */
class PixelKeeper {
 public:
  template <typename Test>
  [[gnu::always_inline]] inline void keep(const Test& test, uint8_t* output, const Area& area) {
    for (ptrdiff_t x = 0, columns = 0; x < area.columns; x += columns) {
      columns = std::min(kStrip, area.columns - x);
      if (columns < kBlock) {
        keep_narrow(test, x, output, {columns, area.rows, area.width});
      } else {
        keep_strip(test, x, output, {columns, area.rows, area.width});
      }
    }
  }

  uint32_t number() {
    add_up();
    return sum_;
  }

 private:
  static constexpr ptrdiff_t kBlock = 32;        // pixels set together
  static constexpr ptrdiff_t kStrip = 4096;      // columns that are gone down together
  static constexpr ptrdiff_t kMostBlocks = 255;  // that a byte can count
  static_assert(kStrip / kBlock < kMostBlocks);

  /** The columns left after whole blocks are in a block that overlaps the last one, where they alone count. What its
   *  outputs are is read ahead: a processor waits long for bytes of which some have just been written. */
  template <typename Test>
  [[gnu::always_inline]] inline void keep_strip(const Test& test, ptrdiff_t x, uint8_t* output, const Area& area) {
    const ptrdiff_t left = area.columns % kBlock, whole = area.columns - left;
    const uint8_t* const marks = kLastOfBlock<kBlock>.data() + left;
    for (ptrdiff_t y = 0; y < area.rows; y++) {
      const ptrdiff_t first = y * area.width + x, end = first + whole, last = end + left - kBlock;
      uint8_t before[kBlock];
      if (output != nullptr && left > 0) read(output + last, before);
      if (blocks_ >= kMostBlocks - kStrip / kBlock) add_up();
      for (ptrdiff_t i = first; i < end; i += kBlock) keep_block(test, i, output);
      if (left == 0) continue;
      uint8_t set[kBlock];
      test_last(test, last, marks, set);
      if (output == nullptr) continue;
      for (ptrdiff_t k = 0; k < kBlock; k++) output[last + k] = before[k] | set[k];
    }
  }

  /** Rows shorter than a block are tested in one that ends with them, and set alone: no other pixels are written. */
  template <typename Test>
  [[gnu::always_inline]] inline void keep_narrow(const Test& test, ptrdiff_t x, uint8_t* output, const Area& area) {
    for (ptrdiff_t y = 0; y < area.rows; y++) {
      const ptrdiff_t first = y * area.width + x, last = first + area.columns - kBlock;
      if (last < 0) {
        for (ptrdiff_t i = first; i < first + area.columns; i++) keep_one(test(i), output, i);
        continue;
      }
      if (blocks_ == kMostBlocks) add_up();
      uint8_t set[kBlock];
      test_last(test, last, kLastOfBlock<kBlock>.data() + area.columns, set);
      if (output == nullptr) continue;
      for (ptrdiff_t k = kBlock - area.columns; k < kBlock; k++) output[last + k] |= set[k];
    }
  }

  static void read(const uint8_t* bytes, uint8_t* block) {
    for (ptrdiff_t k = 0; k < kBlock; k++) block[k] = bytes[k];
  }

  template <typename Test>
  [[gnu::always_inline]] inline void keep_block(const Test& test, ptrdiff_t i, uint8_t* output) {
    uint8_t set[kBlock];
    for (ptrdiff_t k = 0; k < kBlock; k++) set[k] = test(i + k);
    for (ptrdiff_t k = 0; k < kBlock; k++) in_blocks_[k] = static_cast<uint8_t>(in_blocks_[k] + (set[k] & 1));
    blocks_++;
    if (output == nullptr) return;
    for (ptrdiff_t k = 0; k < kBlock; k++) output[i + k] |= set[k];
  }

  /** Tests a block of which only the marked pixels count. */
  template <typename Test>
  [[gnu::always_inline]] inline void test_last(const Test& test, ptrdiff_t i, const uint8_t* marks, uint8_t* set) {
    for (ptrdiff_t k = 0; k < kBlock; k++) set[k] = test(i + k);
    for (ptrdiff_t k = 0; k < kBlock; k++) {
      in_last_blocks_[k] = static_cast<uint8_t>(in_last_blocks_[k] + (set[k] & marks[k] & 1));
    }
    blocks_++;
  }

  void keep_one(uint8_t set, uint8_t* output, ptrdiff_t i) {
    if (output != nullptr) output[i] |= set;
    sum_ += set & 1U;
  }

  void add_up() {
    for (ptrdiff_t k = 0; k < kBlock; k++) {
      sum_ += uint32_t{in_blocks_[k]} + in_last_blocks_[k];
      in_blocks_[k] = in_last_blocks_[k] = 0;
    }
    blocks_ = 0;
  }

  uint8_t in_blocks_[kBlock] = {};  // pixels set in each place of the blocks since the last adding up
  uint8_t in_last_blocks_[kBlock] = {};
  ptrdiff_t blocks_ = 0;            // blocks since then
  uint32_t sum_ = 0;                // pixels set before
};

/** Sets the outputs of the pixels that `test` gives 255, of the others no bit changes; returns how many these are.
 *  Pixels are counted in memory from the first one of the area on; `test` is called for some between its first and its
 *  last one that are not in it too. Without an output the pixels that pass are only counted. */
template <typename Test>
[[gnu::always_inline]] inline uint32_t keep_pixels(const Test& test, uint8_t* output, const Area& area) {
  PixelKeeper keeper;
  keeper.keep(test, output, area);
  return keeper.number();
}

}  // namespace quo
