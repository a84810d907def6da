#include "support/sizes.h"

static void bench_MedianFilter(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  auto output = frame.pixels;
  for (auto _ : state) {
    MedianFilter(frame.data(), output.data(), frame.width, frame.height);
    benchmark::DoNotOptimize(output[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_MedianFilter)->Apply(quo_bench::frame_sizes);
