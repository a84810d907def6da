#include "support/sizes.h"

static void bench_GasssianSmooth(benchmark::State& state) {
  auto frame = quo_bench::frame(state);
  std::vector<uint8_t> scratch(frame.pixels.size());
  for (auto _ : state) {
    GasssianSmooth(frame.data(), scratch.data(), frame.width, frame.height);
    benchmark::DoNotOptimize(frame.pixels[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_GasssianSmooth)->Apply(quo_bench::frame_sizes);
