// A program without hooks of its own, so that the library decides most degrees without the arctangent.
#include "quality/ridge_degrees.h"

#include <gtest/gtest.h>

#include "reference/quality.h"

using namespace quo_test;

namespace {

struct Pairs {
  std::vector<int32_t> x, y;

  void add(int64_t px, int64_t py) {
    x.push_back(static_cast<int32_t>(std::clamp<int64_t>(px, INT32_MIN, INT32_MAX)));
    y.push_back(static_cast<int32_t>(std::clamp<int64_t>(py, INT32_MIN, INT32_MAX)));
  }

  void expect_same_degrees() const {
    for (size_t from = 0; from < x.size(); from += quo::kMostPairs) {
      const auto count = std::min<size_t>(quo::kMostPairs, x.size() - from);
      uint8_t quick[quo::kMostPairs], called[quo::kMostPairs];
      quo::take_degrees_where_clear(&x[from], &y[from], static_cast<int32_t>(count), quick);
      quo::take_degrees_by_hook(&x[from], &y[from], static_cast<int32_t>(count), called);
      for (size_t i = 0; i < count; i++) {
        ASSERT_EQ(quick[i], called[i]) << x[from + i] << ", " << y[from + i];
        ASSERT_EQ(called[i], reference::orientation(x[from + i], y[from + i]));
      }
    }
  }
};

}  // namespace

// The approximation can be wrong only beside a step, by as much as its error: from there out to twice the distance at
// which it decides, on both sides, at all 180 steps, for sums of every size.
TEST(RidgeDegrees, AreThoseOfTheArctangentAroundEveryStep) {
  constexpr double kHalvesPerRadian = 57.295780490442965 * 0.5, kReach = 2.0 / 1024;
  Pairs pairs;
  for (int step = 1; step <= 180; step++) {
    for (int i = -64; i <= 64; i++) {
      // Distances shrink towards the step, down to where the conversion itself rounds.
      const double distance = kReach * std::copysign(std::pow(i / 64.0, 8), i);
      const double angle = (step - 0.5 + distance) / kHalvesPerRadian;
      const double turned = angle > 3.14159 ? angle - 6.2831852 : angle;
      for (const double length : {300.0, 4e3, 1e5, 3e6, 2e8, 2147483647.0}) {
        pairs.add(std::llround(length * std::cos(turned)), std::llround(length * std::sin(turned)));
      }
    }
  }
  pairs.expect_same_degrees();
}

TEST(RidgeDegrees, AreThoseOfTheArctangentForSmallAndExtremeSums) {
  Pairs pairs;
  for (int x = -160; x <= 160; x++) {
    for (int y = -160; y <= 160; y++) pairs.add(x, y);
  }
  const int64_t extremes[] = {INT32_MIN, INT32_MIN + 1, -65536, -1, 0, 1, 46341, INT32_MAX - 1, INT32_MAX};
  for (const int64_t x : extremes) {
    for (const int64_t y : extremes) pairs.add(x, y);
  }
  Random random(39);
  for (int i = 0; i < 200000; i++) {
    const int shift = random.between(0, 28);
    pairs.add(static_cast<int32_t>(random.next()) >> shift, static_cast<int32_t>(random.next()) >> shift);
  }
  pairs.expect_same_degrees();
}

TEST(RidgeDegrees, MakeTheFieldsOfTheLibrary) {
  Random random(40);
  for (const Fill fill : kAllFills) {
    const Image image = generate(random, 90, 70, fill);
    Image field(90, 70);
    ASSERT_EQ(Orientation(image.data(), field.data(), 90, 70, 3), 1U);
    ASSERT_EQ(field, reference::orientation_field(image, 3));
    reference::Records blocks(88);
    ASSERT_EQ(BlockOrientation(image.data(), 90, 70, blocks.data(), 11, 8, 1, nullptr), QUO_OK);
    ASSERT_EQ(blocks, reference::dense_blocks(image, 11, 8, 1).blocks);
  }
}
