#include "reference/signal.h"
#include "support/testing.h"

using namespace quo_test;

TEST(MyRectErode, KeepsExactlyTheNeighbourhoodsThatAreSet) {
  for (int set = 0; set < 512; set++) {
    for (const int other : {0, 254}) {  // nothing but 255 counts
      Image mask(3, 3, [&](int32_t x, int32_t y) { return set >> (3 * y + x) & 1 ? 255 : other; }), output(3, 3, 5);
      uint32_t count = 9;
      MyRectErode(mask.data(), output.data(), 3, 3, 1, &count);
      ASSERT_EQ(count, set == 511 ? 1U : 0U) << set;
      ASSERT_EQ(output.at(1, 1), set == 511 ? 255 : 5);
    }
  }
}

// Also around the segments in which a row is counted.
TEST(MyRectErode, EqualsItsDefinition) {
  const auto check = [](const Image& frame, Random& random, Guard guard) {
    const int32_t w = frame.width, h = frame.height;
    const auto holes = static_cast<uint32_t>(random.between(0, 20));
    const Image mask(w, h, [&](int32_t, int32_t) { return random.chance(holes) ? random.byte() : 255; });
    for (int32_t border = 0; border <= 3; border++) {
      uint32_t count = 99;
      const auto erode = [&](uint8_t* output) {
        MyRectErode(ReadOnly(mask, guard).data(), output, w, h, border, &count);
      };
      Image expected(w, h, 0x35);
      const uint32_t expected_count = reference::erode(mask, expected, std::max(border, 1));
      ASSERT_EQ(changed(Image(w, h, 0x35), guard, erode), expected) << "border " << border;
      ASSERT_EQ(count, expected_count) << w << "x" << h << " border " << border;
    }
  };
  for_each_frame(4, 21, {{240, 9}, {241, 9}, {242, 9}, {243, 9}, {244, 9}, {245, 9}, {482, 9}, {483, 9}, {900, 9}},
                 check);
}
