#include "toolbox/cases.h"

using namespace quo_test;

TEST(BinaryThreshold, IsWhiteAboveTheThresholdForEveryValueAndCount) {
  Random random(84);
  for (const int32_t threshold : {0, 1, 99, 127, 128, 200, 254, 255}) {
    for (int32_t count = 0; count < 80; count++) {
      const Image content = generate(random, count, 1, Fill::kNoise);
      Guarded data(content.pixels, Guard::kAfter);
      ASSERT_EQ(BinaryThreshold(data.data(), count, static_cast<uint8_t>(threshold)), data.data());
      const Image expected(count, 1, [&](int32_t x, int32_t) { return content.at(x, 0) > threshold ? 255 : 0; });
      ASSERT_TRUE(data.equals(expected.pixels)) << count << " bytes, threshold " << threshold;
    }
  }
  EXPECT_EQ(BinaryThreshold(nullptr, -1, 7), nullptr);
}
