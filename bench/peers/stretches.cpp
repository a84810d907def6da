// Gray balance and gray stretches.
#include "peers/peers.h"

namespace quo_bench {
namespace {

// Pixel minus local mean, times a gain, plus 128; bright pixels stay.
Work opencv_slice_balance(Material& m) {
  return [&m, mean = cv::Mat(), keep = cv::Mat()]() mutable {
    cv::boxFilter(m.cv_frame, mean, CV_8U, {7, 7});
    cv::addWeighted(m.cv_frame, 3, mean, -3, 128, m.cv_output);
    cv::compare(m.cv_frame, 254, keep, cv::CMP_GE);
    m.cv_frame.copyTo(m.cv_output, keep);
  };
}

// The gain from the mean distance of all pixels but background from their mean, by which background is replaced. Pixels
// are moved half of the way that their local mean is from it.
Work opencv_balance(Material& m) {
  return [&m, finger = cv::Mat(), background = cv::Mat(), away = cv::Mat(), local = cv::Mat()]() mutable {
    cv::compare(m.cv_frame, 255, finger, cv::CMP_LT);
    cv::bitwise_not(finger, background);
    const double mean = cv::mean(m.cv_frame, finger)[0];
    cv::absdiff(m.cv_frame, mean, away);
    const double gain = 50 / cv::mean(away, finger)[0];
    cv::Mat filled = m.cv_frame.clone();
    filled.setTo(mean, background);
    cv::boxFilter(filled, local, CV_8U, {15, 15});
    cv::addWeighted(m.cv_frame, gain, local, 1 - 1.5 * gain, gain * mean / 2 + 128 - mean, m.cv_output);
    m.cv_frame.copyTo(m.cv_output, background);
  };
}

void add_balances() {
  add_pair(
      "LocalGrayBalance_Slice",
      [](Material& m) {
        const quo_test::Image original = m.frame;
        return [&m, original] {
          quo_memcpy(m.frame.data(), original.data(), static_cast<uint32_t>(original.pixels.size()));
          LocalGrayBalance_Slice(m.frame.data(), m.width, m.height, 3, static_cast<uint32_t>(m.height), 3, 0, 0);
        };
      },
      opencv_slice_balance);
  add_pair(
      "LocalGrayBalance",
      [](Material& m) {
        return [&m] {
          LocalGrayBalance(m.frame.data(), m.output.data(), m.width, static_cast<uint32_t>(m.height), 15, 15);
        };
      },
      opencv_balance);
}

void add_area_stretch() {
  constexpr int kWindow = 15;
  add_pair(
      "AreaGrayStretch",
      [](Material& m) {
        return [&m] { AreaGrayStretch(m.frame.data(), m.output.data(), m.width, m.height, kWindow, kWindow); };
      },
      [](Material& m) {
        const cv::Mat element = cv::getStructuringElement(cv::MORPH_RECT, {kWindow, kWindow});
        return [&m, element, low = cv::Mat(), high = cv::Mat(), mean = cv::Mat(), range = cv::Mat()]() mutable {
          cv::erode(m.cv_frame, low, element);
          cv::dilate(m.cv_frame, high, element);
          cv::boxFilter(m.cv_frame, mean, CV_8U, {kWindow, kWindow});
          cv::subtract(high, low, range);
          cv::subtract(m.cv_frame, low, m.cv_output);
          cv::divide(m.cv_output, range, m.cv_output, 254);
        };
      });
}

void add_valid_area_stretch() {
  add_pair(
      "ValidAreaGrayStretch",
      [](Material& m) {
        const quo_test::Image original = m.frame;
        return [&m, original] {
          quo_memcpy(m.frame.data(), original.data(), static_cast<uint32_t>(original.pixels.size()));
          ValidAreaGrayStretch(m.frame.data(), m.width, m.height);
        };
      },
      [](Material& m) { return [&m] { cv::equalizeHist(m.cv_frame, m.cv_output); }; });
}

}  // namespace

void add_stretches() {
  add_balances();
  add_area_stretch();
  add_valid_area_stretch();
}

}  // namespace quo_bench
