#include "sptemplate/templates.h"

static void bench_FP_ExtractSpTemplates(benchmark::State& state) {
  const auto frame = quo_bench::frame(state);
  for (auto _ : state) {
    uint8_t* sp_template = nullptr;
    FP_ExtractSpTemplates(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height),
                          &sp_template, nullptr);
    FP_DeleteSpTemplates(&sp_template);
  }
}
BENCHMARK(bench_FP_ExtractSpTemplates)->Apply(quo_bench::template_sizes);

static void bench_FP_MatchSpTemplates(benchmark::State& state) {
  quo_bench::Block sp_template;
  quo_bench::extract_template(state, sp_template);
  uint32_t score = 0;
  for (auto _ : state) {
    FP_MatchSpTemplates(sp_template.data(), sp_template.data(), &score);
    benchmark::DoNotOptimize(score);
  }
}
BENCHMARK(bench_FP_MatchSpTemplates)->Apply(quo_bench::template_sizes);
