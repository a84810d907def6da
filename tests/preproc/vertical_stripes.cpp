#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

// Shifts some columns, so that offsets are of every size.
Image striped(Image frame, Random& random) {
  for (int32_t x = 0; x < frame.width; x++) {
    const int shift = random.chance(30) ? random.between(-255, 255) : 0;
    for (int32_t y = 0; y < frame.height; y++)
      frame.at(x, y) = static_cast<uint8_t>(std::clamp(frame.at(x, y) + shift, 0, 255));
  }
  return frame;
}

}  // namespace

TEST(RemoveVerticalStripes, TakesTheOffsetFromTheNeighboursOffAColumn) {
  Image frame(20, 3, [](int32_t x, int32_t) { return x == 10 ? 108 : 100; });
  frame.at(10, 2) = 235;  // not counted, not changed
  ASSERT_EQ(RemoveVerticalStripes(frame.data(), frame.data(), 20, 3), 1);
  for (int32_t x = 0; x < 20; x++) {
    const bool beside = x != 10 && x >= 6 && x <= 14;
    EXPECT_EQ(frame.at(x, 0), beside ? 101 : 100) << "column " << x;
    EXPECT_EQ(frame.at(x, 2), x == 10 ? 235 : frame.at(x, 0)) << "column " << x;
  }
}

// Heights beyond 255 and widths beyond 1024 are counted in parts.
TEST(RemoveVerticalStripes_All, EqualsTheLiteralForm) {
  const auto check = [](const Image& content, Random& random, Guard guard) {
    const Image frame = striped(content, random), expected = reference::without_stripes(frame);
    ReadOnly source(frame, guard);
    for (const bool in_place : {false, true}) {
      const auto remove = [&](uint8_t* to) {
        ASSERT_EQ(RemoveVerticalStripes_All(in_place ? to : source.data(), to, frame.width, frame.height), 1);
      };
      ASSERT_EQ(changed(in_place ? frame : Image(frame.width, frame.height), guard, remove), expected);
    }
  };
  for_each_frame(24, 16,
                 {{33, 254}, {33, 255}, {33, 256}, {33, 511}, {33, 1021}, {1023, 9}, {1024, 9}, {1025, 9}, {2050, 9}},
                 check);
}

TEST(RemoveVerticalStripes_All, RefusesSizesBeyondMemory) {
  reset_hooks();
  EXPECT_EQ(RemoveVerticalStripes_All(nullptr, nullptr, 0x40000000, 1), 0);  // 2^32 bytes of sums
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
