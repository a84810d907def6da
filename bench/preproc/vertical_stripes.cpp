#include "support/sizes.h"

static void bench_RemoveVerticalStripes(benchmark::State& state) {
  auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    RemoveVerticalStripes(frame.data(), frame.data(), frame.width, frame.height);
    benchmark::DoNotOptimize(frame.pixels[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_RemoveVerticalStripes)->Apply(quo_bench::frame_sizes);
