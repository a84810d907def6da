#include "reference/quality.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

constexpr quo_block_record kBackground = {-1, 255, 0, 0};

reference::DenseBlocks measured(const Image& image, int32_t nbx, int32_t nby, int32_t radius,
                                Guard guard = Guard::kAfter) {
  ReadOnly pixels(image, guard);
  const auto count = static_cast<size_t>(nbx * nby);
  Guarded records(count * sizeof(quo_block_record), guard, 0xEE);
  auto* const blocks = records.as<quo_block_record>();
  uint8_t area = 238;
  EXPECT_EQ(BlockOrientation(pixels.data(), image.width, image.height, blocks, nbx, nby, radius, &area), QUO_OK);
  return {reference::Records(blocks, blocks + count), area};
}

void expect_definition(const Image& image, int32_t nbx, int32_t nby, int32_t radius, Guard guard = Guard::kAfter) {
  reset_hooks();
  const reference::DenseBlocks actual = measured(image, nbx, nby, radius, guard),
                               expected = reference::dense_blocks(image, nbx, nby, radius);
  SCOPED_TRACE(testing::Message() << image.width << "x" << image.height << ", " << nbx << "x" << nby
                                  << " blocks, radius " << radius);
  ASSERT_EQ(actual.blocks, expected.blocks);
  ASSERT_EQ(actual.area, expected.area);
  EXPECT_EQ(hooks().arctangents, reference::half_of(image).pixels.size());
}

}  // namespace

TEST(BlockOrientation, EqualsItsDefinition) {
  Random random(35);
  for (int round = 0; round < 1500; round++) {
    const int32_t width = random.between(2, 40), height = random.between(2, 40);
    const Image image = generate(random, width, height, kAllFills[round % 6]);
    const int32_t nbx = random.between(1, width / 2), nby = random.between(1, height / 2);
    expect_definition(image, nbx, nby, random.between(0, 9), round & 1 ? Guard::kBefore : Guard::kAfter);
  }
  expect_definition(generate(random, 160, 160, Fill::kRidges), 20, 20, 3);
  expect_definition(generate(random, 131, 77, Fill::kRidges), 3, 5, 6);
  expect_definition(generate(random, 2070, 12, Fill::kRidges), 9, 2, 1);  // rows longer than the row buffers
}

// Grays around 179 without gradients: blocks with every number of background pixels.
TEST(BlockOrientation, EqualsItsDefinitionAroundTheShareOfFingerPixels) {
  Random random(36);
  for (int round = 0; round < 400; round++) {
    const uint32_t bright = static_cast<uint32_t>(random.between(75, 100));
    const Image image(40, 40, [&](int32_t x, int32_t y) {
      return x % 10 < 2 && y % 10 < 4 ? 179 : random.chance(bright) ? 179 : 181;
    });
    const int32_t columns[] = {1, 2, 4, 5, 10, 20};
    expect_definition(image, columns[random.next() % 6], columns[random.next() % 6], 0);
  }
}

// Energy on both sides of the threshold, for radii up to where it no longer fits in 32 bits, and sums that wrap.
TEST(BlockOrientation, EqualsItsDefinitionForFaintGradientsAndWrappingSums) {
  for (int32_t step = 0; step < 24; step++) {
    const Image ramp(40, 24, [&](int32_t x, int32_t) { return 60 + x * step / 4; });
    for (const int32_t radius : {0, 1, 3, 40}) expect_definition(ramp, 5, 3, radius);
  }
  const Image steep(200, 160, [](int32_t x, int32_t y) { return (x + (y > 90 ? y : 0)) / 4 % 2 * 255; });
  expect_definition(steep, 8, 8, 40);
  expect_definition(steep, 8, 8, 10361);  // 20 * 20723^2 is beyond 32 bits
}

TEST(BlockOrientation, TakesAnyRadiusAndBlockCount) {
  const Image image(24, 16, [](int32_t x, int32_t) { return x / 4 % 2 == 0 ? 60 : 120; });
  for (const int32_t radius : {1 << 20, INT32_MAX}) {  // no window has so much energy
    EXPECT_THAT(measured(image, 3, 2, radius).blocks, testing::Each(testing::Field(&quo_block_record::direction, 0)));
  }
  EXPECT_THAT(measured(image, 13, 2, 3).blocks, testing::Each(kBackground));
  EXPECT_THAT(measured(image, 3, 9, 3).blocks, testing::Each(kBackground));
  quo_block_record block = {7, 7, 7, 7};
  uint8_t area = 238;
  for (const int32_t width : {0, 1}) {  // no columns to walk, so no rows either
    EXPECT_EQ(BlockOrientation(nullptr, width, INT32_MAX, &block, 1, 1, 3, &area), QUO_OK);
    EXPECT_EQ(block, kBackground);
    EXPECT_EQ(area, 0);
  }
  reset_hooks();
  EXPECT_EQ(BlockOrientation(nullptr, 1 << 16, 1 << 16, &block, 1, 1, 3, nullptr), QUO_NO_MEMORY);
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
