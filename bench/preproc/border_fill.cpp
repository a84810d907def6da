#include "support/sizes.h"

static void bench_FillBorders(benchmark::State& state) {
  auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    FillBorders(frame.data(), frame.width, frame.height, 15);
    benchmark::DoNotOptimize(frame.pixels[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FillBorders)->Apply(quo_bench::frame_sizes);
