#include "support/sizes.h"

static void bench_AreaGrayStretch(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  auto output = frame.pixels;
  for (auto _ : state) {
    AreaGrayStretch(frame.data(), output.data(), frame.width, frame.height, 15, 15);
    benchmark::DoNotOptimize(output[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_AreaGrayStretch)->Apply(quo_bench::frame_sizes);
