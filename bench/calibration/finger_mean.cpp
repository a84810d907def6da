#include "support/sizes.h"

static void bench_tev_GetFingerMean(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    uint8_t mean = 0, coverage = 0;
    tev_GetFingerMean(frame.data(), frame.width, frame.height, &mean, &coverage);
    benchmark::DoNotOptimize(mean);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_tev_GetFingerMean)->Apply(quo_bench::frame_sizes);
