#include "sptemplate/templates.h"

static void bench_MatchSpTemplates(benchmark::State& state) {
  quo_bench::Block record;
  quo_bench::extract_record(state, record);
  uint32_t score = 0;
  for (auto _ : state) {
    MatchSpTemplates(record.data(), record.data(), &score);
    benchmark::DoNotOptimize(score);
  }
}
BENCHMARK(bench_MatchSpTemplates)->Apply(quo_bench::template_sizes);
