#include "support/sizes.h"

template <uint8_t mode>
static void bench_ZoomImg(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  std::vector<uint8_t> half(frame.pixels.size() / 4);
  for (auto _ : state) {
    ZoomImg(frame.data(), half.data(), frame.width, frame.height, mode);
    benchmark::DoNotOptimize(half[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_ZoomImg<0>)->Name("bench_ZoomImg/subsample")->Apply(quo_bench::frame_sizes);
BENCHMARK(bench_ZoomImg<1>)->Name("bench_ZoomImg/smooth")->Apply(quo_bench::frame_sizes);
