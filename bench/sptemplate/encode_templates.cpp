#include "sptemplate/templates.h"

static void bench_EncodeSpTemplates(benchmark::State& state) {
  quo_bench::Block record;
  quo_bench::extract_record(state, record);
  for (auto _ : state) EncodeSpTemplates(record.data(), nullptr, nullptr);
}
BENCHMARK(bench_EncodeSpTemplates)->Apply(quo_bench::template_sizes);
