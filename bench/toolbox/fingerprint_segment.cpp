#include <algorithm>

#include "support/sizes.h"

// The copy of the frame is part of the time: the operator works in place.
static void bench_FingerprintImageSegment(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  auto image = frame.pixels;
  for (auto _ : state) {
    std::copy(frame.pixels.begin(), frame.pixels.end(), image.begin());
    FingerprintImageSegment(image.data(), frame.width, frame.height, 150);
    benchmark::DoNotOptimize(image[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_FingerprintImageSegment)->Apply(quo_bench::frame_sizes);
