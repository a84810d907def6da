#include "support/sizes.h"

static void bench_FP_GetBadPixelsNum(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    uint32_t defects = 0;
    uint8_t* marks = nullptr;
    FP_GetBadPixelsNum(frame.data(), frame.width, frame.height, &defects, &marks);
    benchmark::DoNotOptimize(defects);
    tev_quo_free(marks);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FP_GetBadPixelsNum)->Apply(quo_bench::frame_sizes);
