#include "support/sizes.h"

static void bench_FP_ImagePreproc(benchmark::State& state) {
  const auto original = quo_bench::frame(state);
  auto frame = original;
  for (auto _ : state) {
    frame.pixels = original.pixels;
    uint8_t area = 0;
    FP_ImagePreproc(frame.data(), frame.width, frame.height, 0, &area, 15);
    benchmark::DoNotOptimize(frame.pixels[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FP_ImagePreproc)->Apply(quo_bench::frame_sizes);
