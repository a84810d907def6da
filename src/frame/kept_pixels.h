// Areas of a mask in which the pixels that pass a test are set.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

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

/** Sets pixels that pass, and counts them. */
class KeptPixels {
 public:
  /** Sets the outputs of the pixels that `test` gives 255, of the others no bit changes. Pixels are counted in memory
   *  from the first one of the area on; `test` is called for some between its first and its last one that are not in it
   *  too. Without an output the pixels that pass are only counted. */
  template <typename Test>
  [[gnu::always_inline]] inline void keep(const Test& test, uint8_t* output, const Area& area) {
    for (ptrdiff_t x = 0, columns = 0; x < area.columns; x += columns) {
      columns = std::min(kStrip, area.columns - x);
      if (columns < kBlock) {
        keep_narrow(test, x, columns, output, area);
      } else {
        keep_strip(test, x, output, {columns, area.rows, area.width});
      }
    }
  }

  void keep_one(uint8_t set, uint8_t* output) {
    if (output != nullptr) *output |= set;
    sum_ += set & 1U;
  }

  /** Of all pixels set so far. */
  uint32_t number() {
    add_up();
    return sum_;
  }

 private:
  static constexpr ptrdiff_t kBlock = 32;        // pixels set together
  static constexpr ptrdiff_t kStrip = 4096;      // columns that are gone down together
  static constexpr ptrdiff_t kMostBlocks = 255;  // that a byte can count
  static_assert(kStrip / kBlock <= kMostBlocks);

  /** Read from 32 - n on, the first n pixels of a block are marked, from 64 - n on all but these. */
  static constexpr std::array<uint8_t, 3 * kBlock> kMarks = [] {
    std::array<uint8_t, 3 * kBlock> marks{};
    for (size_t k = 0; k < marks.size(); k++) marks[k] = k / kBlock == 1 ? 0 : 255;
    return marks;
  }();

  /** Each row is in a block that runs on into the next rows, where that does not leave the area. */
  template <typename Test>
  [[gnu::always_inline]] inline void keep_narrow(const Test& test, ptrdiff_t x, ptrdiff_t columns, uint8_t* output,
                                                 const Area& area) {
    const ptrdiff_t end = (area.rows - 1) * area.width + x + columns;
    ptrdiff_t first = x;
    for (; first + kBlock <= end; first += area.width) {
      if (blocks_ == kMostBlocks) add_up();
      keep_marked(test, first, kMarks.data() + kBlock - columns, output);
    }
    for (; first < end; first += area.width) {
      for (ptrdiff_t i = first; i < first + columns; i++) keep_one(test(i), output != nullptr ? output + i : nullptr);
    }
  }

  /** The columns left after whole blocks are in one that runs on into the next row. Only in the last row it overlaps
   *  the block before it instead: a processor waits long for bytes of which some have just been written. */
  template <typename Test>
  [[gnu::always_inline]] inline void keep_strip(const Test& test, ptrdiff_t x, uint8_t* output, const Area& area) {
    const ptrdiff_t left = area.columns % kBlock, whole = area.columns - left;
    for (ptrdiff_t y = 0; y < area.rows; y++) {
      const ptrdiff_t first = y * area.width + x, last = first + whole;
      if (blocks_ >= kMostBlocks - kStrip / kBlock) add_up();
      for (ptrdiff_t i = first; i < last; i += kBlock) keep_block(test, i, output);
      if (left == 0) continue;
      if (y < area.rows - 1) {
        keep_marked(test, last, kMarks.data() + kBlock - left, output);
      } else {
        keep_marked(test, last + left - kBlock, kMarks.data() + kBlock + left, output);
      }
    }
  }

  template <typename Test>
  [[gnu::always_inline]] inline void keep_block(const Test& test, ptrdiff_t i, uint8_t* output) {
    uint8_t set[kBlock];
    for (ptrdiff_t k = 0; k < kBlock; k++) set[k] = test(i + k);
    keep_set(set, i, output);
  }

  template <typename Test>
  [[gnu::always_inline]] inline void keep_marked(const Test& test, ptrdiff_t i, const uint8_t* marks, uint8_t* output) {
    uint8_t set[kBlock];
    for (ptrdiff_t k = 0; k < kBlock; k++) set[k] = test(i + k) & marks[k];
    keep_set(set, i, output);
  }

  [[gnu::always_inline]] inline void keep_set(const uint8_t* set, ptrdiff_t i, uint8_t* output) {
    for (ptrdiff_t k = 0; k < kBlock; k++) in_blocks_[k] = static_cast<uint8_t>(in_blocks_[k] + (set[k] & 1));
    blocks_++;
    if (output == nullptr) return;
    for (ptrdiff_t k = 0; k < kBlock; k++) output[i + k] |= set[k];
  }

  void add_up() {
    for (uint8_t& number : in_blocks_) {
      sum_ += number;
      number = 0;
    }
    blocks_ = 0;
  }

  uint8_t in_blocks_[kBlock] = {};  // pixels set in each place of the blocks since the last adding up
  ptrdiff_t blocks_ = 0;            // since then
  uint32_t sum_ = 0;
};

}  // namespace quo
