// Filters, resampling, thresholds and morphology.
#include "peers/peers.h"

namespace quo_bench {
namespace {

void add_median_filter() {
  add_pair(
      "MedianFilter",
      [](Material& m) { return [&m] { MedianFilter(m.frame.data(), m.output.data(), m.width, m.height); }; },
      [](Material& m) { return [&m] { cv::medianBlur(m.cv_frame, m.cv_output, 3); }; });
}

void add_smoothing() {
  add_pair(
      "GasssianSmooth",
      [](Material& m) { return [&m] { GasssianSmooth(m.frame.data(), m.output.data(), m.width, m.height); }; },
      [](Material& m) { return [&m] { cv::GaussianBlur(m.cv_frame, m.cv_output, {3, 3}, 0); }; });
}

void add_half_image() {
  add_pair(
      "ZoomImg/subsampled",
      [](Material& m) { return [&m] { ZoomImg(m.frame.data(), m.output.data(), m.width, m.height, 0); }; },
      [](Material& m) { return [&m] { cv::resize(m.cv_frame, m.cv_output, {}, 0.5, 0.5, cv::INTER_NEAREST); }; });
  add_pair(
      "ZoomImg/smoothed",
      [](Material& m) { return [&m] { ZoomImg(m.frame.data(), m.output.data(), m.width, m.height, 1); }; },
      [](Material& m) {
        return [&m, smooth = cv::Mat()]() mutable {
          cv::GaussianBlur(m.cv_frame, smooth, {3, 3}, 0);
          cv::resize(smooth, m.cv_output, {}, 0.5, 0.5, cv::INTER_NEAREST);
        };
      });
}

void add_thresholds() {
  add_pair(
      "BinaryThreshold",
      [](Material& m) { return [&m] { BinaryThreshold(m.frame.data(), m.width * m.height, 128); }; },
      [](Material& m) { return [&m] { cv::threshold(m.cv_frame, m.cv_frame, 128, 255, cv::THRESH_BINARY); }; });
  constexpr int kWindow = 15;
  add_pair(
      "AdaptiveThreshold",
      [](Material& m) {
        return [&m] { AdaptiveThreshold(m.frame.data(), m.output.data(), m.width, m.height, kWindow, 3); };
      },
      [](Material& m) {
        return [&m, mean = cv::Mat(), squares = cv::Mat(), flat = cv::Mat()]() mutable {
          cv::boxFilter(m.cv_frame, mean, CV_32F, {kWindow, kWindow});
          cv::sqrBoxFilter(m.cv_frame, squares, CV_32F, {kWindow, kWindow});
          squares -= mean.mul(mean);
          cv::compare(squares, 9.0, flat, cv::CMP_LT);
          mean -= 3.0;
          cv::Mat frame;
          m.cv_frame.convertTo(frame, CV_32F);
          cv::compare(frame, mean, m.cv_output, cv::CMP_GT);
          cv::bitwise_or(m.cv_output, flat, m.cv_output);
        };
      });
}

void add_erosion(const std::string& name, cv::MorphShapes shape, const Prepare& library) {
  add_pair(name, library, [shape](Material& m) {
    const cv::Mat element = cv::getStructuringElement(shape, {3, 3});
    return [&m, element] {
      cv::erode(m.cv_mask, m.cv_output, element);
      benchmark::DoNotOptimize(cv::countNonZero(m.cv_output));
    };
  });
}

void add_morphology() {
  add_erosion("MyRectErode", cv::MORPH_RECT, [](Material& m) {
    return [&m, count = uint32_t{0}]() mutable {
      MyRectErode(m.mask.data(), m.output.data(), m.width, m.height, 1, &count);
    };
  });
  add_erosion("MyCrossErode", cv::MORPH_CROSS, [](Material& m) {
    return [&m, count = uint32_t{0}]() mutable {
      MyCrossErode(m.mask.data(), m.output.data(), m.width, m.height, 1, &count);
    };
  });
}

// A field of one value, which both fill whole. The library takes a fresh label image each time, OpenCV a fresh value.
void add_region_growing() {
  add_pair(
      "RegionGrowByEightNeighbor",
      [](Material& m) {
        quo_memset(m.frame.data(), 7, static_cast<uint32_t>(m.width * m.height));
        return [&m, count = uint32_t{0}]() mutable {
          quo_memset(m.output.data(), 0, static_cast<uint32_t>(m.width * m.height));
          RegionGrowByEightNeighbor(m.width / 2, m.height / 2, 1, m.frame.data(), static_cast<uint32_t>(m.width),
                                    m.height, m.output.data(), &count, nullptr, nullptr, nullptr, nullptr);
        };
      },
      [](Material& m) {
        m.cv_frame = 7;
        return [&m, value = 7]() mutable {
          value = 15 - value;
          cv::floodFill(m.cv_frame, {m.width / 2, m.height / 2}, value, nullptr, 0, 0, 8);
        };
      });
}

}  // namespace

void add_filters() {
  add_median_filter();
  add_smoothing();
  add_half_image();
  add_thresholds();
  add_morphology();
  add_region_growing();
}

}  // namespace quo_bench
