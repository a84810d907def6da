#include "support/sizes.h"

static void bench_BlockGrayStretch(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  auto output = frame.pixels;
  for (auto _ : state) {
    BlockGrayStretch(frame.data(), output.data(), frame.width, frame.height, 16, 16);
    benchmark::DoNotOptimize(output[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_BlockGrayStretch)->Apply(quo_bench::frame_sizes);
