#include <algorithm>

#include "peers/peers.h"
#include "synth/sensor.h"

namespace quo_bench {
namespace {

constexpr int kSizes[][2] = {{160, 160}, {640, 480}};

// The frame of `quofp synth --background 240`: the uncovered sensor is not saturated but shows its noise.
quo_test::Image finger_frame(int32_t width, int32_t height) {
  const quofp::synth::Sensor sensor{.size = {width, height}, .background = 240};
  quo_test::Image image(width, height);
  std::ranges::copy(quofp::synth::capture({}, sensor).pixels, image.pixels.begin());
  return image;
}

quo_test::Image blobs(const quo_test::Image& frame) {
  quo_test::Image mask = frame;
  for (uint8_t& pixel : mask.pixels) pixel = pixel < 140 ? 255 : 0;
  return mask;
}

cv::Mat matrix(quo_test::Image& image) { return {image.height, image.width, CV_8UC1, image.data()}; }

}  // namespace

Material::Material(int32_t w, int32_t h)
    : width(w),
      height(h),
      frame(finger_frame(w, h)),
      mask(blobs(frame)),
      output(w, h),
      cv_frame(matrix(frame).clone()),
      cv_mask(matrix(mask).clone()) {}

void add_pair(const std::string& name, const Prepare& library, const Prepare& opencv) {
  for (const auto& [width, height] : kSizes) {
    for (const auto& [side, prepare] : {std::pair{"library", library}, std::pair{"opencv", opencv}}) {
      const std::string full = name + "/" + side + "/" + std::to_string(width) + "x" + std::to_string(height);
      benchmark::RegisterBenchmark(full.c_str(), [=](benchmark::State& state) {
        Material material(width, height);
        const Work work = prepare(material);
        for (auto _ : state) {
          work();
          benchmark::ClobberMemory();
        }
      });
    }
  }
}

}  // namespace quo_bench

int main(int argc, char** argv) {
  cv::setNumThreads(1);
  quo_bench::add_filters();
  quo_bench::add_measures();
  quo_bench::add_stretches();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
