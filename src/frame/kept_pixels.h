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
    const bool whole_rows = area.columns == area.width;
    for (ptrdiff_t x = 0, columns = 0; x < area.columns; x += columns) {
      columns = std::min(kStrip, area.columns - x);
      const Strip strip{x, columns, whole_rows && x == 0, whole_rows && x + columns == area.columns};
      if (columns < kBlock) {
        keep_narrow(test, strip, output, area);
      } else {
        keep_strip(test, strip, output, area);
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

  struct Strip {
    ptrdiff_t x;
    ptrdiff_t columns;
    bool starts_row;  // of the image
    bool ends_row;
  };

  // Marks for a block that ends with the strip.
  struct LastMarks {
    const uint8_t* counted;  // the columns that no block before has
    const uint8_t* first;    // the first pixel of a row
    const uint8_t* last;     // the last pixel of a row

    LastMarks(const Strip& strip, ptrdiff_t columns)
        : counted(kLastOfBlock<kBlock>.data() + columns),
          first(mark(strip.starts_row && strip.columns <= kBlock, kBlock - strip.columns)),
          last(mark(strip.ends_row, kBlock - 1)) {}
  };

  static const uint8_t* mark(bool there, ptrdiff_t place) {
    return kOneOfBlock<kBlock>.data() + (there ? kBlock - place : 0);
  }

  // Strips and areas come as copies: for all that the compiler knows, outputs might be stored into others.

  /** The last 1 to kBlock columns are in a block that overlaps the one before, where they alone count. What its outputs
   *  are is read ahead: a processor waits long for bytes of which some have just been written. */
  template <typename Test>
  [[gnu::always_inline]] inline void keep_strip(const Test& test, Strip strip, uint8_t* output, Area area) {
    const ptrdiff_t left = (strip.columns - 1) % kBlock + 1, whole = strip.columns - left;
    const LastMarks marks(strip, left);
    const uint8_t* const first_of_row = mark(true, 0);
    const ptrdiff_t inside = strip.starts_row ? kBlock : 0;
    for (ptrdiff_t y = 0; y < area.rows; y++) {
      const ptrdiff_t first = y * area.width + strip.x, end = first + whole, last = end + left - kBlock;
      uint8_t before[kBlock];
      if (output != nullptr) read(output + last, before);
      if (blocks_ >= kMostBlocks - kStrip / kBlock) add_up();
      if (strip.starts_row && whole > 0) {
        keep_block([=](ptrdiff_t i) { return test(i, first_of_row[i - first], 0); }, first, output, in_first_blocks_);
      }
      const auto keep_inside = [&](ptrdiff_t i) { return test(i, 0, 0); };
      for (ptrdiff_t i = first + inside; i < end; i += kBlock) keep_block(keep_inside, i, output, in_blocks_);
      uint8_t set[kBlock];
      test_last(test, last, marks, set);
      if (output == nullptr) continue;
      for (ptrdiff_t k = 0; k < kBlock; k++) output[last + k] = before[k] | set[k];
    }
  }

  /** Rows shorter than a block are tested in one that ends with them, and set alone: no other pixels are written. */
  template <typename Test>
  [[gnu::always_inline]] inline void keep_narrow(const Test& test, Strip strip, uint8_t* output, Area area) {
    const LastMarks marks(strip, strip.columns);
    for (ptrdiff_t y = 0; y < area.rows; y++) {
      const ptrdiff_t first = y * area.width + strip.x, last = first + strip.columns - kBlock;
      if (last < 0) {
        for (ptrdiff_t k = kBlock - strip.columns; k < kBlock; k++) {
          keep_one(test(last + k, marks.first[k], marks.last[k]), output, last + k);
        }
        continue;
      }
      if (blocks_ == kMostBlocks) add_up();
      uint8_t set[kBlock];
      test_last(test, last, marks, set);
      if (output == nullptr) continue;
      for (ptrdiff_t k = kBlock - strip.columns; k < kBlock; k++) output[last + k] |= set[k];
    }
  }

  static void read(const uint8_t* bytes, uint8_t* block) {
    for (ptrdiff_t k = 0; k < kBlock; k++) block[k] = bytes[k];
  }

  template <typename Test>
  [[gnu::always_inline]] inline void keep_block(const Test& test, ptrdiff_t i, uint8_t* output,
                                                uint8_t (&in_blocks)[kBlock]) {
    uint8_t set[kBlock];
    for (ptrdiff_t k = 0; k < kBlock; k++) set[k] = test(i + k);
    for (ptrdiff_t k = 0; k < kBlock; k++) in_blocks[k] = static_cast<uint8_t>(in_blocks[k] + (set[k] & 1));
    blocks_++;
    if (output == nullptr) return;
    for (ptrdiff_t k = 0; k < kBlock; k++) output[i + k] |= set[k];
  }

  template <typename Test>
  [[gnu::always_inline]] inline void test_last(const Test& test, ptrdiff_t i, const LastMarks& marks, uint8_t* set) {
    for (ptrdiff_t k = 0; k < kBlock; k++) set[k] = test(i + k, marks.first[k], marks.last[k]);
    for (ptrdiff_t k = 0; k < kBlock; k++) {
      in_last_blocks_[k] = static_cast<uint8_t>(in_last_blocks_[k] + (set[k] & marks.counted[k] & 1));
    }
    blocks_++;
  }

  void keep_one(uint8_t set, uint8_t* output, ptrdiff_t i) {
    if (output != nullptr) output[i] |= set;
    sum_ += set & 1U;
  }

  void add_up() {
    for (ptrdiff_t k = 0; k < kBlock; k++) {
      sum_ += uint32_t{in_first_blocks_[k]} + in_blocks_[k] + in_last_blocks_[k];
      in_first_blocks_[k] = in_blocks_[k] = in_last_blocks_[k] = 0;
    }
    blocks_ = 0;
  }

  // Pixels set in each place of the blocks since the last adding up. Those of a row wait for those of the row before in
  // memory, so the first and the last blocks, which are not in the loop over the others, have their own.
  uint8_t in_first_blocks_[kBlock] = {};
  uint8_t in_blocks_[kBlock] = {};
  uint8_t in_last_blocks_[kBlock] = {};
  ptrdiff_t blocks_ = 0;  // blocks since then
  uint32_t sum_ = 0;      // pixels set before
};

/** Sets the outputs of the pixels that `test` gives 255, of the others no bit changes; returns how many these are.
 *  Pixels are counted in memory from the first one of the area on; `test` is called for some between its first and its
 *  last one that are not in it too. In an area of whole rows, the arguments after the pixel are 255 for the first and for
 *  the last pixel of a row; for all others they are 0. Without an output the pixels that pass are only counted. */
template <typename Test>
[[gnu::always_inline]] inline uint32_t keep_pixels(const Test& test, uint8_t* output, const Area& area) {
  PixelKeeper keeper;
  keeper.keep(test, output, area);
  return keeper.number();
}

}  // namespace quo
