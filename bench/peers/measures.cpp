// Sums, counts, means and orientation.
#include "peers/peers.h"

namespace quo_bench {
namespace {

void add_integral_image() {
  add_pair(
      "GetGrayIntegralImage",
      [](Material& m) {
        std::vector<uint32_t> table(static_cast<size_t>((m.width + 1) * (m.height + 1)));
        return [&m, table]() mutable {
          GetGrayIntegralImage(m.frame.data(), table.data(), m.width, m.height, m.width);
        };
      },
      [](Material& m) { return [&m] { cv::integral(m.cv_frame, m.cv_output, CV_32S); }; });
}

void add_histogram() {
  add_pair(
      "CalcHistogram",
      [](Material& m) {
        return [&m, bins = std::vector<uint32_t>(256)]() mutable {
          CalcHistogram(m.frame.data(), m.width * m.height, bins.data(), 256);
        };
      },
      [](Material& m) {
        return [&m] {
          const int channel = 0, bins = 256;
          const float range[] = {0, 256};
          const float* ranges[] = {range};
          cv::calcHist(&m.cv_frame, 1, &channel, cv::noArray(), m.cv_output, 1, &bins, ranges);
        };
      });
}

void add_bad_lines() {
  add_pair(
      "CheckBadLine",
      [](Material& m) {
        return [&m] {
          uint32_t columns, rows;
          CheckBadLine(m.frame.data(), m.width, m.height, 220, &columns, &rows, nullptr, nullptr);
        };
      },
      [](Material& m) {
        return [&m, columns = cv::Mat()]() mutable {
          cv::reduce(m.cv_frame, m.cv_output, 1, cv::REDUCE_SUM, CV_32S);
          cv::reduce(m.cv_frame, columns, 0, cv::REDUCE_SUM, CV_32S);
        };
      });
}

void add_finger_mean() {
  add_pair(
      "tev_GetFingerMean",
      [](Material& m) {
        return [&m] {
          uint8_t mean, coverage;
          tev_GetFingerMean(m.frame.data(), m.width, m.height, &mean, &coverage);
        };
      },
      [](Material& m) {
        return [&m, blocks = cv::Mat(), finger = cv::Mat()]() mutable {
          cv::resize(m.cv_frame, blocks, {m.width / 8, m.height / 8}, 0, 0, cv::INTER_AREA);
          cv::compare(blocks, 220, finger, cv::CMP_LT);
          benchmark::DoNotOptimize(cv::mean(blocks, finger));
        };
      });
}

void add_orientation() {
  constexpr int kRadius = 3, kWindow = 2 * kRadius + 1;
  add_pair(
      "Orientation",
      [](Material& m) {
        return [&m] { Orientation(m.frame.data(), m.output.data(), m.width, m.height, kRadius); };
      },
      [](Material& m) {
        return [&m, smooth = cv::Mat(), half = cv::Mat(), gx = cv::Mat(), gy = cv::Mat(), angle = cv::Mat()]() mutable {
          cv::GaussianBlur(m.cv_frame, smooth, {3, 3}, 0);
          cv::resize(smooth, half, {}, 0.5, 0.5, cv::INTER_NEAREST);
          cv::Sobel(half, gx, CV_32F, 1, 0);
          cv::Sobel(half, gy, CV_32F, 0, 1);
          cv::Mat p = gx.mul(gy, 2), q = gx.mul(gx) - gy.mul(gy);
          cv::boxFilter(p, p, CV_32F, {kWindow, kWindow});
          cv::boxFilter(q, q, CV_32F, {kWindow, kWindow});
          cv::phase(p, q, angle, true);
          angle.convertTo(half, CV_8U, 0.5);
          cv::resize(half, m.cv_output, {}, 2, 2, cv::INTER_NEAREST);
        };
      });
}

}  // namespace

void add_measures() {
  add_integral_image();
  add_histogram();
  add_bad_lines();
  add_finger_mean();
  add_orientation();
}

}  // namespace quo_bench
