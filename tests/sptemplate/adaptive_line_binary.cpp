#include "reference/sptemplate.h"
#include "support/testing.h"

using namespace quo_test;
using reference::Bytes;

namespace {

Bytes binarized(Bytes line) {
  EXPECT_EQ(AdaptiveLineBinary(line.data(), static_cast<int32_t>(line.size())), QUO_OK);
  return line;
}

}  // namespace

TEST(AdaptiveLineBinary, MarksWhatIsBrighterThanItsLocalMean) {
  EXPECT_EQ(binarized(Bytes(40, 0)), Bytes(40, 0));
  EXPECT_EQ(binarized(Bytes(40, 253)), Bytes(40, 0));  // nothing is brighter than itself
  EXPECT_EQ(binarized({0, 200, 0, 200, 0, 200}), (Bytes{0, 255, 0, 255, 0, 255}));
  EXPECT_EQ(binarized({9, 10}), (Bytes{0, 255}));  // the mean 9.5 truncates to 9
  EXPECT_EQ(binarized({9, 9, 10, 10}), (Bytes{0, 0, 255, 255}));
  EXPECT_EQ(binarized({254, 255, 255, 255, 254}), (Bytes{254, 255, 255, 255, 254}));
  EXPECT_EQ(binarized({254, 0, 253, 255}), (Bytes{254, 0, 255, 255}));
}

// Of alternating 0 and 1 the ones are bright, but not where a bright pixel is within the window.
TEST(AdaptiveLineBinary, LooksFifteenPositionsFarToEitherSide) {
  for (const int spike : {0, 1, 14, 15, 16, 35, 54, 55, 69}) {
    Bytes line, expected;
    for (int i = 0; i < 70; i++) {
      line.push_back(static_cast<uint8_t>(i == spike ? 253 : i % 2));
      expected.push_back(i == spike || (i % 2 == 1 && std::abs(i - spike) > 15) ? 255 : 0);
    }
    EXPECT_EQ(binarized(line), expected) << "bright pixel at " << spike;
  }
}

TEST(AdaptiveLineBinary, EqualsTheTruncatingDivisionForEveryLength) {
  Random random(51);
  const auto check = [](const Bytes& line) {
    ASSERT_EQ(binarized(line), reference::binarized(line)) << line.size() << " pixels";
  };
  for (int32_t n = 1; n <= 150; n++) {
    for (const Fill fill : kAllFills) check(generate(random, n, 1, fill).pixels);
    // Lines close to one level, where most pixels are near their mean.
    const int32_t level = random.between(0, 252);
    check(Image(n, 1, [&](int32_t, int32_t) { return level + random.between(0, 1); }).pixels);
  }
  check(generate(random, 40000, 1, Fill::kNoise).pixels);
}

TEST(AdaptiveLineBinary, RefusesLengthsBeyondMemory) {
  uint8_t pixel = 7;
  reset_hooks();
  EXPECT_EQ(AdaptiveLineBinary(&pixel, INT32_MAX), QUO_NO_MEMORY);  // 16 GiB of sums
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
