// Version, byte fill and copy, square root and sort.
#include <bit>
#include <cmath>
#include <limits>

#include "reference/frame.h"
#include "support/testing.h"

using namespace quo_test;

TEST(FP_GetVersion, IsTheVersionOfTheHeader) { EXPECT_EQ(FP_GetVersion(), QUO_VERSION); }

TEST(quo_memcpy, EqualsTheForwardByteLoopForEveryOverlap) {
  Random random(4);
  const Image content = generate(random, 900, 1, Fill::kNoise);
  for (const uint32_t count : {0U, 1U, 15U, 16U, 17U, 63U, 64U, 65U, 127U, 128U, 200U, 333U}) {
    for (int32_t distance = -140; distance <= 340; distance++) {
      std::vector<uint8_t> expected = content.pixels, copied = content.pixels;
      const size_t from = 140, to = static_cast<size_t>(140 + distance);
      for (size_t i = 0; i < count; i++) expected[to + i] = expected[from + i];
      ASSERT_EQ(quo_memcpy(&copied[to], &copied[from], count), &copied[to]);
      ASSERT_EQ(copied, expected) << count << " bytes at distance " << distance;
    }
  }
  uint8_t byte = 7;
  EXPECT_EQ(quo_memcpy(&byte, nullptr, 1), nullptr);
}

TEST(quo_sqrt, HasTheseLastBits) {
  const float cases[][2] = {{1, 1.0000001F}, {2, 1.4142135F},   {4, 2.0000002F},    {49, 6.9999995F},
                            {81, 8.999999F}, {100, 10.000001F}, {10000, 99.99999F}, {65025, 255.00002F},
                            {-1, 0},         {-100, 0}};
  for (const auto& [x, root] : cases) EXPECT_EQ(quo_sqrt(x), root) << x;
  EXPECT_NEAR(quo_sqrt(0.0F), 2.2426e-20F, 1e-24F);
  EXPECT_LT(quo_sqrt(-0.0F), -1e18F);
}

TEST(quo_sqrt, EqualsTheFusedStepsOverItsWholeRange) {
  for (uint64_t bits = 0; bits <= UINT32_MAX; bits += 2039) {
    const auto x = std::bit_cast<float>(static_cast<uint32_t>(bits));
    const float expected = reference::fused_sqrt(x);
    if (expected != expected) continue;
    ASSERT_EQ(std::bit_cast<uint32_t>(quo_sqrt(x)), std::bit_cast<uint32_t>(expected)) << x;
  }
}

// a * b rounds to 1, so only an unfused product gives exactly 0.
TEST(FloatingPoint, DoesNotContractProductsIntoFusedSums) {
  volatile double a = 1 + 0x1p-30, b = 1 - 0x1p-30, c = -1;
  const double x = a, y = b, z = c;
  EXPECT_EQ(x * y + z, 0.0);
  const double product = x * y;
  EXPECT_EQ(product + z, 0.0);
  EXPECT_NE(std::fma(x, y, z), 0.0);
}

namespace {

std::vector<double> exchange_sorted(std::vector<double> values) {
  const int count = static_cast<int>(values.size());
  for (int pass = 0; pass < count - 1; pass++) {
    for (int j = count - 1; j >= 1; j--) {
      if (values[static_cast<size_t>(j)] < values[static_cast<size_t>(j - 1)]) {
        std::swap(values[static_cast<size_t>(j)], values[static_cast<size_t>(j - 1)]);
      }
    }
  }
  return values;
}

std::vector<uint64_t> bits(const std::vector<double>& values) {
  std::vector<uint64_t> result;
  for (const double value : values) result.push_back(std::bit_cast<uint64_t>(value));
  return result;
}

}  // namespace

TEST(quo_short, EqualsTheExchangeSortToTheBit) {
  Random random(5);
  const double inf = std::numeric_limits<double>::infinity();
  for (const int shape : {0, 1, 2, 3}) {  // nearly equal, falling, saw teeth, organ pipe: where quicksorts degenerate
    std::vector<double> values(2000);
    for (int i = 0; i < 2000; i++) {
      const int shapes[] = {i < 1999 ? 7 : 6, -i, i % 50, i < 1000 ? i : 2000 - i};
      values[static_cast<size_t>(i)] = shapes[shape];
    }
    std::vector<double> sorted = values;
    quo_short(sorted.data(), 2000);
    EXPECT_EQ(bits(sorted), bits(exchange_sorted(values))) << "shape " << shape;
  }
  const double choices[] = {0.0, -0.0, std::nan("1"), -std::nan("2"), inf, -inf, 1.0, -1.0, 5e-324, -5e-324, 7.5};
  for (int round = 0; round < 3000; round++) {
    std::vector<double> values(static_cast<size_t>(random.between(0, 90)));
    const uint32_t special = static_cast<uint32_t>(random.between(0, 100));
    for (double& value : values) {
      value = random.chance(special) ? choices[random.next() % std::size(choices)] : random.between(-1000, 1000) * 0.37;
    }
    const std::vector<double> expected = exchange_sorted(values);
    Guarded sorted({reinterpret_cast<const uint8_t*>(values.data()), values.size() * sizeof(double)}, Guard::kAfter);
    quo_short(sorted.as<double>(), static_cast<int32_t>(values.size()));
    const auto* first = sorted.as<double>();
    ASSERT_EQ(bits({first, first + values.size()}), bits(expected)) << "round " << round;
  }
}
