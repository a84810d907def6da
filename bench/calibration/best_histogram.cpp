#include "support/sizes.h"

static void bench_FP_ChooseBestHist(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  const uint8_t* const frames[] = {frame.data()};
  for (auto _ : state) {
    uint8_t chosen = 0;
    FP_ChooseBestHist(frames, 1, frame.width, frame.height, &chosen);
    benchmark::DoNotOptimize(chosen);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FP_ChooseBestHist)->Apply(quo_bench::frame_sizes);
