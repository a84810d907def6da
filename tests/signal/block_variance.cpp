#include "reference/signal.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

struct Grid {
  uint32_t result;
  std::vector<double> variances;
  uint32_t across = 77;
  uint32_t down = 77;
};

Grid measure(const uint8_t* image, int32_t width, int32_t height, uint8_t margin, int32_t size) {
  Grid grid;
  double* variances = nullptr;
  grid.result = ImgBlockVariance(image, width, height, margin, size, &variances, &grid.across, &grid.down);
  if (grid.result == QUO_OK) grid.variances.assign(variances, variances + grid.across * grid.down);
  EXPECT_EQ(variances != nullptr, grid.result == QUO_OK);
  tev_quo_free(variances);
  return grid;
}

}  // namespace

TEST(ImgBlockVariance, MovesTheLastBlocksBack) {
  // Rows 60 to 75 are a ramp, all else is flat: only the blocks that end at the margin see all of it.
  const Image image(120, 80, [](int32_t, int32_t y) { return y >= 60 && y < 76 ? y : 0; });
  const Grid grid = measure(image.data(), 120, 80, 4, 16);
  ASSERT_EQ(grid.result, QUO_OK);
  EXPECT_EQ(grid.across, 7U);
  EXPECT_EQ(grid.down, 5U);
  EXPECT_EQ(grid.variances[4 * 7], (16 * 16 - 1) / 12.0);  // of sixteen consecutive numbers
  EXPECT_EQ(grid.variances[2 * 7], 0.0);
}

TEST(ImgBlockVariance, EqualsItsDefinitionForEverySizeThatHoldsABlock) {
  Random random(3);
  auto check = [&](int32_t width, int32_t height, int32_t margin, int32_t size) {
    const Image image = generate(random, width, height, kAllFills[random.next() % 6]);
    ReadOnly guarded(image, random.chance(50) ? Guard::kAfter : Guard::kBefore);
    const auto expected = reference::block_variances(image, margin, size);
    const Grid grid = measure(guarded.data(), width, height, static_cast<uint8_t>(margin), size);
    ASSERT_EQ(grid.result, QUO_OK) << width << "x" << height << " margin " << margin << " size " << size;
    ASSERT_EQ(grid.across, expected.across);
    ASSERT_EQ(grid.down, expected.down);
    ASSERT_EQ(grid.variances, expected.values) << width << "x" << height << " margin " << margin << " size " << size;
  };
  for (int32_t width = 16; width <= 60; width++) check(width, random.between(16, 60), 4, 16);  // 16 to 19: at the edge
  for (int i = 0; i < 300; i++) {
    const int32_t size = random.between(1, 33), margin = random.between(0, 20);
    const int32_t least = std::max(size, 2 * margin + 1);
    check(least + random.between(0, 40), least + random.between(0, 40), margin, size);
  }
}

TEST(ImgBlockVariance, RefusesWhatLeavesNoBlockBeforeItAllocates) {
  const Image image(20, 20);
  reset_hooks();
  const struct {
    int32_t width, height, size;
    uint8_t margin;
    uint32_t result;
  } cases[] = {{15, 20, 16, 0, QUO_BAD_GRID},
               {20, 15, 16, 0, QUO_BAD_GRID},
               {20, 20, 0, 0, QUO_BAD_GRID},
               {20, 20, 4, 10, QUO_BAD_GRID},
               {20, 8, 4, 4, QUO_BAD_GRID},
               {20, 20, INT32_MAX, 0, QUO_BAD_GRID},
               {INT32_MAX, INT32_MAX, 65536, 0, QUO_GRID_NO_MEMORY}};  // 2^32 bytes
  for (const auto& c : cases) {
    const Grid grid = measure(image.data(), c.width, c.height, c.margin, c.size);
    EXPECT_EQ(grid.result, c.result) << c.width << "x" << c.height << " margin " << int{c.margin};
    EXPECT_EQ(grid.across, 77U);
  }
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
