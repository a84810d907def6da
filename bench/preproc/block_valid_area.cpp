#include "support/sizes.h"

static void bench_FP_GetBlockValidArea(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  uint8_t means[4];
  for (auto _ : state) {
    FP_GetBlockValidArea(frame.data(), frame.width, frame.height, &means[0], &means[1], &means[2], &means[3]);
    benchmark::DoNotOptimize(means);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FP_GetBlockValidArea)->Apply(quo_bench::frame_sizes);
