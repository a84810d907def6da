#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;

TEST(FP_GetBlockValidArea, MeasuresEachQuarterThatIsAskedFor) {
  for_each_frame(35, 36, {{161, 121}}, [](const Image& frame, Random& random, Guard guard) {
    const uint8_t bg = reference::background_value(frame).value_or(255);
    const uint64_t asked = random.next();
    const int32_t w = frame.width / 2, h = frame.height / 2;
    uint8_t means[4] = {1, 1, 1, 1}, expected[4] = {1, 1, 1, 1};
    uint8_t* outs[4];
    for (int i = 0; i < 4; i++) {
      outs[i] = asked >> i & 1 ? &means[i] : nullptr;
      const Image quarter(w, h, [&](int32_t x, int32_t y) { return frame.at(i % 2 * w + x, i / 2 * h + y); });
      if (outs[i] != nullptr) expected[i] = reference::valid_area(quarter, bg).mean;
    }
    ReadOnly pixels(frame, guard);
    ASSERT_EQ(FP_GetBlockValidArea(pixels.data(), frame.width, frame.height, outs[0], outs[1], outs[2], outs[3]), 0U);
    ASSERT_THAT(means, testing::ElementsAreArray(expected)) << frame.width << "x" << frame.height;
  });
  uint8_t mean = 1;
  reset_hooks();
  EXPECT_EQ(FP_GetBlockValidArea(nullptr, 1 << 18, 1 << 18, &mean, &mean, &mean, &mean), QUO_NO_MEMORY);
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());  // a quarter has 2^34 pixels
}
