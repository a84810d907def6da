#include "toolbox/cases.h"

using namespace quo_test;

namespace {

// Directions of every value, or the same along a stretch, as real fields have them.
Image directions_for(const Image& image, Random& random) {
  const bool smooth = random.chance(50);
  uint8_t direction = 0;
  return Image(image.width, image.height, [&](int32_t, int32_t) {
    if (!smooth || random.chance(8)) direction = random.byte();
    return direction;
  });
}

}  // namespace

TEST(OrientEnhance, EqualsItsLiteralFormForEverySmallSizeAndSensorSizes) {
  for_each_frame(81, 17, [](const Image& image, Random& random, Guard guard) {
    const Image field = directions_for(image, random);
    Guarded directions(field.pixels, guard), enhanced(image.pixels, guard);
    directions.make_read_only();
    ASSERT_EQ(OrientEnhance(enhanced.data(), directions.data(), image.width, image.height), 1U);
    ASSERT_TRUE(enhanced.equals(reference::enhanced(image, field).pixels)) << size_text(image);
  });
}

TEST(OrientEnhance, DeepensADarkColumnAndLiftsItsFlanks) {
  const uint8_t row[] = {200, 200, 200, 200, 200, 100, 200, 200, 200, 200, 200};
  const uint8_t expected[] = {200, 200, 230, 214, 157, 71, 157, 214, 230, 200, 200};
  Image image(11, 9, [&](int32_t x, int32_t) { return row[x]; });
  const Image field(11, 9, 90);
  ASSERT_EQ(OrientEnhance(image.data(), field.data(), 11, 9), 1U);
  EXPECT_EQ(image, Image(11, 9, [&](int32_t x, int32_t) { return expected[x]; }));
}

TEST(OrientEnhance, KeepsUniformImagesBut255) {
  Random random(82);
  const Image field = generate(random, 20, 15, Fill::kNoise);
  for (const int value : {0, 1, 100, 254, 255}) {
    Image image(20, 15, static_cast<uint8_t>(value));
    OrientEnhance(image.data(), field.data(), 20, 15);
    EXPECT_EQ(image, Image(20, 15, static_cast<uint8_t>(std::min(value, 254))));
  }
}

TEST(OrientEnhance, LeavesTheImageAloneWithoutMemoryAndWhenItIsEmpty) {
  reset_hooks();
  fail_allocation(0);
  Image image(4, 3, 255);
  const Image field(4, 3, 0);
  EXPECT_EQ(OrientEnhance(image.data(), field.data(), 4, 3), 0U);
  EXPECT_EQ(image, Image(4, 3, 255));
  EXPECT_EQ(OrientEnhance(image.data(), field.data(), INT32_MAX, 3), 0U);
  EXPECT_EQ(hooks().sizes, std::vector<uint32_t>{12});
  for (const int32_t size : {0, -1, INT32_MIN}) {
    EXPECT_EQ(OrientEnhance(image.data(), field.data(), 4, size), 1U);
    EXPECT_EQ(OrientEnhance(image.data(), field.data(), size, 3), 1U);
  }
  EXPECT_EQ(image, Image(4, 3, 255));
  EXPECT_EQ(hooks().live_blocks, 0U);
}
