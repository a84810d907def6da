#include "support/sizes.h"

static void bench_GetGrayIntegralImage(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  std::vector<uint32_t> table(static_cast<size_t>((frame.width + 1) * (frame.height + 1)));
  for (auto _ : state) {
    GetGrayIntegralImage(frame.data(), table.data(), frame.width, frame.height, frame.width);
    benchmark::DoNotOptimize(table.back());
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_GetGrayIntegralImage)->Apply(quo_bench::frame_sizes);
