// What the unit tests include: the test framework, the library, and frames of every size and kind to compare on.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <ostream>
#include <vector>

#include "quoFPAlg.h"
#include "support/frames.h"
#include "support/guarded.h"
#include "support/hooks.h"

namespace quo_test {

/** Shows the size and the first pixels where a comparison fails. */
inline void PrintTo(const Image& image, std::ostream* out) {
  *out << image.width << " x " << image.height << ":";
  for (size_t i = 0; i < image.pixels.size() && i < 300; i++) *out << " " << int{image.pixels[i]};
}

struct Size {
  int32_t width, height;
};

/** Calls check(image, random, guard) with an image of any kind for every size from 1 x 1 to `largest` x `largest`, a
 *  few sensor sizes and `more` of them. */
template <typename Check>
void for_each_frame(uint64_t seed, int32_t largest, std::initializer_list<Size> more, Check check) {
  std::vector<Size> sizes = {{64, 80}, {131, 77}, {160, 40}};
  sizes.insert(sizes.end(), more);
  for (int32_t i = 0; i < largest * largest; i++) sizes.push_back({i / largest + 1, i % largest + 1});
  Random random(seed);
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (const auto& [width, height] : sizes) {
      check(generate(random, width, height, kAllFills[random.next() % 6]), random, guard);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

/** A copy of an image beside an unreadable page, which may not be written either. */
struct ReadOnly : Guarded {
  explicit ReadOnly(const Image& image, Guard guard = Guard::kAfter) : Guarded(image.pixels, guard) {
    make_read_only();
  }
};

/** What call(pixels) makes of a copy of the image beside an unreadable page. */
template <typename Call>
Image changed(Image image, Guard guard, Call call) {
  Guarded pixels(image.pixels, guard);
  call(pixels.data());
  image.pixels.assign(pixels.bytes().begin(), pixels.bytes().end());
  return image;
}

/** `count` elements that the library handed out, copied and given back; none for null. */
template <typename T>
std::vector<T> take(T* block, size_t count) {
  std::vector<T> elements;
  if (block != nullptr) elements.assign(block, block + count);
  tev_quo_free(block);
  return elements;
}

}  // namespace quo_test
