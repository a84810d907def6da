#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "defect/sensor_frame.h"
#include "quoFPAlg.h"
#include "reference/defect.h"
#include "support/frames.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;

namespace {

// Content under which spans and jumps occur: dark lines with bands whose means lie about the jump limit away.
Image banded(Random& random, int32_t width, int32_t height) {
  if (random.chance(20)) return generate(random, width, height, kAllFills[random.next() % 6]);
  const int steps[] = {0, 0, 0, 0, 49, 50, 51, 60, 120};
  std::vector<int> rows, columns;
  for (int32_t y = 0; y < height; y++) rows.push_back(steps[random.next() % 9]);
  for (int32_t x = 0; x < width; x++) columns.push_back(steps[random.next() % 9]);
  const bool by_rows = random.chance(50);
  const int base = random.between(60, 205), noise = random.between(0, 1);
  return Image(width, height, [&](int32_t x, int32_t y) {
    const int step = by_rows ? rows[static_cast<size_t>(y)] : columns[static_cast<size_t>(x)];
    return std::min(255, base + step + noise * (random.byte() & 1));
  });
}

void expect_defined(const Image& image, uint8_t reference, Guard guard) {
  SCOPED_TRACE(testing::Message() << image.width << "x" << image.height << " reference " << int{reference});
  Guarded frame(image.pixels, guard);
  frame.make_read_only();
  uint32_t column_pixels = 1, row_pixels = 1;
  uint8_t *columns = nullptr, *rows = nullptr;
  reset_hooks();
  ASSERT_EQ(
      CheckBadLine(frame.data(), image.width, image.height, reference, &column_pixels, &row_pixels, &columns, &rows),
      QUO_OK);
  const auto w = static_cast<uint32_t>(image.width), h = static_cast<uint32_t>(image.height);
  EXPECT_THAT(hooks().sizes, testing::ElementsAre(4 * h, 4 * w, h, w));
  EXPECT_EQ(hooks().live_blocks, 2U);
  const auto expected_columns = quo_reference::bad_lines(image, reference, true);
  const auto expected_rows = quo_reference::bad_lines(image, reference, false);
  EXPECT_EQ(take(columns, w), expected_columns.marks);
  EXPECT_EQ(take(rows, h), expected_rows.marks);
  EXPECT_EQ(column_pixels, expected_columns.pixels);
  EXPECT_EQ(row_pixels, expected_rows.pixels);
}

}  // namespace

TEST(CheckBadLine, EqualsItsDefinition) {
  Random random(11);
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    for (int32_t width = 0; width <= 19; width++) {
      for (int32_t height = 0; height <= 19; height++)
        expect_defined(banded(random, width, height), random.byte(), guard);
    }
    for (const auto& [width, height] : {std::pair{160, 160}, {258, 33}, {259, 300}, {40, 520}, {513, 70}}) {
      for (int round = 0; round < 12; round++) expect_defined(banded(random, width, height), random.byte(), guard);
    }
  }
}

// A row must differ by more than 50, a column by 50; a step that never returns marks everything up to the span's end.
TEST(CheckBadLine, TellsRowsFromColumnsAtTheJumpLimit) {
  reset_hooks();
  for (const int step : {49, 50, 51}) {
    const Image rows(12, 12, [&](int32_t, int32_t y) { return y == 6 ? 100 + step : 100; });
    const Image columns(12, 12, [&](int32_t x, int32_t) { return x >= 6 ? 100 + step : 100; });
    uint32_t row_pixels = 99, column_pixels = 99;
    CheckBadLine(rows.data(), 12, 12, 220, nullptr, &row_pixels, nullptr, nullptr);
    CheckBadLine(columns.data(), 12, 12, 220, &column_pixels, nullptr, nullptr, nullptr);
    EXPECT_EQ(row_pixels, step > 50 ? 12U : 0U) << step;
    EXPECT_EQ(column_pixels, step >= 50 ? 36U : 0U) << step;  // 6 to 8; the span ends at 9
  }
  EXPECT_EQ(hooks().live_blocks, 0U);
}

// Dark means below 0.9 of the reference, truncated and capped at 230. A line at the limit lies between a bright line and
// lines that are not dark, first before it, then after: the bright line is marked when the span reaches the limit line.
TEST(CheckBadLine, InspectsBetweenDarkLines) {
  struct Case {
    uint8_t reference;
    int limit_sum;  // of the ten pixels of the line
    bool marked;
  };
  for (const Case& c : {Case{220, 1979, true}, Case{220, 1980, false}, Case{250, 2069, true}, Case{250, 2070, false}}) {
    for (const bool mirrored : {false, true}) {
      const auto gray = [&](int32_t position, int32_t number) {
        const int32_t line = mirrored ? 10 - number : number;
        if (line == 4) return c.limit_sum / 10 + (position < c.limit_sum % 10);
        return line < 4 || line == 10 ? 230 : line == 5 ? 255 : 140;
      };
      const Image rows(10, 10, gray), columns(10, 10, [&](int32_t x, int32_t y) { return gray(y, x); });
      uint32_t row_pixels = 99, column_pixels = 99;
      CheckBadLine(rows.data(), 10, 10, c.reference, nullptr, &row_pixels, nullptr, nullptr);
      CheckBadLine(columns.data(), 10, 10, c.reference, &column_pixels, nullptr, nullptr, nullptr);
      EXPECT_EQ(row_pixels, c.marked ? 10U : 0U) << int{c.reference} << " " << c.limit_sum << " " << mirrored;
      EXPECT_EQ(column_pixels, row_pixels) << int{c.reference} << " " << c.limit_sum << " " << mirrored;
    }
  }
}

