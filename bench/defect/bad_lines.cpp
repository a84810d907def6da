#include "support/sizes.h"

static void bench_CheckBadLine(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    uint32_t column_pixels = 0, row_pixels = 0;
    CheckBadLine(frame.data(), frame.width, frame.height, 220, &column_pixels, &row_pixels, nullptr, nullptr);
    benchmark::DoNotOptimize(column_pixels + row_pixels);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_CheckBadLine)->Apply(quo_bench::frame_sizes);

static void bench_FP_GetBadLinePixelsNum(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    uint32_t total = 0;
    uint8_t* marks = nullptr;
    FP_GetBadLinePixelsNum(frame.data(), frame.width, frame.height, &total, &marks);
    benchmark::DoNotOptimize(total);
    tev_quo_free(marks);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FP_GetBadLinePixelsNum)->Apply(quo_bench::frame_sizes);
