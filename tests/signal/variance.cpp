#include "reference/signal.h"
#include "support/testing.h"

using namespace quo_test;

TEST(Variance, HasTheseResults) {
  const uint8_t values[] = {7, 9, 1, 0};
  EXPECT_EQ(Variance(values, 1), 0.0);
  EXPECT_EQ(Variance(values, 2), 1.0);
  std::vector<uint8_t> halves(256, 0);
  std::fill_n(halves.begin(), 128, 255);
  EXPECT_EQ(Variance(halves.data(), 256), 16256.25);
}

// Powers of two up to 4096 take integer sums, all other counts the steps in order.
TEST(Variance, EqualsItsDefinitionToTheBit) {
  Random random(2);
  auto check = [&](int32_t count, Fill fill) {
    const Image image = generate(random, count, 1, fill);
    ASSERT_EQ(Variance(ReadOnly(image).data(), count), reference::variance(image.pixels)) << count << " values";
  };
  for (const Fill fill : kAllFills) {
    for (int32_t count = 1; count <= 300; count++) check(count, fill);
    for (int32_t count = 512; count <= 16384; count *= 2) {
      for (int32_t near = count - 1; near <= count + 1; near++) check(near, fill);
    }
  }
}
