// Frames that every operator of the toolbox is compared on.
#pragma once

#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "reference/toolbox.h"
#include "support/frames.h"
#include "support/guarded.h"
#include "support/hooks.h"

namespace quo_test {

/** Calls check(image, random, guard) for every size from 1 x 1 to `largest` x `largest` and for a few sensor sizes. */
template <typename Check>
void for_each_frame(uint64_t seed, int32_t largest, Check check) {
  Random random(seed);
  const auto run = [&](int32_t width, int32_t height, Guard guard) {
    const Image image = generate(random, width, height, kAllFills[random.next() % 6]);
    check(image, random, guard);
    return !testing::Test::HasFatalFailure();
  };
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t width = 1; width <= largest; width++) {
      for (int32_t height = 1; height <= largest; height++) {
        if (!run(width, height, guard)) return;
      }
    }
    for (const auto& [width, height] : {std::pair{64, 80}, {131, 77}, {160, 40}}) {
      if (!run(width, height, guard)) return;
    }
  }
}

inline std::string size_text(const Image& image) {
  return std::to_string(image.width) + " x " + std::to_string(image.height);
}

}  // namespace quo_test
