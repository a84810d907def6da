#include "support/sizes.h"

static void bench_GetEnhanceCoef(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    double coefficient =
        GetEnhanceCoef(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height), 100);
    benchmark::DoNotOptimize(coefficient);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_GetEnhanceCoef)->Apply(quo_bench::frame_sizes);
