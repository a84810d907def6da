#include <algorithm>
#include <cstring>

#include "support/sizes.h"

static std::vector<double> random_values(int64_t count) {
  quo_test::Random random(2);
  std::vector<double> values(static_cast<size_t>(count));
  for (double& value : values) value = random.between(0, 1000000) * 0.01;
  return values;
}

static void bench_quo_short(benchmark::State& state) {
  const auto values = random_values(state.range(0));
  std::vector<double> sorted(values.size());
  for (auto _ : state) {
    sorted = values;
    quo_short(sorted.data(), static_cast<int32_t>(sorted.size()));
    benchmark::DoNotOptimize(sorted[0]);
  }
}
BENCHMARK(bench_quo_short)->Arg(100)->Arg(400)->Arg(16384);

static void bench_quo_memcpy(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  std::vector<uint8_t> copy(frame.pixels.size());
  for (auto _ : state) {
    quo_memcpy(copy.data(), frame.data(), static_cast<uint32_t>(copy.size()));
    benchmark::DoNotOptimize(copy[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_quo_memcpy)->Apply(quo_bench::frame_sizes);

static void bench_quo_memset(benchmark::State& state) {
  std::vector<uint8_t> bytes(quo_bench::frame(state).pixels.size());
  for (auto _ : state) {
    quo_memset(bytes.data(), 7, static_cast<uint32_t>(bytes.size()));
    benchmark::DoNotOptimize(bytes[0]);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_quo_memset)->Apply(quo_bench::frame_sizes);
