#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "support/frames.h"
#include "support/guarded.h"

using namespace quo_test;

TEST(CalcHistogram, CountsEveryValueForAnyCountAndBins) {
  Random random(1);
  for (const int32_t count : {0, 1, 3, 4, 5, 1023, 1024, 1025, 1027, 40000}) {
    for (const uint32_t bins : {0U, 1U, 7U, 200U, 256U, 300U}) {
      const Image image = generate(random, count, 1, kAllFills[random.next() % 6]);
      std::vector<uint32_t> expected(bins, 0);
      for (const uint8_t pixel : image.pixels) {
        if (pixel < bins) expected[pixel]++;
      }
      Guarded pixels(image.pixels, Guard::kAfter);
      Guarded histogram(bins * sizeof(uint32_t), Guard::kAfter, 0xEE);
      ASSERT_EQ(CalcHistogram(pixels.data(), count, histogram.as<uint32_t>(), bins), 1);
      ASSERT_THAT(std::vector<uint32_t>(histogram.as<uint32_t>(), histogram.as<uint32_t>() + bins),
                  testing::ElementsAreArray(expected))
          << count << " pixels, " << bins << " bins";
    }
  }
}

TEST(CalcHistogram, RefusesNullPointersAndCountsNothingForNegativeCounts) {
  uint32_t histogram[256] = {42};
  const uint8_t pixel = 0;
  EXPECT_EQ(CalcHistogram(nullptr, 1, histogram, 256), 0);
  EXPECT_EQ(histogram[0], 42U);
  EXPECT_EQ(CalcHistogram(&pixel, 1, nullptr, 256), 0);
  EXPECT_EQ(CalcHistogram(&pixel, -1, histogram, 256), 1);
  EXPECT_THAT(histogram, testing::Each(0U));
}
