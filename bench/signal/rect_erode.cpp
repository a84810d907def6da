#include "support/sizes.h"

static void bench_MyRectErode(benchmark::State& state) {
  auto mask = quo_bench::frame(state);
  for (uint8_t& pixel : mask.pixels) pixel = pixel > 100 ? 255 : 0;
  std::vector<uint8_t> output(mask.pixels.size());
  for (auto _ : state) {
    uint32_t count = 0;
    MyRectErode(mask.data(), output.data(), mask.width, mask.height, 2, &count);
    benchmark::DoNotOptimize(count);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_MyRectErode)->Apply(quo_bench::frame_sizes);
