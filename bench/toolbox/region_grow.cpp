#include <algorithm>

#include "support/sizes.h"

// The ridges of a print, joined to one region by a line across them.
static void bench_RegionGrowByEightNeighbor(benchmark::State& state) {
  auto mask = quo_bench::frame(state);
  BinaryThreshold(mask.data(), mask.width * mask.height, 120);
  for (int32_t x = 0; x < mask.width; x++) mask.at(x, mask.height / 2) = 255;
  std::vector<uint8_t> labels(mask.pixels.size());
  for (auto _ : state) {
    std::fill(labels.begin(), labels.end(), uint8_t{0});
    uint32_t count = 0;
    RegionGrowByEightNeighbor(mask.width / 2, mask.height / 2, 1, mask.data(), static_cast<uint32_t>(mask.width),
                              static_cast<uint32_t>(mask.height), labels.data(), &count, nullptr, nullptr, nullptr,
                              nullptr);
    benchmark::DoNotOptimize(count);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_RegionGrowByEightNeighbor)->Apply(quo_bench::frame_sizes);
