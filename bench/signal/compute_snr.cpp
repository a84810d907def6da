#include "support/sizes.h"

static void bench_FP_ComputeSNR(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    uint8_t snr = 0, signal = 0, noise = 0;
    FP_ComputeSNR(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height), &snr, &signal,
                  &noise);
    benchmark::DoNotOptimize(snr);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FP_ComputeSNR)->Apply(quo_bench::frame_sizes);
