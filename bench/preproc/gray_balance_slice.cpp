#include "support/sizes.h"

template <uint32_t radius>
static void bench_LocalGrayBalance_Slice(benchmark::State& state) {
  const auto original = quo_bench::frame(state);
  auto frame = original;
  for (auto _ : state) {
    frame.pixels = original.pixels;
    LocalGrayBalance_Slice(frame.data(), frame.width, frame.height, radius, static_cast<uint32_t>(frame.height), 3, 0,
                           0);
    benchmark::DoNotOptimize(frame.pixels[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_LocalGrayBalance_Slice<3>)->Name("bench_LocalGrayBalance_Slice/3")->Apply(quo_bench::frame_sizes);
BENCHMARK(bench_LocalGrayBalance_Slice<8>)->Name("bench_LocalGrayBalance_Slice/8")->Apply(quo_bench::frame_sizes);
