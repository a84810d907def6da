// Whole jobs of the library, and the same steps as the tests have them: pixel by pixel, every window anew. Also the
// primitives and what the standard library has in their place.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "quoFPAlg.h"
#include "reference/defect.h"
#include "reference/preproc.h"
#include "reference/quality.h"
#include "reference/signal.h"
#include "reference/sptemplate.h"

namespace {

using quo_test::Image;
using reference::Bytes;

constexpr int kSizes[][2] = {{160, 160}, {640, 480}};

Image finger_frame(int32_t width, int32_t height, uint64_t seed) {
  quo_test::Random random(seed);
  return quo_test::generate(random, width, height, quo_test::Fill::kRidges);
}

using Work = std::function<void()>;
using Prepare = std::function<Work(const Image&)>;

void add(const char* job, const char* side, const Prepare& prepare) {
  for (const auto& [width, height] : kSizes) {
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    benchmark::RegisterBenchmark((std::string(job) + "/" + side + "/" + size).c_str(), [=](benchmark::State& state) {
      const Image frame = finger_frame(width, height, 1);
      const Work work = prepare(frame);
      for (auto _ : state) {
        work();
        benchmark::ClobberMemory();
      }
    });
  }
}

/** Registers JOB/library/WxH and JOB/literal/WxH for every size. */
void add_pair(const char* job, const Prepare& library, const Prepare& literal) {
  add(job, "library", library);
  add(job, "literal", literal);
}

void add_frame_jobs() {
  add_pair(
      "FP_ImagePreproc",
      [](const Image& frame) {
        return [&frame] {
          Image copy = frame;
          uint8_t area = 1;
          FP_ImagePreproc(copy.data(), copy.width, copy.height, 0, &area, 15);
        };
      },
      [](const Image& frame) {
        return [&frame] {
          const Image bordered = reference::bordered(frame, 15);
          const uint8_t background = reference::background_value(bordered).value_or(255);
          benchmark::DoNotOptimize(reference::valid_area(bordered, background));
          benchmark::DoNotOptimize(reference::contrasted(reference::without_stripes(bordered), 100));
        };
      });
  add_pair(
      "FP_ImageQuality",
      [](const Image& frame) {
        return [&frame] {
          uint8_t quality, area, bright, mean;
          FP_ImageQuality(frame.data(), frame.width, frame.height, &quality, &area, &bright, &mean);
        };
      },
      [](const Image& frame) {
        return [&frame] { benchmark::DoNotOptimize(reference::score(reference::sparse_blocks(frame), true)); };
      });
  add_pair(
      "FP_GetBadPixelsNum",
      [](const Image& frame) {
        return [&frame] {
          uint32_t count;
          uint8_t* marks = nullptr;
          FP_GetBadPixelsNum(frame.data(), frame.width, frame.height, &count, &marks);
          tev_quo_free(marks);
        };
      },
      [](const Image& frame) { return [&frame] { benchmark::DoNotOptimize(reference::defects(frame)); }; });
}

void add_signal_jobs() {
  add_pair(
      "FP_ComputeSNR",
      [](const Image& frame) {
        return [&frame] {
          uint8_t snr, signal, noise;
          FP_ComputeSNR(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height), &snr,
                        &signal, &noise);
        };
      },
      [](const Image& frame) { return [&frame] { benchmark::DoNotOptimize(reference::snr(frame)); }; });
  add_pair(
      "CreateBubbleImage",
      [](const Image& frame) {
        return [&frame] {
          uint32_t count;
          uint8_t* bubbles = nullptr;
          CreateBubbleImage(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height),
                            &count, &bubbles);
          tev_quo_free(bubbles);
        };
      },
      [](const Image& frame) { return [&frame] { benchmark::DoNotOptimize(reference::bubbles(frame)); }; });
}

Bytes template_of(const Image& frame) {
  uint8_t* sp_template = nullptr;
  uint32_t size = 0;
  FP_ExtractSpTemplates(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height),
                        &sp_template, &size);
  const Bytes bytes(sp_template, sp_template + size);
  tev_quo_free(sp_template);
  return bytes;
}

// Frames of 640 x 480 are too large for templates that can be decoded: of those both sides only look at the length.
void add_template_jobs() {
  add_pair(
      "FP_ExtractSpTemplates",
      [](const Image& frame) { return [&frame] { benchmark::DoNotOptimize(template_of(frame)); }; },
      [](const Image& frame) {
        return [&frame] { benchmark::DoNotOptimize(reference::encoded(reference::record(frame))); };
      });
  add_pair(
      "FP_MatchSpTemplates",
      [](const Image& frame) {
        const Bytes first = template_of(frame), second = template_of(finger_frame(frame.width, frame.height, 2));
        return [first, second] {
          uint32_t score;
          benchmark::DoNotOptimize(FP_MatchSpTemplates(first.data(), second.data(), &score));
        };
      },
      [](const Image& frame) {
        const Bytes first = template_of(frame), second = template_of(finger_frame(frame.width, frame.height, 2));
        return [first, second] {
          const auto a = reference::decoded(first), b = reference::decoded(second);
          if (a.accepted && b.accepted) benchmark::DoNotOptimize(reference::match(a.record, b.record));
        };
      });
}

// Beside the standard library's own: over the bytes of a frame, and over 400 values in any order and sorted.
void add_primitives() {
  const auto copy = [](auto function) {
    return [function](const Image& frame) {
      return [&frame, function, to = frame.pixels]() mutable { function(to.data(), frame.data(), to.size()); };
    };
  };
  add_pair("quo_memcpy",
           copy([](uint8_t* to, const uint8_t* from, size_t n) { quo_memcpy(to, from, static_cast<uint32_t>(n)); }),
           copy([](uint8_t* to, const uint8_t* from, size_t n) { std::memcpy(to, from, n); }));
  add_pair("quo_memset",
           copy([](uint8_t* to, const uint8_t*, size_t n) { quo_memset(to, 7, static_cast<uint32_t>(n)); }),
           copy([](uint8_t* to, const uint8_t*, size_t n) { std::memset(to, 7, n); }));
  const auto sort = [](bool sorted, auto function) {
    return [=](const Image&) {
      quo_test::Random random(2);
      std::vector<double> values(400);
      for (double& value : values) value = random.between(0, 1000000) * 0.01;
      if (sorted) std::sort(values.begin(), values.end());
      return [=, work = values]() mutable {
        std::copy(values.begin(), values.end(), work.begin());
        function(work);
      };
    };
  };
  const auto own = [](std::vector<double>& values) { quo_short(values.data(), static_cast<int32_t>(values.size())); };
  const auto standard = [](std::vector<double>& values) { std::sort(values.begin(), values.end()); };
  add_pair("quo_short/random", sort(false, own), sort(false, standard));
  add_pair("quo_short/sorted", sort(true, own), sort(true, standard));
}

}  // namespace

int main(int argc, char** argv) {
  add_frame_jobs();
  add_signal_jobs();
  add_template_jobs();
  add_primitives();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
