#include "support/sizes.h"

static void bench_LocalGrayBalance(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  auto output = frame.pixels;
  for (auto _ : state) {
    LocalGrayBalance(frame.data(), output.data(), frame.width, static_cast<uint32_t>(frame.height), 15, 15);
    benchmark::DoNotOptimize(output[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_LocalGrayBalance)->Apply(quo_bench::frame_sizes);
