#include "sptemplate/templates.h"

static void bench_DecodeSpTemplates(benchmark::State& state) {
  quo_bench::Block sp_template;
  quo_bench::extract_template(state, sp_template);
  for (auto _ : state) DecodeSpTemplates(sp_template.data(), nullptr, nullptr);
}
BENCHMARK(bench_DecodeSpTemplates)->Apply(quo_bench::template_sizes);
