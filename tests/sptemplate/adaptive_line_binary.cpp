#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "quoFPAlg.h"
#include "reference/sptemplate.h"
#include "support/frames.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;
using reference::Bytes;

namespace {

Bytes binarized(const Bytes& line, Guard guard = Guard::kAfter) {
  Guarded buffer(line, guard);
  EXPECT_EQ(AdaptiveLineBinary(buffer.data(), static_cast<int32_t>(line.size())), QUO_OK);
  return {buffer.bytes().begin(), buffer.bytes().end()};
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
  for (int32_t n = 1; n <= 150; n++) {
    for (const Fill fill : kAllFills) {
      const Bytes line = generate(random, n, 1, fill).pixels;
      const Guard guard = n % 2 == 0 ? Guard::kBefore : Guard::kAfter;
      ASSERT_EQ(binarized(line, guard), reference::binarized(line)) << n << " pixels, fill " << static_cast<int>(fill);
    }
    // Lines close to one level, where most pixels are near their mean.
    const int32_t level = random.between(0, 252);
    const Bytes line = Image(n, 1, [&](int32_t, int32_t) { return level + random.between(0, 1); }).pixels;
    ASSERT_EQ(binarized(line), reference::binarized(line)) << n << " pixels about " << level;
  }
  const Bytes line = generate(random, 40000, 1, Fill::kNoise).pixels;
  EXPECT_EQ(binarized(line), reference::binarized(line));
}

TEST(AdaptiveLineBinary, LeavesTheLineAloneWithoutMemory) {
  Bytes line{0, 200, 0, 200};
  const Bytes before = line;
  reset_hooks();
  for (const int32_t n : {0, -1, INT32_MIN}) EXPECT_EQ(AdaptiveLineBinary(line.data(), n), QUO_OK);
  EXPECT_EQ(AdaptiveLineBinary(line.data(), INT32_MAX), QUO_NO_MEMORY);  // 16 GiB of sums: not even asked for
  EXPECT_TRUE(hooks().sizes.empty());
  fail_allocation(0);
  EXPECT_EQ(AdaptiveLineBinary(line.data(), 4), QUO_NO_MEMORY);
  EXPECT_EQ(line, before);
  EXPECT_EQ(AdaptiveLineBinary(line.data(), 4), QUO_OK);
  EXPECT_THAT(hooks().sizes, testing::ElementsAre(40, 40));
  EXPECT_EQ(hooks().live_blocks, 0U);
}
