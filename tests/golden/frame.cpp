#include <bit>

#include "golden/golden.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

std::vector<uint8_t> bytes(Case& c, int32_t count) { return c.frame(count, 1).pixels; }

void call_malloc_and_free(Case& c) {
  void* const block = tev_quo_malloc(static_cast<uint32_t>(c.width));
  c.add(block != nullptr);
  tev_quo_free(block);
}

void call_atan2(Case& c) {
  for (int i = 0; i < c.width; i++) {
    // Angles of the axes and diagonals alone: elsewhere the last bit is the platform's.
    const double x = c.random.between(-1, 1), y = c.random.between(-1, 1);
    c.add(tev_quo_atan2(y, x));
  }
}

void call_log(Case&) { tev_quo_log("tag", 4); }

void call_version(Case& c) { c.add(FP_GetVersion()); }

void call_memset(Case& c) {
  std::vector<uint8_t> data = bytes(c, c.width * c.height);
  c.add(quo_memset(data.data(), c.random.byte(), static_cast<uint32_t>(data.size())) == data.data());
  c.add(quo_memset(nullptr, 1, 1) == nullptr);
  c.add(data);
}

void call_memcpy(Case& c) {
  std::vector<uint8_t> data = bytes(c, 3 * c.width * c.height);
  const int32_t count = c.width * c.height;
  const int32_t from = c.random.between(0, 2 * count), to = c.random.between(0, 2 * count);
  quo_memcpy(data.data() + to, data.data() + from, static_cast<uint32_t>(count));
  c.add(quo_memcpy(nullptr, data.data(), 1) == nullptr);
  c.add(data);
}

void call_sqrt(Case& c) {
  for (int i = 0; i <= c.width * c.height; i++) {
    const auto any = std::bit_cast<float>(static_cast<uint32_t>(c.random.next() & 0x7F7FFFFF));
    c.add(quo_sqrt(any));
    c.add(quo_sqrt(static_cast<float>(c.random.between(0, 70000))));
  }
}

void call_short(Case& c) {
  std::vector<double> values(static_cast<size_t>(c.width * c.height) / 8);
  for (double& value : values) value = c.pick({0.0, -0.0, 1.5, c.random.between(-500, 500) * 0.25});
  quo_short(values.data(), static_cast<int32_t>(values.size()));
  c.add(values);
}

void call_histogram(Case& c) {
  const Image frame = c.frame();
  const uint32_t bins = c.pick({256U, 256U, 256U, 17U, 0U});
  std::vector<uint32_t> histogram(bins, 99);
  c.add(CalcHistogram(c.maybe(frame.data()), c.width * c.height, histogram.data(), bins));
  c.add(histogram);
}

void call_integral_image(Case& c) {
  const int32_t stride = c.width + c.random.between(0, 3);
  const Image frame = c.frame(stride, c.height);
  std::vector<uint32_t> table(static_cast<size_t>((c.width + 1) * (c.height + 1)), 99);
  GetGrayIntegralImage(frame.data(), table.data(), c.width, c.height, stride);
  c.add(table);
}

void call_half_image(Case& c) {
  const Image frame = c.frame();
  Image half(c.width / 2, c.height / 2, 99);
  ZoomImg(frame.data(), half.data(), c.width, c.height, static_cast<uint8_t>(c.random.between(0, 2)));
  c.add(half);
}

}  // namespace

const std::vector<Function> kFrameFunctions = {
    {"tev_quo_malloc", call_malloc_and_free},
    {"tev_quo_free", call_malloc_and_free},
    {"tev_quo_atan2", call_atan2},
    {"tev_quo_log", call_log},
    {"FP_GetVersion", call_version},
    {"quo_memset", call_memset},
    {"quo_memcpy", call_memcpy},
    {"quo_sqrt", call_sqrt},
    {"quo_short", call_short},
    {"CalcHistogram", call_histogram},
    {"GetGrayIntegralImage", call_integral_image},
    {"ZoomImg", call_half_image},
};

}  // namespace golden
