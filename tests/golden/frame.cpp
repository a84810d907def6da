#include <bit>

#include "golden/functions.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

size_t area(const Case& c) {
  return c.width > 0 && c.height > 0 ? static_cast<size_t>(c.width) * static_cast<size_t>(c.height) : 0;
}

void call_malloc_and_free(Case& c) {
  void* const block = tev_quo_malloc(static_cast<uint32_t>(c.random().between(0, 5000)));
  c.add(block != nullptr);
  tev_quo_free(block);
}

void call_atan2(Case& c) {
  // Angles of the axes and diagonals alone: elsewhere the last bit is the platform's.
  const double x = c.random().between(-1, 1), y = c.random().between(-1, 1);
  c.add(tev_quo_atan2(y, x));
}

void call_log(Case&) { tev_quo_log("tag", 4); }

void call_version(Case& c) { c.add(FP_GetVersion()); }

void call_memset(Case& c) {
  const auto count = static_cast<uint32_t>(area(c));
  auto* const bytes = c.array<uint8_t>(count, 7);
  const uint8_t value = c.random().byte();
  c.add(quo_memset(c.maybe(bytes), value, count) == bytes);
}

void call_memcpy(Case& c) {
  const auto count = static_cast<int32_t>(area(c));
  auto* const bytes = c.in_place(c.content(3 * count, 1));
  const int32_t from = c.random().between(0, 2 * count), to = c.random().between(0, 2 * count);
  c.add(quo_memcpy(c.maybe(bytes + to), bytes + from, static_cast<uint32_t>(count)) == bytes + to);
}

void call_sqrt(Case& c) {
  for (size_t i = 0; i <= area(c); i++) {
    c.add(quo_sqrt(std::bit_cast<float>(static_cast<uint32_t>(c.random().next() & 0x7F7FFFFF))));
    c.add(quo_sqrt(static_cast<float>(c.random().between(0, 70000))));
  }
}

void call_short(Case& c) {
  const size_t count = area(c) / 8;
  auto* const values = c.array<double>(count, 0.0);
  for (size_t i = 0; i < count; i++) values[i] = c.pick({0.0, -0.0, 1.5, c.random().between(-500, 500) * 0.25});
  quo_short(values, c.pick({static_cast<int32_t>(count), static_cast<int32_t>(count), 0, -1}));
}

void call_histogram(Case& c) {
  const auto bins = c.pick({256U, 256U, 256U, 17U, 0U});
  auto* const histogram = c.array<uint32_t>(bins, 99);
  const int32_t count = c.pick({static_cast<int32_t>(area(c)), static_cast<int32_t>(area(c)), -1, INT_MIN});
  const uint8_t* const frame = c.maybe(c.frame());
  c.add(CalcHistogram(frame, count, c.maybe(histogram), bins));
}

void call_integral_image(Case& c) {
  const int32_t stride = c.width + c.random().between(0, 3);
  const uint8_t* const frame = c.read_only(c.content(stride, c.height));
  const size_t entries = c.width < 0 || c.height < 0 ? 0 : static_cast<size_t>((c.width + 1) * (c.height + 1));
  GetGrayIntegralImage(frame, c.array<uint32_t>(entries, 99), c.width, c.height, stride);
}

void call_half_image(Case& c) {
  const uint8_t* const frame = c.frame();
  const auto mode = static_cast<uint8_t>(c.random().between(0, 2));
  ZoomImg(frame, c.image_output(c.width >> 1, c.height >> 1), c.width, c.height, mode);
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
