#include "support/sizes.h"

static void bench_AdaptiveLineBinary(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  auto lines = frame;
  for (auto _ : state) {
    for (int32_t y = 0; y < frame.height; y++) AdaptiveLineBinary(&lines.at(0, y), frame.width);
    benchmark::ClobberMemory();
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_AdaptiveLineBinary)->Apply(quo_bench::frame_sizes);
