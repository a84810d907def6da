#include "support/testing.h"

using namespace quo_test;

TEST(BinaryThreshold, IsWhiteAboveTheThresholdForEveryValueAndCount) {
  Random random(84);
  for (const int32_t threshold : {0, 1, 99, 127, 128, 200, 254, 255}) {
    for (int32_t count = 0; count < 80; count++) {
      const Image content = generate(random, count, 1, Fill::kNoise);
      const Image expected(count, 1, [&](int32_t x, int32_t) { return content.at(x, 0) > threshold ? 255 : 0; });
      const auto binarise = [&](uint8_t* data) {
        ASSERT_EQ(BinaryThreshold(data, count, static_cast<uint8_t>(threshold)), data);
      };
      ASSERT_EQ(changed(content, Guard::kAfter, binarise), expected) << "threshold " << threshold;
    }
  }
}
