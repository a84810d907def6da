// Frames and numbers that a fuzz target draws from its input, and calls that must give the same twice.
#pragma once

#include <algorithm>
#include <iterator>
#include <memory>
#include <tuple>
#include <vector>

#include "support/frames.h"
#include "support/fuzz.h"

namespace quo_fuzz {

using quo_test::Image;

/** A radius, a window, a count: small ones, and those at the ends of what the types hold. */
inline int32_t number(Input& input) {
  static constexpr int32_t kExtreme[] = {INT32_MIN, INT32_MIN + 1, -256,     -2,  -1,    100,   127,
                                         128,       254,           255,      256, 65535, 65537, 131073,
                                         1 << 30,   INT32_MAX - 1, INT32_MAX};
  const uint8_t byte = input.byte();
  return byte < 256 - std::size(kExtreme) ? byte % 48 : kExtreme[255 - byte];
}

/** One of 0 to `count` - 1. */
inline uint8_t choice(Input& input, uint8_t count) { return static_cast<uint8_t>(input.byte() % count); }

/** Width or height: mostly small, a few that make long lines, and those of empty images. */
inline int32_t side(Input& input, int32_t largest) {
  const int32_t empty[] = {0, -1, -8, -9, INT32_MIN, INT32_MIN + 1, largest};
  const uint8_t byte = input.byte();
  if (byte < 200) return byte % 41;
  return byte < 249 ? 41 + (byte - 200) * 6 : empty[byte - 249];
}

/** A size as the caller gives it, also where it is that of an empty image. */
struct Size {
  int32_t width, height;
};

/** A frame, which takes the rest of the input: generated, the input's bytes over and over, or these and zeros. Of an
 *  empty one the image is 0 x 0 and the size anything. */
inline Size frame(Input& input, Image& image, int32_t most_pixels = 41 * 40) {
  // Where there are no columns, some operators still count the rows: more of them would only be slow.
  const int32_t width = side(input, INT32_MAX), tall = side(input, 1 << 16);
  const Size size{width, width > 0 ? std::min(tall, most_pixels / width) : tall};
  const uint8_t kind = choice(input, 8);
  const uint32_t seed = kind < std::size(quo_test::kAllFills) ? input.u16() : 0;
  if (size.width <= 0 || size.height <= 0) return size;
  if (kind < std::size(quo_test::kAllFills)) {
    quo_test::Random random(seed);
    image = quo_test::generate(random, size.width, size.height, quo_test::kAllFills[kind]);
    return size;
  }
  const auto bytes = input.rest();
  image = Image(size.width, size.height);
  for (size_t i = 0; i < image.pixels.size() && (i < bytes.size() || (kind == 7 && !bytes.empty())); i++) {
    image.pixels[i] = bytes[i % bytes.size()];
  }
  return size;
}

/** Whether a function that takes four bytes for each of so many lines had no memory: the hook gave none, or it was not
 *  asked because the byte count does not fit. */
inline bool lacked_memory(int32_t lines) { return allocation_failed() || lines == INT32_MAX; }

/** The pixels of an image; of an empty one a place where not even one may be read, but not null. */
inline uint8_t* address(Image& image) {
  static const auto nowhere = std::make_unique<uint8_t[]>(0);
  return image.pixels.empty() ? nowhere.get() : image.data();
}

/** Calls `work` twice, with fresh memory that holds something else the second time, and returns its results, which must
 *  be the same. They may hold no block of the library. */
template <typename Work>
auto same_twice(uint8_t failing, Work work) {
  quo_test::set_fresh_byte(0x00);
  arm_hooks(failing);
  const auto first = work();
  require_no_leak();
  quo_test::set_fresh_byte(0xFF);
  arm_hooks(failing);
  const auto second = work();
  require_no_leak();
  require(first == second, "a second call gives the same");
  return first;
}

/** A block of `size` elements that the library handed out, copied and given back; nothing for null. */
template <typename T>
std::vector<T> taken(T* block, size_t size) {
  std::vector<T> values;
  if (block != nullptr) values.assign(block, block + size);
  tev_quo_free(block);
  return values;
}

}  // namespace quo_fuzz
