#include "sptemplate/templates.h"

static void bench_LocalMatchSpTemplates(benchmark::State& state) {
  quo_bench::Block record;
  quo_bench::extract_record(state, record);
  const uint8_t* const profile = record.data() + 5;  // after the record's and the section's header
  const auto length = static_cast<uint16_t>(state.range(0) - 24);
  uint32_t span = 0, equal = 0;
  for (auto _ : state) {
    LocalMatchSpTemplates(profile, profile, length, &span, &equal);
    benchmark::DoNotOptimize(equal);
  }
}
BENCHMARK(bench_LocalMatchSpTemplates)->Apply(quo_bench::template_sizes);
