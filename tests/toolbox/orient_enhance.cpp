#include "reference/toolbox.h"
#include "support/testing.h"

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

TEST(OrientEnhance, EqualsItsLiteralForm) {
  for_each_frame(81, 17, {}, [](const Image& image, Random& random, Guard guard) {
    const Image field = directions_for(image, random);
    ReadOnly directions(field, guard);
    const auto enhance = [&](uint8_t* pixels) {
      ASSERT_EQ(OrientEnhance(pixels, directions.data(), image.width, image.height), 1U);
    };
    ASSERT_EQ(changed(image, guard, enhance), reference::enhanced(image, field));
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

TEST(OrientEnhance, RefusesSizesBeyondMemory) {
  uint8_t pixel = 7;
  reset_hooks();
  EXPECT_EQ(OrientEnhance(&pixel, &pixel, INT32_MAX, 3), 0U);
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
