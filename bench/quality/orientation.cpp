#include "support/sizes.h"

static void bench_Orientation(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  std::vector<uint8_t> field(frame.pixels.size());
  const auto radius = static_cast<int32_t>(state.range(2));
  for (auto _ : state) {
    Orientation(frame.data(), field.data(), frame.width, frame.height, radius);
    benchmark::DoNotOptimize(field[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_Orientation)
    ->Args({64, 64, 3})
    ->Args({160, 160, 3})
    ->Args({2048, 2048, 3})
    ->Args({640, 480, 3})
    ->Args({640, 480, 40});
