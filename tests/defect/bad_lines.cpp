#include "defect/sensor_frame.h"
#include "reference/defect.h"

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

struct PixelsOnLines {
  uint32_t columns = 99, rows = 99;
  bool operator==(const PixelsOnLines&) const = default;
};

PixelsOnLines count_lines(const Image& image, uint8_t reference) {
  PixelsOnLines pixels;
  CheckBadLine(image.data(), image.width, image.height, reference, &pixels.columns, &pixels.rows, nullptr, nullptr);
  return pixels;
}

}  // namespace

TEST(CheckBadLine, EqualsItsDefinition) {
  const auto check = [](const Image& frame, Random& random, Guard guard) {
    const Image image = banded(random, frame.width, frame.height);
    const uint8_t reference = random.byte();
    PixelsOnLines pixels;
    uint8_t *column_marks = nullptr, *row_marks = nullptr;
    ASSERT_EQ(CheckBadLine(ReadOnly(image, guard).data(), image.width, image.height, reference, &pixels.columns,
                           &pixels.rows, &column_marks, &row_marks),
              QUO_OK);
    const auto columns = reference::bad_lines(image, reference, true);
    const auto rows = reference::bad_lines(image, reference, false);
    ASSERT_EQ(take(column_marks, columns.marks.size()), columns.marks) << image.width << "x" << image.height;
    ASSERT_EQ(take(row_marks, rows.marks.size()), rows.marks) << image.width << "x" << image.height;
    ASSERT_EQ(pixels, (PixelsOnLines{columns.pixels, rows.pixels}));
  };
  for (uint64_t seed = 0; seed < 12; seed++) {
    for_each_frame(seed, 7, {{160, 160}, {258, 33}, {259, 300}, {40, 520}, {513, 70}, {2050, 9}, {2081, 12}}, check);
  }
}

// A row must differ by more than 50, a column by 50; a step that never returns marks everything up to the span's end.
TEST(CheckBadLine, TellsRowsFromColumnsAtTheJumpLimit) {
  for (const int step : {49, 50, 51}) {
    const Image rows(12, 12, [&](int32_t, int32_t y) { return y == 6 ? 100 + step : 100; });
    const Image columns(12, 12, [&](int32_t x, int32_t) { return x >= 6 ? 100 + step : 100; });
    EXPECT_EQ(count_lines(rows, 220).rows, step > 50 ? 12U : 0U) << step;
    EXPECT_EQ(count_lines(columns, 220).columns, step >= 50 ? 36U : 0U) << step;  // 6 to 8; the span ends at 9
  }
}

// Dark means below 0.9 of the reference, truncated and capped at 230. A line at the limit lies between a bright line
// and lines that are not dark, first before it, then after: the bright line is marked when the span reaches the limit
// line.
TEST(CheckBadLine, InspectsBetweenDarkLines) {
  const struct {
    uint8_t reference;
    int limit_sum;  // of the ten pixels of the line
    bool marked;
  } cases[] = {{220, 1979, true}, {220, 1980, false}, {250, 2069, true}, {250, 2070, false}};
  for (const auto& c : cases) {
    for (const bool mirrored : {false, true}) {
      const auto gray = [&](int32_t position, int32_t number) {
        const int32_t line = mirrored ? 10 - number : number;
        if (line == 4) return c.limit_sum / 10 + (position < c.limit_sum % 10);
        return line < 4 || line == 10 ? 230 : line == 5 ? 255 : 140;
      };
      const Image rows(10, 10, gray), columns(10, 10, [&](int32_t x, int32_t y) { return gray(y, x); });
      EXPECT_EQ(count_lines(rows, c.reference).rows, c.marked ? 10U : 0U) << c.limit_sum << " " << mirrored;
      EXPECT_EQ(count_lines(columns, c.reference).columns, c.marked ? 10U : 0U) << c.limit_sum << " " << mirrored;
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

// Sums of 2^30 lines and more do not fit a 32-bit byte count: the hook is not asked.
TEST(CheckBadLine, RefusesSizesBeyondMemory) {
  reset_hooks();
  EXPECT_EQ(CheckBadLine(nullptr, 0, 1 << 30, 220, nullptr, nullptr, nullptr, nullptr), QUO_NO_MEMORY);
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
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
