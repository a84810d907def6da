#include "reference/toolbox.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

// Mostly set, so that crosses survive; 254 and 1 are not set.
Image mask_of(int32_t width, int32_t height, Random& random) {
  return Image(width, height, [&](int32_t, int32_t) { return random.chance(88) ? 255 : random.chance(50) ? 254 : 1; });
}

}  // namespace

TEST(MyCrossErode, CountsMoreThanABytesWorthOfEveryColumn) {
  for (const auto& [width, height] : {std::pair{64, 300}, {9000, 2}}) {
    uint32_t count = 0;
    MyCrossErode(Image(width, height, 255).data(), nullptr, width, height, 0, &count);
    EXPECT_EQ(count, static_cast<uint32_t>(width * height));
  }
}

// Wide masks are counted in strips.
TEST(MyCrossErode, EqualsItsLiteralForm) {
  for_each_frame(96, 19, {{4110, 3}, {4150, 4}}, [](const Image& image, Random& random, Guard guard) {
    const Image mask = mask_of(image.width, image.height, random);
    for (const int32_t border : {0, 1, 2, 7}) {
      Image expected = image;
      const uint32_t expected_count = reference::erode(mask, expected, border);
      uint32_t count = 99, count_alone = 99;
      const auto erode = [&](uint8_t* output) {
        MyCrossErode(ReadOnly(mask, guard).data(), output, image.width, image.height, border, &count);
      };
      ASSERT_EQ(changed(image, guard, erode), expected) << "border " << border;
      MyCrossErode(mask.data(), nullptr, image.width, image.height, border, &count_alone);
      ASSERT_EQ(count, expected_count) << "border " << border;
      ASSERT_EQ(count_alone, expected_count) << "border " << border;
    }
  });
}
