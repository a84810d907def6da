#include "support/sizes.h"

static void bench_ExtractSpTemplates(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) ExtractSpTemplates(frame.data(), frame.width, frame.height, nullptr, nullptr);
}
BENCHMARK(bench_ExtractSpTemplates)->Apply(quo_bench::frame_sizes);
