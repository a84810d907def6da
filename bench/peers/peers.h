// Pairs of benchmarks: an operator of the library, and the nearest composition of OpenCV calls that does the same work.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <opencv2/imgproc.hpp>
#include <string>

#include "quoFPAlg.h"
#include "support/frames.h"

namespace quo_bench {

/** What a pair works on: one finger frame, as the library sees it and as OpenCV does, and a mask of its dark pixels. */
struct Material {
  Material(int32_t w, int32_t h);

  int32_t width;
  int32_t height;
  quo_test::Image frame;
  quo_test::Image mask;    // 255 and 0
  quo_test::Image output;  // for the library
  cv::Mat cv_frame;        // the same pixels as frame
  cv::Mat cv_mask;
  cv::Mat cv_output;
};

using Work = std::function<void()>;
/** Makes the call to be timed; what it needs besides the material is made here, outside the timing. */
using Prepare = std::function<Work(Material&)>;

/** Registers NAME/library/WxH and NAME/opencv/WxH for every size. */
void add_pair(const std::string& name, const Prepare& library, const Prepare& opencv);

void add_filters();
void add_measures();
void add_stretches();

}  // namespace quo_bench
