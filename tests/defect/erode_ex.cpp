#include "reference/defect.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

// Few or many pixels of 99 among those of 100: with a threshold of 100 they are the dark ones.
Image speckled(Random& random, int32_t width, int32_t height) {
  const auto share = static_cast<uint32_t>(random.between(0, 60));
  return Image(width, height, [&](int32_t, int32_t) { return random.chance(share) ? 99 : 100; });
}

void expect_defined(const Image& image, int32_t border, int32_t allowance) {
  Image expected_marks;
  const uint32_t expected = reference::erode(image, border, 100, allowance, expected_marks);
  uint32_t with_marks = 77, without_marks = 77;
  uint8_t* marks = nullptr;
  MyErodeEx(image.data(), image.width, image.height, border, 100, allowance, &with_marks, &marks);
  MyErodeEx(image.data(), image.width, image.height, border, 100, allowance, &without_marks, nullptr);
  const auto what = testing::Message() << image.width << " wide, border " << border << " allowance " << allowance;
  ASSERT_EQ(with_marks, expected) << what;
  ASSERT_EQ(without_marks, expected) << what;
  ASSERT_EQ(take(marks, image.pixels.size()), expected_marks.pixels) << what;
}

}  // namespace

TEST(MyErodeEx, StopsAtThePixelThatExceedsTheAllowance) {
  Random random(22);
  // Blocks and parts of them, one band of rows and several.
  for (const auto& [width, height] : {Size{1, 9}, {2, 9}, {17, 7}, {28, 300}, {245, 40}, {733, 13}}) {
    const Image image = speckled(random, width, height);
    Image marks;
    const auto bad = static_cast<int32_t>(reference::erode(image, 1, 100, INT32_MAX, marks));
    for (const int32_t border : {0, 1, 2}) {
      for (int32_t allowance = -2; allowance <= bad + 1; allowance += 1 + bad / 40) {
        expect_defined(image, border, allowance);
      }
    }
  }
}

TEST(MyErodeEx, NeedsANeighbourOnASide) {
  const Image alone(5, 5, {9, 9, 9, 9, 9,  //
                           9, 9, 9, 0, 9,  // diagonal to the one below
                           9, 9, 0, 9, 9,  //
                           9, 9, 9, 9, 9,  //
                           9, 9, 9, 9, 9});
  Image pair = alone;
  pair.at(2, 1) = 0;
  uint32_t count = 77;
  MyErodeEx(alone.data(), 5, 5, 1, 9, 100, &count, nullptr);
  EXPECT_EQ(count, 0U);
  MyErodeEx(pair.data(), 5, 5, 1, 9, 100, &count, nullptr);
  EXPECT_EQ(count, 3U);
  MyErodeEx(pair.data(), 5, 5, 2, 9, 100, &count, nullptr);  // the neighbour lies in the border
  EXPECT_EQ(count, 1U);
  MyErodeEx(pair.data(), 5, 5, -3, 9, 100, &count, nullptr);
  EXPECT_EQ(count, 3U);
}
