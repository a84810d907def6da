#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

// Gives some columns one level, or none that is counted.
Image levelled(Image frame, Random& random) {
  for (int32_t x = 0; x < frame.width; x++) {
    if (!random.chance(20)) continue;
    const uint8_t level = random.chance(50) ? 255 : random.byte();
    for (int32_t y = 0; y < frame.height; y++) frame.at(x, y) = level;
  }
  return frame;
}

}  // namespace

TEST(RemoveVerticalStripes_Sector, EqualsTheLiteralFormAndLeavesOtherColumnsAlone) {
  const auto check = [](const Image& content, Random& random, Guard guard) {
    const Image frame = levelled(content, random);
    ReadOnly source(frame, guard);
    for (const bool in_place : {false, true}) {
      const Image before = in_place ? frame : Image(frame.width, frame.height, 55);
      const auto remove = [&](uint8_t* to) {
        ASSERT_EQ(RemoveVerticalStripes_Sector(in_place ? to : source.data(), to, frame.width, frame.height), 1);
      };
      ASSERT_EQ(changed(before, guard, remove), reference::without_sector_stripes(frame, before));
    }
  };
  for_each_frame(26, 18, {{32, 255}, {160, 256}, {47, 300}, {1024, 255}, {1040, 300}, {2081, 5}}, check);
}
