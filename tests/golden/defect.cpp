#include "golden/functions.h"
#include "quoFPAlg.h"

namespace golden {
namespace {

size_t length(int32_t size) { return size > 0 ? static_cast<size_t>(size) : 0; }
size_t area(const Case& c) { return length(c.width) * length(c.height); }

// A frame with bad lines now and then: their jumps decide most of the detection.
Image frame_with_lines(Case& c) {
  Image image = c.content();
  const int32_t line = c.random().between(0, 80), jump = c.pick({50, 51, 120, 255});
  const bool row = c.random().chance(50);
  for (int32_t y = 0; y < image.height; y++) {
    for (int32_t x = 0; x < image.width; x++) {
      if ((row ? y : x) == line) image.at(x, y) = static_cast<uint8_t>(image.at(x, y) + jump);
    }
  }
  return image;
}

int32_t allowance(Case& c) { return c.pick({0, 3, 20, 100, 5000, -1, -5, INT_MAX, INT_MIN}); }

void call_bad_line(Case& c) {
  const uint8_t* const frame = c.read_only(frame_with_lines(c));
  const uint8_t reference = c.pick<uint8_t>({220, 255, 230, 100, 0});
  uint32_t* const column_pixels = c.maybe(c.output<uint32_t>());
  uint32_t* const row_pixels = c.maybe(c.output<uint32_t>());
  uint8_t *columns = nullptr, *rows = nullptr;
  uint8_t** const column_marks = c.maybe(&columns);
  c.add(CheckBadLine(frame, c.width, c.height, reference, column_pixels, row_pixels, column_marks, c.maybe(&rows)));
  c.take(columns, length(c.width));
  c.take(rows, length(c.height));
}

template <auto count_pixels>
void call_count(Case& c) {
  const uint8_t* const frame = c.read_only(frame_with_lines(c));
  uint32_t* const total = c.maybe(c.output<uint32_t>(5));
  uint8_t* marks = nullptr;
  c.add(count_pixels(frame, c.width, c.height, total, c.maybe(&marks)));
  c.take(marks, area(c));
}

void call_bad_pixels(Case& c) {
  const uint8_t* const frame = c.frame();
  const int32_t most = allowance(c);
  const uint8_t limit = c.pick<uint8_t>({255, 200, 90, 1, 0});
  uint32_t* const count = c.output<uint32_t>();
  uint8_t* marks = nullptr;
  c.add(CheckBadPixelsNum(frame, c.width, c.height, most, count, c.maybe(&marks), limit));
  c.take(marks, area(c));
}

void call_erode(Case& c) {
  const uint8_t* const frame = c.frame();
  const int32_t border = c.argument(0, 4), most = allowance(c);
  const uint8_t threshold = c.random().byte();
  uint32_t* const count = c.maybe(c.output<uint32_t>());
  uint8_t* marks = nullptr;
  MyErodeEx(frame, c.width, c.height, border, threshold, most, count, c.maybe(&marks));
  c.take(marks, area(c));
}

template <auto check>
void call_check(Case& c) {
  uint8_t* const frame = c.in_place(frame_with_lines(c));
  const int32_t most = allowance(c);
  c.add(check(frame, c.width, c.height, most, c.maybe(c.output<uint8_t>())));
}

}  // namespace

const std::vector<Function> kDefectFunctions = {
    {"CheckBadLine", call_bad_line},
    {"FP_GetBadLinePixelsNum", call_count<FP_GetBadLinePixelsNum>},
    {"CheckBadPixelsNum", call_bad_pixels},
    {"MyErodeEx", call_erode},
    {"FP_GetBadPixelsNum", call_count<FP_GetBadPixelsNum>},
    {"FP_CheckBadPixelsNum_MCU", call_check<FP_CheckBadPixelsNum_MCU>},
    {"FP_CheckBadPixelsNum", call_check<FP_CheckBadPixelsNum>},
};

}  // namespace golden
