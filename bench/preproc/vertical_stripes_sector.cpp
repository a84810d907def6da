#include "support/sizes.h"

static void bench_RemoveVerticalStripes_Sector(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  auto corrected = frame;
  for (auto _ : state) {
    RemoveVerticalStripes_Sector(frame.data(), corrected.data(), frame.width, frame.height);
    benchmark::DoNotOptimize(corrected.pixels[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_RemoveVerticalStripes_Sector)->Apply(quo_bench::frame_sizes);
