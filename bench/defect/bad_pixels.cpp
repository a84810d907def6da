#include "support/sizes.h"

static void bench_CheckBadPixelsNum(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    uint32_t count = 0;
    CheckBadPixelsNum(frame.data(), frame.width, frame.height, frame.width * frame.height, &count, nullptr, 200);
    benchmark::DoNotOptimize(count);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_CheckBadPixelsNum)->Apply(quo_bench::frame_sizes);
