#include "reference/quality.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

reference::Records measured(const Image& image) {
  quo_block_record* blocks = nullptr;
  int32_t count = -1;
  EXPECT_EQ(BlockOrientation_MCU(ReadOnly(image).data(), image.width, image.height, &blocks, &count), QUO_OK);
  return take(blocks, static_cast<size_t>(count));
}

}  // namespace

// The size of a block changes at 160 and 192 pixels; the widest frames have more blocks than are measured at once.
TEST(BlockOrientation_MCU, EqualsItsDefinition) {
  Random random(31);
  for (const int32_t shorter : {8, 12, 13, 35, 159, 160, 169, 191, 192, 200, 207}) {
    for (const Size size : {Size{shorter, shorter + 20}, {shorter + 1, shorter}, {10 * shorter, shorter}}) {
      for (const Fill fill : kAllFills) {
        const Image image = generate(random, size.width, size.height, fill);
        ASSERT_EQ(measured(image), reference::sparse_blocks(image)) << size.width << "x" << size.height;
      }
    }
  }
}

// Few, evenly spaced levels put sums, ratios, means and deviations onto the thresholds themselves.
TEST(BlockOrientation_MCU, EqualsItsDefinitionOnItsThresholds) {
  Random random(32);
  std::array<int, 9> codes = {};
  for (int round = 0; round < 20000; round++) {
    const int32_t base = random.between(0, 2) * 87, step = random.between(0, 3) * random.between(1, 7),
                  levels = random.between(1, 4);
    const int32_t dx = random.between(-1, 2), dy = random.between(-1, 2), noise = random.between(0, 60);
    const Image image(13, 13, [&](int32_t x, int32_t y) {
      const int32_t level = random.chance(static_cast<uint32_t>(noise)) ? random.between(0, levels)
                                                                        : (dx * x + dy * y + 26) / 2 % (levels + 1);
      return std::min(255, base + step * level);
    });
    const reference::Records expected = reference::sparse_blocks(image);
    codes[static_cast<size_t>(expected[0].direction + (expected[0].direction < 0 ? 1 : 0))]++;
    ASSERT_EQ(measured(image), expected) << "round " << round;
  }
  EXPECT_THAT(codes, testing::Each(testing::Gt(20)));
}

// The clearest pair of lines varies as 27 to 60, another as 54 to 60: in single precision exactly the least difference
// that makes a direction. One gray level less across, and there is none.
TEST(BlockOrientation_MCU, TakesTheLeastDifferenceBetweenPairs) {
  for (const bool clear : {true, false}) {
    Image image(13, 13, [](int32_t x, int32_t y) { return 60 + (x + y) % 2 * 80; });
    const auto set = [&](int32_t dx, int32_t dy, int32_t difference) {
      for (const int32_t n : {-3, -2, -1, 1, 2, 3})
        image.at(6 + n * dx, 6 + n * dy) = static_cast<uint8_t>(100 + difference);
    };
    image.at(6, 6) = 100;
    set(2, 0, 9), set(0, 2, 10);                     // 54 along the row, 60 along the column
    set(2, 2, 9), set(2, -2, 20);                    // 54 and 120
    for (const int32_t n : {-3, -2, -1, 1, 2, 3}) {  // the lines between vary too little to count
      image.at(6 + 2 * n, 6 + n) = image.at(6 + n, 6 + 2 * n) = 100;
      image.at(6 + 2 * n, 6 - n) = image.at(6 + n, 6 - 2 * n) = 100;
    }
    if (!clear) image.at(12, 0) = 119;
    const reference::Records expected = reference::sparse_blocks(image);
    EXPECT_EQ(measured(image), expected);
    EXPECT_EQ(expected[0].direction > 0, clear);
  }
}

TEST(BlockOrientation_MCU, GivesTheKnownRecordsOfUniformAndStripedFrames) {
  const struct {
    const char* name;
    Image image;
    quo_block_record block;
  } cases[] = {
      {"bright", Image(96, 96, 200), {-1, 200, 0, 0}},
      {"gray", Image(96, 96, 100), {0, 100, 0, 0}},
      {"threshold beyond a byte", Image(96, 96, 254), {-1, 254, 0, 0}},
      {"vertical", stripes(96, 96, [](int32_t x, int32_t) { return x; }), {5, 120, 60, 50}},
      {"horizontal", stripes(96, 96, [](int32_t, int32_t y) { return y; }), {1, 120, 60, 50}},
      {"rising", stripes(96, 96, [](int32_t x, int32_t y) { return x + y; }), {3, 120, 60, 50}},
  };
  for (const auto& c : cases) {
    EXPECT_THAT(measured(c.image), testing::AllOf(testing::SizeIs(144), testing::Each(c.block))) << c.name;
  }
}

// More records than 32 bits can count the bytes of.
TEST(BlockOrientation_MCU, RefusesSizesBeyondMemory) {
  quo_block_record* blocks = nullptr;
  int32_t count = 42;
  reset_hooks();
  EXPECT_EQ(BlockOrientation_MCU(nullptr, INT32_MAX, INT32_MAX, &blocks, &count), QUO_NO_MEMORY);
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
