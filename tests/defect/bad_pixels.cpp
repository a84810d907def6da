#include "support/testing.h"

using namespace quo_test;

namespace {

struct Level {
  int value;
  int pixels;
};

// A white frame of 30 x 30 with these levels, one after the other, in its inner 26 x 26 pixels. A level of two pixels
// or more is a cluster.
Image frame_of(std::initializer_list<Level> levels) {
  Image image(30, 30, 255);
  int32_t next = 0;
  for (const Level& level : levels) {
    for (int i = 0; i < level.pixels; i++, next++)
      image.at(2 + next % 26, 2 + next / 26) = static_cast<uint8_t>(level.value);
  }
  return image;
}

struct Counted {
  uint32_t count = 77;
  bool marked = false;  // a mark image was handed out
};

Counted count_bad(const Image& image, int32_t allowance, uint8_t level_limit) {
  Counted counted;
  uint8_t* marks = nullptr;
  EXPECT_EQ(CheckBadPixelsNum(image.data(), image.width, image.height, allowance, &counted.count, &marks, level_limit),
            QUO_OK);
  counted.marked = marks != nullptr;
  tev_quo_free(marks);
  return counted;
}

constexpr int32_t kAll = 30 * 30;  // counts every bad pixel of such a frame

}  // namespace

// Pairs of known levels among dark pixels of mean 100 show which of them lie below the threshold.
TEST(CheckBadPixelsNum, DerivesTheThresholdFromTheDarkLevels) {
  // Variance 90: the root is 9.4868, the threshold 78.
  const Image variance_90 =
      frame_of({{70, 2}, {77, 2}, {78, 2}, {90, 100}, {100, 95}, {110, 100}, {122, 2}, {123, 2}, {130, 2}});
  EXPECT_EQ(count_bad(variance_90, kAll, 255).count, 4U);
  // Variance 100: with 10.000001 for the root the threshold is 76, with an exact root it would be 77.
  const Image variance_100 = frame_of({{70, 2}, {76, 2}, {90, 100}, {100, 51}, {110, 100}, {124, 2}, {130, 2}});
  EXPECT_EQ(count_bad(variance_100, kAll, 255).count, 2U);
  // The lowest level is always below it.
  EXPECT_EQ(count_bad(frame_of({{100, 2}, {101, 3}, {102, 3}}), kAll, 255).count, 2U);
  // Levels at the limit and above do not count as dark: they would raise the threshold to 101.
  EXPECT_EQ(count_bad(frame_of({{70, 2}, {100, 20}, {200, 200}}), kAll, 150).count, 2U);
}

TEST(CheckBadPixelsNum, CountsOnlyFramesWorthIt) {
  const Image clusters = frame_of({{10, 6}, {200, 600}});
  const struct {
    const char* what;
    Image image;
    int32_t allowance;
    uint8_t level_limit;
    Counted expected;
  } cases[] = {
      {"no level below 0", clusters, kAll, 0, {0, false}},
      {"no pixel below the limit", clusters, kAll, 10, {0, false}},
      {"0.3 of the dark pixels at the lowest level", frame_of({{10, 3}, {50, 7}}), kAll, 255, {3, true}},
      {"more than that", frame_of({{10, 4}, {50, 7}}), kAll, 255, {0, false}},
      {"as many dark pixels as allowed", clusters, 6, 255, {0, false}},
      {"more than allowed", clusters, 5, 255, {6, true}},
      {"none allowed", clusters, 0, 255, {1, true}},
      {"fewer than none allowed", clusters, -1, 255, {1, true}},
      {"one pixel more than allowed in the frame", clusters, kAll - 1, 255, {0, false}},
      {"all pixels of the frame allowed", clusters, kAll, 255, {6, true}},
  };
  for (const auto& c : cases) {
    const Counted counted = count_bad(c.image, c.allowance, c.level_limit);
    EXPECT_EQ(counted.count, c.expected.count) << c.what;
    EXPECT_EQ(counted.marked, c.expected.marked) << c.what;
  }
}

TEST(CheckBadPixelsNum, LeavesOutTwoLinesAtEachEdge) {
  Image image = frame_of({{10, 2}, {200, 100}});
  EXPECT_EQ(count_bad(image, kAll, 255).count, 2U);
  for (const auto& [x, y] : {std::pair{1, 20}, {28, 20}, {20, 1}, {20, 28}}) image.at(x, y) = image.at(x, y + 1) = 10;
  EXPECT_EQ(count_bad(image, kAll, 255).count, 3U);  // one of the pixels lies two lines from the edge
}

TEST(CheckBadPixelsNum, InspectsNothingOfAnOversizedFrame) {
  const uint8_t pixel = 0;
  uint32_t count = 77;
  EXPECT_EQ(CheckBadPixelsNum(&pixel, 1 << 17, (1 << 15) + 1, -1, &count, nullptr, 255), QUO_OK);
  EXPECT_EQ(CheckBadPixelsNum(nullptr, 9, 9, -1, &count, nullptr, 255), QUO_OK);
  EXPECT_EQ(count, 0U);
}
