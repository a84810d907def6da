#include "support/sizes.h"

template <int32_t size>
static void bench_ImgBlockVariance(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    double* variances = nullptr;
    ImgBlockVariance(frame.data(), frame.width, frame.height, 4, size, &variances, nullptr, nullptr);
    benchmark::DoNotOptimize(variances[0]);
    tev_quo_free(variances);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_ImgBlockVariance<16>)->Apply(quo_bench::frame_sizes);
BENCHMARK(bench_ImgBlockVariance<32>)->Args({160, 160});  // copied blocks, integer sums
BENCHMARK(bench_ImgBlockVariance<15>)->Args({160, 160});  // copied blocks, steps in order
