#include "reference/frame.h"
#include "support/testing.h"

using namespace quo_test;

TEST(ZoomImg, EqualsItsDefinition) {
  for_each_frame(3, 21, {}, [](const Image& image, Random&, Guard guard) {
    ReadOnly source(image, guard);
    for (const uint8_t mode : {0, 1, 7}) {
      const Image half = changed(Image(image.width / 2, image.height / 2), guard, [&](uint8_t* output) {
        ZoomImg(source.data(), output, image.width, image.height, mode);
      });
      ASSERT_EQ(half, reference::half_image(image, mode)) << "mode " << int{mode};
    }
  });
}
