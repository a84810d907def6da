#include "support/testing.h"

using namespace quo_test;

TEST(CalcHistogram, CountsEveryValueForAnyCountAndBins) {
  Random random(1);
  for (const int32_t count : {0, 1, 3, 4, 5, 1023, 1024, 1025, 1027, 40000}) {
    for (const uint32_t bins : {0U, 1U, 7U, 200U, 256U, 300U}) {
      const Image image = generate(random, count, 1, kAllFills[random.next() % 6]);
      std::vector<uint32_t> expected(bins, 0), histogram(bins + 1, 99);
      expected.push_back(99);
      for (const uint8_t pixel : image.pixels) {
        if (pixel < bins) expected[pixel]++;
      }
      ASSERT_EQ(CalcHistogram(ReadOnly(image).data(), count, histogram.data(), bins), 1);
      ASSERT_EQ(histogram, expected) << count << " pixels, " << bins << " bins";
    }
  }
}
