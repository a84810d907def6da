// Frames and sizes that the benchmarks share.
#pragma once

#include <benchmark/benchmark.h>

#include "quoFPAlg.h"
#include "support/frames.h"

namespace quo_bench {

/** Registers a benchmark for square frames of 64 x 64 to 2048 x 2048 and for 640 x 480. */
inline void frame_sizes(benchmark::internal::Benchmark* bench) {
  for (const int size : {64, 160, 512, 2048}) bench->Args({size, size});
  bench->Args({640, 480});
}

/** A frame of the benchmark's size: one texture of ridges, background and noise, 64 x 64 pixels, repeated, so that the
 *  cost of a pixel is compared on the same content at all sizes. */
inline quo_test::Image frame(const benchmark::State& state) {
  constexpr int32_t kTile = 64;
  quo_test::Random random(1);
  const quo_test::Image tile = quo_test::generate(random, kTile, kTile, quo_test::Fill::kRidges);
  return {static_cast<int32_t>(state.range(0)), static_cast<int32_t>(state.range(1)),
          [&](int32_t x, int32_t y) { return tile.at(x % kTile, y % kTile); }};
}

/** Reports pixels per second for the benchmark's frame size. */
inline void count_pixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}

}  // namespace quo_bench
