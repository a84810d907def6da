#include "support/sizes.h"

static void bench_AdaptiveThreshold(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  auto output = frame.pixels;
  for (auto _ : state) {
    AdaptiveThreshold(frame.data(), output.data(), frame.width, frame.height, 15, 0);
    benchmark::DoNotOptimize(output[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_AdaptiveThreshold)->Apply(quo_bench::frame_sizes);
