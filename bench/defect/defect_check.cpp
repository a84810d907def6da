#include "support/sizes.h"

// A frame that passes, so that all of the check runs; the repair has nothing to do after the first time.
static void bench_FP_CheckBadPixelsNum_MCU(benchmark::State& state) {
  auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    uint8_t fail = 0;
    FP_CheckBadPixelsNum_MCU(frame.data(), frame.width, frame.height, frame.width * frame.height, &fail);
    benchmark::DoNotOptimize(fail);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FP_CheckBadPixelsNum_MCU)->Apply(quo_bench::frame_sizes);
