#include "reference/toolbox.h"
#include "support/testing.h"

using namespace quo_test;

TEST(MedianFilter, EqualsItsLiteralForm) {
  const auto check = [](const Image& image, Random&, Guard guard) {
    ReadOnly source(image, guard);
    for (const bool in_place : {false, true}) {
      const auto filter = [&](uint8_t* to) {
        MedianFilter(in_place ? to : source.data(), to, image.width, image.height);
      };
      ASSERT_EQ(changed(in_place ? image : Image(image.width, image.height), guard, filter), reference::median(image));
    }
  };
  for_each_frame(94, 19, {{2600, 4}, {4, 1100}}, check);  // longer than what is filtered at a time
}

// A selection by comparisons is right for all values when it is right for all images of zeros and ones.
TEST(MedianFilter, SelectsRightFromEveryBinaryNeighbourhood) {
  for (int bits = 0; bits < 4096; bits++) {
    for (const auto& [width, height] : {std::pair{3, 3}, {4, 3}, {3, 4}, {2, 6}, {6, 2}}) {
      const Image image(width, height, [&, w = width](int32_t x, int32_t y) { return bits >> (y * w + x) & 1; });
      Image output(width, height);
      MedianFilter(image.data(), output.data(), width, height);
      ASSERT_EQ(output, reference::median(image)) << "pixels " << bits;
    }
  }
}
