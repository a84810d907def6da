#include "reference/signal.h"
#include "support/testing.h"

using namespace quo_test;

TEST(GasssianSmooth, HasTheseResults) {
  const struct {
    Image image, rows, smoothed;
  } cases[] = {
      // Rounding once at the end would give 4 in the middle of the left column.
      {Image(3, 3, {2, 1, 4, 1, 7, 7, 7, 6, 3}), Image(3, 3, {1, 2, 2, 4, 5, 7, 6, 5, 4}),
       Image(3, 3, {2, 3, 4, 3, 4, 5, 5, 5, 5})},
      {Image(4, 4, {0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
       Image(4, 4, {0, 0, 0, 0, 127, 127, 63, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
       Image(4, 4, {63, 63, 31, 0, 63, 63, 31, 0, 31, 31, 15, 0, 0, 0, 0, 0})},
      {Image(3, 3, {10, 20, 30, 40, 50, 60, 70, 80, 90}), Image(3, 3, {15, 20, 25, 45, 50, 55, 75, 80, 85}),
       Image(3, 3, {30, 35, 40, 45, 50, 55, 60, 65, 70})},
      {Image(2, 2, {1, 2, 5, 10}), Image(2, 2, {1, 1, 7, 7}), Image(2, 2, {4, 4, 4, 4})},
      {Image(1, 1, {77}), Image(1, 1, {77}), Image(1, 1, {77})},
  };
  for (const auto& c : cases) {
    Image image = c.image, scratch(image.width, image.height);
    EXPECT_EQ(GasssianSmooth(image.data(), scratch.data(), image.width, image.height), 1U);
    EXPECT_EQ(scratch, c.rows);
    EXPECT_EQ(image, c.smoothed);
  }
}

TEST(GasssianSmooth, EqualsItsDefinition) {
  for_each_frame(1, 35, {}, [](const Image& image, Random&, Guard guard) {
    Image smoothed, expected = image;
    const Image rows = changed(Image(image.width, image.height), guard, [&](uint8_t* scratch) {
      smoothed = changed(image, guard, [&](uint8_t* pixels) {
        ASSERT_EQ(GasssianSmooth(pixels, scratch, image.width, image.height), 1U);
      });
    });
    ASSERT_EQ(rows, reference::smooth(expected));
    ASSERT_EQ(smoothed, expected);
  });
}

TEST(GasssianSmooth, RefusesSizesBeyondMemory) {
  uint8_t pixel = 7;
  reset_hooks();
  EXPECT_EQ(GasssianSmooth(&pixel, &pixel, 1 << 30, 1), 0U);  // 4 bytes a pixel do not fit in 32 bits
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
