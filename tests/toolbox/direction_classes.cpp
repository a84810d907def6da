#include <cmath>
#include <utility>

#include "support/testing.h"

TEST(DDIndex, CutsTheHalfCircleIntoClassesOf15Degrees) {
  const std::pair<int32_t, uint32_t> cases[] = {{7, 0},   {8, 1},   {22, 1},  {23, 2}, {90, 6},        {172, 11},
                                                {173, 0}, {180, 0}, {255, 0}, {-5, 0}, {INT32_MIN, 0}, {INT32_MAX, 0}};
  for (const auto& [degrees, expected] : cases) EXPECT_EQ(DDIndex(degrees), expected) << degrees;
}

// Site 3 + d is d pixels along the nearer axis and the rounded distance along the other.
TEST(g_DDSite, HoldsTheNearestPixelsOnTheLineOfEachClass) {
  for (int k = 0; k < 12; k++) {
    const double angle = (k <= 6 ? k : k - 12) * 15 * std::acos(-1.0) / 180;
    const double dx = std::cos(angle), dy = std::sin(angle), longer = std::max(std::abs(dx), std::abs(dy));
    for (int d = -3; d <= 3; d++) {
      EXPECT_EQ(g_DDSite[k][3 + d][0], std::lround(d * dx / longer)) << "class " << k << ", site " << 3 + d;
      EXPECT_EQ(g_DDSite[k][3 + d][1], std::lround(d * dy / longer)) << "class " << k << ", site " << 3 + d;
    }
  }
}
