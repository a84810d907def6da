// FindBgValue reads four small patches whatever the size, so the estimate of the background is measured along with it.
#include "support/sizes.h"

static void bench_FP_GetFingerprintInfo(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  uint8_t mean, percentage;
  int32_t x, y;
  for (auto _ : state) {
    FP_GetFingerprintInfo(frame.data(), frame.width, frame.height, &mean, &percentage, &x, &y);
    benchmark::DoNotOptimize(mean);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FP_GetFingerprintInfo)->Apply(quo_bench::frame_sizes);
