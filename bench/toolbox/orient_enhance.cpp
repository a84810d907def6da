#include "support/sizes.h"

// Directions as of a real print: they turn slowly over the image.
static void bench_OrientEnhance(benchmark::State& state) {
  auto frame = quo_bench::frame(state);
  const quo_test::Image directions(frame.width, frame.height,
                                   [](int32_t x, int32_t y) { return (x + y / 2) / 2 % 180; });
  for (auto _ : state) {
    OrientEnhance(frame.data(), directions.data(), frame.width, frame.height);
    benchmark::DoNotOptimize(frame.pixels[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_OrientEnhance)->Apply(quo_bench::frame_sizes);
