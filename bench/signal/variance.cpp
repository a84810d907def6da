#include "support/sizes.h"

static void bench_Variance(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) benchmark::DoNotOptimize(Variance(frame.data(), static_cast<int32_t>(state.range(0))));
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_Variance)->Args({255, 1})->Args({256, 1})->Args({4096, 1});
