#include "support/sizes.h"

static void bench_ImageQuality(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  uint8_t quality, area, bright, mean_gray;
  for (auto _ : state) {
    ImageQuality(frame.data(), frame.width, frame.height, &quality, &area, &bright, &mean_gray);
    benchmark::DoNotOptimize(quality);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_ImageQuality)->Apply(quo_bench::frame_sizes);
