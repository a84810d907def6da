#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;

TEST(FillBorders, CopiesInnerNeighboursRowsFirst) {
  Image image(4, 4, [](int32_t x, int32_t y) { return 10 * y + x; });
  FillBorders(image.data(), 4, 4, QUO_BORDER_TOP | QUO_BORDER_BOTTOM | QUO_BORDER_LEFT | QUO_BORDER_RIGHT);
  EXPECT_EQ(image, Image(4, 4, {11, 11, 12, 12, 11, 11, 12, 12, 21, 21, 22, 22, 21, 21, 22, 22}));
}

// Every flag byte on every small size and on rows longer than a vector; lines without an inner neighbour stay.
TEST(FillBorders, ReplacesTheSelectedLinesOnly) {
  Random random(23);
  for (const int32_t width : {0, 1, 2, 3, 17, 200}) {
    for (int32_t height = 0; height <= 4; height++) {
      for (int flags = 0; flags < 256; flags++) {
        const Image original = generate(random, width, height, Fill::kNoise);
        Guarded image(original.pixels, flags % 2 == 0 ? Guard::kAfter : Guard::kBefore);
        FillBorders(image.data(), width, height, static_cast<uint8_t>(flags));
        ASSERT_TRUE(image.equals(reference::bordered(original, flags).pixels))
            << width << "x" << height << " flags " << flags;
      }
    }
  }
}
