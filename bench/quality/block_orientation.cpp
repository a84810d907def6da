#include "support/sizes.h"

static void bench_BlockOrientation(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  const int32_t nbx = frame.width / 8, nby = frame.height / 8;
  std::vector<quo_block_record> blocks(static_cast<size_t>(nbx * nby));
  uint8_t area;
  for (auto _ : state) {
    BlockOrientation(frame.data(), frame.width, frame.height, blocks.data(), nbx, nby, 3, &area);
    benchmark::DoNotOptimize(blocks[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_BlockOrientation)->Apply(quo_bench::frame_sizes);
