// Sensor defect inspection against its literal form.
// Input: function, failing allocation, arguments, then a frame.
#include <optional>

#include "reference/defect.h"
#include "reference/preproc.h"
#include "support/drawn.h"

using namespace quo_fuzz;
using reference::FrameLines;

namespace {

constexpr int kTouched = 77;

void find_lines(Input& input, uint8_t failing) {
  const uint8_t level = input.byte();
  Image image;
  const Size size = frame(input, image);
  const size_t w = static_cast<size_t>(std::max(size.width, 0)), h = static_cast<size_t>(std::max(size.height, 0));
  const auto [result, column_pixels, row_pixels, columns, rows] = same_twice(failing, [&] {
    uint32_t on_columns = kTouched, on_rows = kTouched;
    uint8_t *column_marks = nullptr, *row_marks = nullptr;
    const uint32_t code =
        CheckBadLine(address(image), size.width, size.height, level, &on_columns, &on_rows, &column_marks, &row_marks);
    return std::tuple(code, on_columns, on_rows, taken(column_marks, w), taken(row_marks, h));
  });
  require(result == (lacked_memory(std::max(size.width, size.height)) ? QUO_NO_MEMORY : QUO_OK),
          "only memory can fail");
  if (result != QUO_OK) {
    require(column_pixels == kTouched && row_pixels == kTouched && columns.empty() && rows.empty(),
            "nothing is written");
    return;
  }
  FrameLines expected = reference::bad_lines(image, level);
  expected.columns.marks.resize(w);  // of an empty frame too
  expected.rows.marks.resize(h);
  require(columns == expected.columns.marks && rows == expected.rows.marks, "the marks are the reference's");
  require(column_pixels == expected.columns.pixels && row_pixels == expected.rows.pixels, "so are the numbers");
}

void mark_lines(Input& input, uint8_t failing) {
  Image image;
  const Size size = frame(input, image);
  const auto [result, pixels, handed_out, marks] = same_twice(failing, [&] {
    uint32_t count = kTouched;
    uint8_t* mark_image = nullptr;
    const uint32_t code = FP_GetBadLinePixelsNum(address(image), size.width, size.height, &count, &mark_image);
    const bool given = mark_image != nullptr;
    return std::tuple(code, count, given, taken(mark_image, image.pixels.size()));
  });
  require(result == (lacked_memory(std::max(size.width, size.height)) ? QUO_NO_MEMORY : QUO_OK),
          "only memory can fail");
  Image expected(image.width, image.height);
  uint32_t count = kTouched;
  if (result == QUO_OK) {
    const FrameLines lines = reference::bad_lines(image, 220);
    count += lines.pixels();
    reference::paint(lines, expected);
  }
  require(pixels == count, "the lines' pixels are added");
  require(handed_out || result != QUO_OK, "success comes with a mark image");
  if (handed_out) require(marks == expected.pixels, "which is the reference's");
}

// The count of MyErodeEx(), and what becomes of the mark image.
void erode(Input& input, uint8_t failing) {
  const int32_t border = number(input), allowance = number(input);
  const uint8_t threshold = input.byte();
  Image image, expected;
  const Size size = frame(input, image);
  const uint32_t expected_count = reference::erode(image, std::clamp(border, 0, 1000), threshold, allowance, expected);
  const auto [count, marks] = same_twice(failing, [&] {
    uint32_t counted = kTouched;
    uint8_t* mark_image = nullptr;
    MyErodeEx(address(image), size.width, size.height, border, threshold, allowance, &counted, &mark_image);
    require((mark_image == nullptr) == allocation_failed(), "without memory there are no marks");
    return std::tuple(counted, taken(mark_image, image.pixels.size()));
  });
  require(count == expected_count, "the count is the reference's");
  require(allocation_failed() || marks == expected.pixels, "the marks are the reference's");
}

void count_pixels(Input& input, uint8_t failing) {
  const int32_t allowance = number(input);
  const uint8_t limit = input.byte();
  Image image;
  const Size size = frame(input, image);
  const reference::BadPixels expected = reference::bad_pixels(image, allowance, limit);
  const auto [count, marks] = same_twice(failing, [&] {
    uint32_t counted = kTouched;
    uint8_t* mark_image = nullptr;
    const uint32_t code =
        CheckBadPixelsNum(address(image), size.width, size.height, allowance, &counted, &mark_image, limit);
    require(code == QUO_OK, "it always succeeds");
    require((mark_image != nullptr) == (expected.marks && !allocation_failed()), "marks come with a count");
    return std::tuple(counted, taken(mark_image, image.pixels.size()));
  });
  require(count == expected.count, "the count is the reference's");
  if (!marks.empty()) require(marks == expected.marks->pixels, "the marks are the reference's");
}

// Without memory only the result is looked at: what remains depends on which allocation failed.
void measure(Input& input, uint8_t failing) {
  Image image;
  const Size size = frame(input, image);
  const auto [result, count, marks] = same_twice(failing, [&] {
    uint32_t counted = kTouched;
    uint8_t* mark_image = nullptr;
    const uint32_t code = FP_GetBadPixelsNum(address(image), size.width, size.height, &counted, &mark_image);
    return std::tuple(code, counted, taken(mark_image, image.pixels.size()));
  });
  require(result == QUO_OK || (result == QUO_NO_MEMORY && lacked_memory(std::max(size.width, size.height))),
          "only memory can fail");
  if (lacked_memory(std::max(size.width, size.height))) return;
  const reference::Defects expected = reference::defects(image);
  require(count == expected.count, "the count is the reference's");
  require(marks == expected.marks.pixels, "the marks are the reference's");
}

Image repaired(Image image, const FrameLines& lines) {
  for (int32_t x = 1; x < image.width; x++) {
    for (int32_t y = 0; y < image.height; y++) {
      if (lines.columns.marks[static_cast<size_t>(x)] != 0) image.at(x, y) = image.at(x - 1, y);
    }
  }
  for (int32_t y = 1; y < image.height; y++) {
    for (int32_t x = 0; x < image.width; x++) {
      if (lines.rows.marks[static_cast<size_t>(y)] != 0) image.at(x, y) = image.at(x, y - 1);
    }
  }
  return image;
}

void check(Input& input, uint8_t failing) {
  const auto entry = choice(input, 2) == 0 ? FP_CheckBadPixelsNum : FP_CheckBadPixelsNum_MCU;
  const int32_t allowance = number(input);
  Image image;
  const Size size = frame(input, image);
  const auto [result, failed, out] = same_twice(failing, [&] {
    Image copy = image;
    uint8_t fail = kTouched;
    const uint32_t code = entry(address(copy), size.width, size.height, allowance, &fail);
    return std::tuple(code, int{fail}, copy);
  });
  if (result != QUO_OK) {
    require(result == QUO_NO_MEMORY && lacked_memory(std::max(size.width, size.height)), "only memory can fail");
    require(out == image && (failed == 0 || (failed == 1 && allowance < 0)), "nothing is repaired then");
    return;
  }
  const Image half = reference::half_image(image, 0);
  const uint8_t background = reference::background_value(half).value_or(255);
  const FrameLines lines = reference::bad_lines(image, background);
  const bool bad = int64_t{4} * reference::bad_pixels(half, allowance >> 2, background).count > allowance;
  const bool too_many = bad || (lines.pixels() > 0 && int64_t{lines.pixels()} > allowance);
  require(failed == (too_many ? 1 : 0), "the verdict is the reference's");
  require(out == (too_many ? image : repaired(image, lines)), "the repair is the reference's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  static constexpr void (*kTargets[])(Input&, uint8_t) = {find_lines, mark_lines, erode, count_pixels, measure, check};
  const uint8_t target = choice(input, std::size(kTargets)), failing = input.byte();
  kTargets[target](input, failing);
  return 0;
}
