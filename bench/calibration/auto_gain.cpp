#include "support/sizes.h"

static void bench_tev_AutoGainDacp(benchmark::State& state) {
  const uint8_t mean = 110;
  uint8_t settings[3] = {0x5A, 0xF3, 0x40};
  for (auto _ : state) {
    tev_AutoGainDacp(nullptr, 0, 0, &mean, settings, settings, 120, 1);
    benchmark::DoNotOptimize(settings[2]);
  }
}
BENCHMARK(bench_tev_AutoGainDacp);
