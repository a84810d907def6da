#include "support/sizes.h"

static void bench_CalcHistogram(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  uint32_t histogram[256];
  for (auto _ : state) {
    CalcHistogram(frame.data(), frame.width * frame.height, histogram, 256);
    benchmark::DoNotOptimize(histogram[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_CalcHistogram)->Apply(quo_bench::frame_sizes);
