#include "reference/signal.h"
#include "support/testing.h"

using namespace quo_test;

namespace {

struct Bubbles {
  uint32_t result;
  uint32_t count = 77;
  std::optional<Image> image;
};

Bubbles find(const Image& frame) {
  Bubbles bubbles;
  uint8_t* image = nullptr;
  const auto width = static_cast<uint32_t>(frame.width), height = static_cast<uint32_t>(frame.height);
  bubbles.result = CreateBubbleImage(ReadOnly(frame).data(), width, height, &bubbles.count, &image);
  if (image != nullptr) {
    bubbles.image = frame;
    bubbles.image->pixels = take(image, frame.pixels.size());
  }
  return bubbles;
}

// A checkerboard of 90 and 110: every block has the deviation 10, so the threshold is 140 as long as the mean is 100.
Image checkerboard(const std::function<bool(int32_t, int32_t)>& is_bright) {
  return Image(100, 100, [&](int32_t x, int32_t y) { return is_bright(x, y) ? 200 : (x + y) % 2 == 0 ? 90 : 110; });
}

auto square(int32_t left, int32_t top, int32_t side) {
  return [=](int32_t x, int32_t y) { return x >= left && x < left + side && y >= top && y < top + side; };
}

}  // namespace

TEST(CreateBubbleImage, KeepsTheInsideOfBrightBlobs) {
  const struct {
    Image frame;
    uint32_t count;
  } cases[] = {
      {checkerboard(square(50, 50, 1)), 0}, {checkerboard([](int32_t x, int32_t) { return x == 50; }), 0},
      {checkerboard(square(50, 50, 3)), 1}, {checkerboard(square(50, 50, 5)), 9},
      {checkerboard(square(0, 0, 5)), 4},    // of the nine inside, those two pixels from the edge
      {checkerboard(square(97, 97, 3)), 0},  // the one inside is too near to the edge
  };
  for (const auto& c : cases) {
    const Bubbles bubbles = find(c.frame);
    EXPECT_EQ(bubbles.result, QUO_OK);
    EXPECT_EQ(bubbles.count, c.count);
    EXPECT_EQ(bubbles.image, reference::bubbles(c.frame));
  }
  const Bubbles none = find(checkerboard([](int32_t, int32_t) { return false; }));
  EXPECT_EQ(none.result, QUO_OK);
  EXPECT_EQ(none.count, 0U);
  EXPECT_FALSE(none.image.has_value());

  const Bubbles uniform = find(Image(30, 24, 137));  // no deviation, so every pixel reaches the mean
  EXPECT_EQ(uniform.count, 26U * 20);
  Image darker(30, 24, 137);
  darker.at(15, 12) = 136;  // the mean, rounded down
  EXPECT_EQ(find(darker).count, 26U * 20);
}

// Blocks half black, half white, give a deviation of 127; the mean tells whether the frame counts as saturated.
TEST(CreateBubbleImage, LiftsTheThresholdOnlyInNoisySaturatedFrames) {
  auto frame = [](int32_t white_rows) {  // rows of the upper part alternate between 0 and 254; below, all white
    return Image(64, 100, [=](int32_t x, int32_t y) { return y >= 100 - white_rows ? 255 : x % 2 == 0 ? 0 : 254; });
  };
  EXPECT_FALSE(find(frame(11)).image.has_value());  // 11 % white
  const Bubbles capped = find(frame(10));           // 10 % white: not more than a tenth
  ASSERT_TRUE(capped.image.has_value());
  EXPECT_EQ(capped.count, 60U * 7);  // two rows from the edge, one within the blob
}

TEST(CreateBubbleImage, EqualsItsDefinition) {
  Random random(6);
  uint32_t found = 0;
  for (int i = 0; i < 400; i++) {
    Image frame = generate(random, random.between(16, 80), random.between(16, 80), kAllFills[random.next() % 6]);
    if (i % 2 == 0) {  // less contrast, and a bright blob
      const auto blob = square(random.between(0, 40), random.between(0, 40), random.between(1, 9));
      frame =
          Image(frame.width, frame.height, [&](int32_t x, int32_t y) { return blob(x, y) ? 250 : frame.at(x, y) / 4; });
    }
    const Bubbles bubbles = find(frame);
    const auto expected = reference::bubbles(frame);
    ASSERT_EQ(bubbles.result, QUO_OK);
    ASSERT_EQ(bubbles.image, expected) << frame.width << "x" << frame.height;
    const auto count = expected ? std::count(expected->pixels.begin(), expected->pixels.end(), 255) : 0;
    ASSERT_EQ(bubbles.count, count);
    found += count > 0 ? 1 : 0;
  }
  EXPECT_GT(found, 50U);
}

TEST(CreateBubbleImage, RefusesSizesBeyondMemory) {
  reset_hooks();
  for (const auto& [width, height] : {std::pair{1U << 20, 1U << 20}, {1U << 16, 1U << 15}}) {
    uint32_t count = 77;
    EXPECT_EQ(CreateBubbleImage(nullptr, width, height, &count, nullptr), QUO_NO_MEMORY) << width << "x" << height;
    EXPECT_EQ(count, 0U);
  }
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