// The span from row 256 to row 356 has the indices 0 and 100: rows 1 to 99 are inspected.
TEST(CheckBadLine, TakesSpanIndicesModulo256) {
  Image image(8, 600, 255);
  for (const int32_t y : {256, 300, 356}) fill_row(image, y, 100);
  for (const int32_t y : {50, 120}) fill_row(image, y, 200);
  uint32_t row_pixels = 99;
  uint8_t* rows = nullptr;
  CheckBadLine(image.data(), 8, 600, 220, nullptr, &row_pixels, nullptr, &rows);
  EXPECT_EQ(row_pixels, 8U);
  EXPECT_EQ(rows[50], 1);
  tev_quo_free(rows);
}

TEST(CheckBadLine, WritesNothingWhenMemoryFails) {
  Image image(12, 12, 100);
  fill_row(image, 6, 200);
  struct Outputs {
    uint32_t result, column_pixels = 7, row_pixels = 7;
    std::vector<uint8_t> columns, rows;
  };
  auto call = [&] {
    Outputs out{};
    uint8_t *columns = nullptr, *rows = nullptr;
    out.result = CheckBadLine(image.data(), 12, 12, 220, &out.column_pixels, &out.row_pixels, &columns, &rows);
    out.columns = take(columns, 12);
    out.rows = take(rows, 12);
    return out;
  };
  const uint64_t allocations = for_each_failing_allocation(call, [](uint64_t index, const Outputs& out) {
    EXPECT_EQ(out.result, QUO_NO_MEMORY) << index;
    EXPECT_EQ(out.column_pixels + out.row_pixels, 14U) << index;
    EXPECT_TRUE(out.columns.empty() && out.rows.empty()) << index;
    EXPECT_EQ(hooks().live_blocks + hooks().bad_frees, 0U) << index;
  });
  EXPECT_EQ(allocations, 4U);
}

TEST(CheckBadLine, NeitherSizeNeedsToBePositive) {
  reset_hooks();
  uint32_t column_pixels = 9, row_pixels = 9;
  for (const int32_t size : {0, -1, INT32_MIN}) {
    EXPECT_EQ(CheckBadLine(nullptr, size, 9, 220, &column_pixels, &row_pixels, nullptr, nullptr), QUO_OK);
    EXPECT_EQ(CheckBadLine(nullptr, 9, size, 220, &column_pixels, &row_pixels, nullptr, nullptr), QUO_OK);
    EXPECT_EQ(column_pixels + row_pixels, 0U);
  }
  // Sums of 2^30 lines and more do not fit a 32-bit byte count: the hook is not asked.
  EXPECT_EQ(CheckBadLine(nullptr, 0, 1 << 30, 220, nullptr, nullptr, nullptr, nullptr), QUO_NO_MEMORY);
  EXPECT_EQ(hooks().live_blocks, 0U);
}

TEST(FP_GetBadLinePixelsNum, AddsToTheTotalAndPaintsTheLines) {
  Image frame = sound_frame(), expected(160, 160);
  fill_column(frame, 71, 255);
  fill_row(frame, 91, 255);
  fill_column(expected, 71, 255);
  fill_row(expected, 91, 255);
  uint32_t total = 1000;
  uint8_t* marks = nullptr;
  EXPECT_EQ(FP_GetBadLinePixelsNum(frame.data(), 160, 160, &total, &marks), QUO_OK);
  EXPECT_EQ(total, 1320U);
  EXPECT_EQ(take(marks, 160 * 160), expected.pixels);
  EXPECT_EQ(FP_GetBadLinePixelsNum(frame.data(), 160, 160, &total, nullptr), QUO_OK);
  EXPECT_EQ(total, 1640U);
  EXPECT_EQ(FP_GetBadLinePixelsNum(frame.data(), 160, 160, nullptr, &marks), QUO_NO_OUTPUT);
}

TEST(FP_GetBadLinePixelsNum, HasAReferenceOf220) {
  for (const uint8_t gray : {197, 198}) {
    Image frame(12, 12, gray);
    fill_row(frame, 6, 255);
    uint32_t total = 0;
    FP_GetBadLinePixelsNum(frame.data(), 12, 12, &total, nullptr);
    EXPECT_EQ(total, gray < 198 ? 12U : 0U);
  }
}

TEST(FP_GetBadLinePixelsNum, LeavesTheTotalWhenMemoryFails) {
  Image frame = sound_frame();
  fill_row(frame, 91, 255);
  struct Outputs {
    uint32_t result, total = 5;
    std::vector<uint8_t> marks;
  };
  auto call = [&] {
    Outputs out{};
    uint8_t* marks = frame.data();  // overwritten on every return
    out.result = FP_GetBadLinePixelsNum(frame.data(), 160, 160, &out.total, &marks);
    out.marks = take(marks, 160 * 160);
    return out;
  };
  const uint64_t allocations = for_each_failing_allocation(call, [](uint64_t index, const Outputs& out) {
    EXPECT_EQ(out.result, QUO_NO_MEMORY) << index;
    EXPECT_EQ(out.total, 5U) << index;
    EXPECT_THAT(out.marks, testing::Each(0)) << index;  // or null
    EXPECT_EQ(hooks().live_blocks + hooks().bad_frees, 0U) << index;
  });
  EXPECT_EQ(allocations, 5U);
}
