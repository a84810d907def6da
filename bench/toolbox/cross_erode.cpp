#include "support/sizes.h"

static void bench_MyCrossErode(benchmark::State& state) {
  auto mask = quo_bench::frame(state);
  BinaryThreshold(mask.data(), mask.width * mask.height, 100);
  std::vector<uint8_t> output(mask.pixels.size());
  for (auto _ : state) {
    uint32_t count = 0;
    MyCrossErode(mask.data(), output.data(), mask.width, mask.height, 0, &count);
    benchmark::DoNotOptimize(count);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_MyCrossErode)->Apply(quo_bench::frame_sizes);
