#include "reference/toolbox.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

void expect_grown(const Image& image, const Image& walls, int32_t x, int32_t y, Guard guard = Guard::kAfter) {
  ReadOnly source(image, guard);
  Image expected = walls;
  const reference::Box expected_box = reference::grow(image, expected, x, y, 3);
  reference::Box box{99, 99, 99, 99, 99};
  const auto grow = [&](uint8_t* labels) {
    ASSERT_EQ(RegionGrowByEightNeighbor(x, y, 0x703, source.data(), static_cast<uint32_t>(image.width),
                                        static_cast<uint32_t>(image.height), labels, &box.count, &box.min_x, &box.min_y,
                                        &box.max_x, &box.max_y),
              QUO_OK);
  };
  ASSERT_EQ(changed(walls, guard, grow), expected) << "seed " << x << ", " << y;
  ASSERT_EQ(box, expected_box) << "seed " << x << ", " << y;
}

}  // namespace

// Images of few values around the percolation threshold, so that regions wind; some pixels carry a label, the grown one
// included.
TEST(RegionGrowByEightNeighbor, EqualsItsLiteralForm) {
  for_each_frame(98, 22, {}, [](const Image& frame, Random& random, Guard guard) {
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
    expect_grown(image, Image(width, height), width / 2, height / 2);
    const auto bytes = static_cast<uint32_t>(width * height) * (width <= 256 && height <= 256 ? 1U : 4U);
    EXPECT_EQ(hooks().sizes, (std::vector<uint32_t>{bytes, bytes}));
  }
}

// The most runs that an image can hold: every second pixel of every row.
TEST(RegionGrowByEightNeighbor, HoldsTheLargestNumberOfRuns) {
  for (int32_t width = 5; width < 24; width++) {
    const Image image(width, 21, [](int32_t x, int32_t y) { return y % 2 == 0 ? x % 2 : 1 - x % 2; });
    for (const int32_t x : {2, 3}) expect_grown(image, Image(width, 21), std::min(x, width - 1), 10);
  }
}

TEST(RegionGrowByEightNeighbor, RefusesSizesBeyondMemory) {
  uint32_t count = 7;
  uint32_t* const none = nullptr;
  EXPECT_EQ(RegionGrowByEightNeighbor(0, 0, 1, nullptr, 70000, 70000, nullptr, &count, none, none, none, none), 1U);
  EXPECT_EQ(count, 7U);
}
