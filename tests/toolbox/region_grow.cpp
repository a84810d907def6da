#include "toolbox/cases.h"

using namespace quo_test;

namespace {

struct Grown {
  uint32_t result = 99;
  reference::Box box{99, 99, 99, 99, 99};
};

Grown grow(const uint8_t* image, int32_t width, int32_t height, uint8_t* labels, int32_t x, int32_t y, uint32_t label) {
  Grown grown;
  reference::Box& box = grown.box;
  grown.result =
      RegionGrowByEightNeighbor(x, y, label, image, static_cast<uint32_t>(width), static_cast<uint32_t>(height), labels,
                                &box.count, &box.min_x, &box.min_y, &box.max_x, &box.max_y);
  return grown;
}

void expect_grown(const Image& image, const Image& walls, int32_t x, int32_t y, Guard guard) {
  Guarded source(image.pixels, guard), labels(walls.pixels, guard);
  source.make_read_only();
  Image expected = walls;
  const reference::Box box = reference::grow(image, expected, x, y, 3);
  const Grown grown = grow(source.data(), image.width, image.height, labels.data(), x, y, 0x703);
  ASSERT_EQ(grown.result, QUO_OK);
  ASSERT_EQ(grown.box, box) << size_text(image) << ", seed " << x << ", " << y;
  ASSERT_TRUE(labels.equals(expected.pixels)) << size_text(image) << ", seed " << x << ", " << y;
}

}  // namespace

// Images of few values around the percolation threshold, so that regions wind; some pixels carry a label, the grown one
// included.
TEST(RegionGrowByEightNeighbor, EqualsItsLiteralFormForSmallSizesAndSensorSizes) {
  for_each_frame(98, 22, [](const Image& frame, Random& random, Guard guard) {
    const auto share = static_cast<uint32_t>(random.between(30, 95)),
               labelled = static_cast<uint32_t>(random.between(0, 8));
    const Image image(frame.width, frame.height,
                      [&](int32_t, int32_t) { return random.chance(share) ? 9 : random.between(7, 8); });
    const Image walls(frame.width, frame.height,
                      [&](int32_t, int32_t) { return random.chance(labelled) ? random.between(2, 4) : 0; });
    const int32_t x = random.between(0, frame.width - 1);
    expect_grown(image, walls, x, random.between(0, frame.height - 1), guard);
  });
}

// A column of bytes numbers 256 rows; one more takes wider numbers.
TEST(RegionGrowByEightNeighbor, NumbersRowsAndColumnsBeyondAByte) {
  for (const auto& [width, height] : {std::pair{256, 256}, {257, 9}, {9, 257}, {700, 12}}) {
    const Image image(width, height,
                      [](int32_t x, int32_t y) { return (x % 7 == 3 && y % 3 > 0) || y % 11 == 5 ? 1 : 2; });
    reset_hooks();
    expect_grown(image, Image(width, height), width / 2, height / 2, Guard::kAfter);
    const auto bytes = static_cast<uint32_t>(width * height) * (width <= 256 && height <= 256 ? 1U : 4U);
    EXPECT_EQ(hooks().sizes, (std::vector<uint32_t>{bytes, bytes}));
  }
}

// The most runs that an image can hold, every second pixel of every row, fill the queue.
TEST(RegionGrowByEightNeighbor, HoldsTheLargestNumberOfRuns) {
  for (int32_t width = 5; width < 24; width++) {
    const Image image(width, 21, [](int32_t x, int32_t y) { return y % 2 == 0 ? x % 2 : 1 - x % 2; });
    for (const int32_t x : {2, 3}) expect_grown(image, Image(width, 21), std::min(x, width - 1), 10, Guard::kAfter);
  }
}

TEST(RegionGrowByEightNeighbor, WritesOnlyTheOutputsThatAreGiven) {
  const Image image(6, 6, 5);
  Image labels(6, 6);
  uint32_t max_y = 99;
  EXPECT_EQ(
      RegionGrowByEightNeighbor(2, 3, 1, image.data(), 6, 6, labels.data(), nullptr, nullptr, nullptr, nullptr, &max_y),
      QUO_OK);
  EXPECT_EQ(max_y, 3U);
}

TEST(RegionGrowByEightNeighbor, WritesNothingWhenItCannotGrow) {
  const Image image(6, 5, 9);
  const auto expect_refused = [&](int32_t x, int32_t y, uint32_t label) {
    Image labels(6, 5);
    const Grown grown = grow(image.data(), 6, 5, labels.data(), x, y, label);
    EXPECT_EQ(grown.result, QUO_NO_MEMORY);
    EXPECT_EQ(grown.box, Grown().box);
    EXPECT_EQ(labels, Image(6, 5));
    EXPECT_EQ(hooks().live_blocks, 0U);
  };
  for (const int32_t outside : {-1, 6, INT32_MIN, INT32_MAX}) {
    expect_refused(outside, 2, 1);
    expect_refused(2, outside, 1);
  }
  expect_refused(2, 2, 256);
  for (const uint64_t index : {0U, 1U}) {
    reset_hooks();
    fail_allocation(index);
    expect_refused(2, 2, 1);
  }
  uint32_t count = 7;
  EXPECT_EQ(
      RegionGrowByEightNeighbor(0, 0, 1, nullptr, 70000, 70000, nullptr, &count, nullptr, nullptr, nullptr, nullptr),
      1U);
  EXPECT_EQ(count, 7U);
}
