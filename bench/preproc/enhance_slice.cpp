#include "support/sizes.h"

template <int32_t slice_rows>
static void bench_FP_ImageEnhance_Slice(benchmark::State& state) {
  const auto original = quo_bench::frame(state);
  auto frame = original;
  for (auto _ : state) {
    frame.pixels = original.pixels;  // a balanced frame would have another gain
    FP_ImageEnhance_Slice(frame.data(), frame.width, frame.height, slice_rows, 100);
    benchmark::DoNotOptimize(frame.pixels[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FP_ImageEnhance_Slice<16>)->Name("bench_FP_ImageEnhance_Slice/16")->Apply(quo_bench::frame_sizes);
BENCHMARK(bench_FP_ImageEnhance_Slice<64>)->Name("bench_FP_ImageEnhance_Slice/64")->Apply(quo_bench::frame_sizes);
