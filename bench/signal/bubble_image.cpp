#include "support/sizes.h"

static void bench_CreateBubbleImage(benchmark::State& state) {
  auto frame = quo_bench::frame(state);
  for (auto& pixel : frame.pixels) pixel = pixel / 4 + 60;  // little contrast, so that the blob below stands out
  for (int32_t y = 20; y < 30; y++) {
    for (int32_t x = 20; x < 30; x++) frame.at(x, y) = 255;
  }
  for (auto _ : state) {
    uint32_t count = 0;
    uint8_t* bubbles = nullptr;
    CreateBubbleImage(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height), &count,
                      &bubbles);
    if (bubbles == nullptr) state.SkipWithError("no bubble found");
    tev_quo_free(bubbles);
  }
  quo_bench::count_pixels(state);
}
BENCHMARK(bench_CreateBubbleImage)->Apply(quo_bench::frame_sizes);
