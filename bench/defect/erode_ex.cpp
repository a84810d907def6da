#include "support/sizes.h"

template <bool with_marks>
static void bench_MyErodeEx(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    uint32_t count = 0;
    uint8_t* marks = nullptr;
    MyErodeEx(frame.data(), frame.width, frame.height, 2, 70, INT32_MAX, &count, with_marks ? &marks : nullptr);
    benchmark::DoNotOptimize(count);
    tev_quo_free(marks);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_MyErodeEx<false>)->Name("bench_MyErodeEx/count")->Apply(quo_bench::frame_sizes);
BENCHMARK(bench_MyErodeEx<true>)->Name("bench_MyErodeEx/mark")->Apply(quo_bench::frame_sizes);
