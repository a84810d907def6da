#include "support/sizes.h"

static void bench_BlockOrientation_MCU(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  quo_block_record* blocks;
  int32_t count;
  for (auto _ : state) {
    BlockOrientation_MCU(frame.data(), frame.width, frame.height, &blocks, &count);
    benchmark::DoNotOptimize(blocks[0]);
    tev_quo_free(blocks);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_BlockOrientation_MCU)->Apply(quo_bench::frame_sizes);
