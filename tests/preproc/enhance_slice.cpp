#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;

TEST(FP_ImageEnhance_Slice, GivesTheWholeFrameResultForEverySlice) {
  Random random(32);
  for (int32_t height = 1; height <= 40; height++) {
    for (int32_t slice_rows = -1; slice_rows <= 41; slice_rows++) {
      const Image frame = generate(random, random.between(1, 24), height, kAllFills[random.next() % 6]);
      const int32_t target = random.between(50, 300);
      const int gain = static_cast<int>(reference::enhance_coefficient(frame, target)) & 0xFF;
      const Guard guard = slice_rows % 2 == 0 ? Guard::kAfter : Guard::kBefore;
      const auto enhance = [&](uint8_t* pixels) {
        ASSERT_EQ(FP_ImageEnhance_Slice(pixels, frame.width, height, slice_rows, target), QUO_OK);
      };
      const Image whole = reference::balanced(frame, {.band_rows = height, .gain = gain});
      ASSERT_EQ(changed(frame, guard, enhance), whole) << "slices of " << slice_rows;
    }
  }
}
