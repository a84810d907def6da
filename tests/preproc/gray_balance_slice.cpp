#include "reference/preproc.h"
#include "support/testing.h"

using namespace quo_test;
using reference::Balance;

namespace {

Balance any_balance(Random& random, int32_t height) {
  Balance how;
  how.radius = random.chance(70) ? 3 : random.between(0, 12);
  how.band_rows = random.chance(40) ? std::max(height, 1) : random.between(1, height + 3);
  how.gain = random.chance(50) ? random.between(2, 5) : random.between(2, 255);
  if (random.chance(40)) {
    how.top = random.between(0, 5);
    how.bottom = random.between(0, 5);
  }
  return how;
}

uint8_t balance(uint8_t* pixels, int32_t width, int32_t height, const Balance& how) {
  return LocalGrayBalance_Slice(pixels, width, height, static_cast<uint32_t>(how.radius),
                                static_cast<uint32_t>(how.band_rows), static_cast<uint8_t>(how.gain),
                                static_cast<uint8_t>(how.top), static_cast<uint8_t>(how.bottom));
}

}  // namespace

TEST(LocalGrayBalance_Slice, StretchesTheDifferenceFromTheLocalMean) {
  // One row within its own radius: the mean of all five pixels is 90.
  const struct {
    int gain;
    Image frame;
    Image expected;
  } cases[] = {
      {10, Image(5, 1, {100, 80, 110, 70, 90}), Image(5, 1, {228, 28, 255, 0, 128})},
      {2, Image(5, 1, {154, 153, 26, 27, 90}), Image(5, 1, {255, 254, 0, 2, 128})},
      {2, Image(5, 1, {254, 255, 253, 0, 0}), Image(5, 1, {254, 255, 255, 0, 0})},  // saturated pixels stay
      {1, Image(5, 1, {100, 80, 110, 70, 90}), Image(5, 1, {100, 80, 110, 70, 90})},
      {0, Image(5, 1, {100, 80, 110, 70, 90}), Image(5, 1, {100, 80, 110, 70, 90})},
  };
  for (auto [gain, frame, expected] : cases) {
    EXPECT_EQ(balance(frame.data(), 5, 1, {.radius = 9, .gain = gain}), QUO_OK);
    EXPECT_EQ(frame, expected);
  }
}

TEST(LocalGrayBalance_Slice, EqualsTheLiteralForm) {
  const auto check = [](const Image& frame, Random& random, Guard guard) {
    const Balance how = any_balance(random, frame.height);
    const auto stretch = [&](uint8_t* pixels) { ASSERT_EQ(balance(pixels, frame.width, frame.height, how), QUO_OK); };
    ASSERT_EQ(changed(frame, guard, stretch), reference::balanced(frame, how))
        << "radius " << how.radius << " band " << how.band_rows << " gain " << how.gain << " context " << how.top << ","
        << how.bottom;
  };
  for_each_frame(29, 40, {{170, 60}, {100, 120}, {150, 100}, {120, 80}}, check);
}

// Flat windows at and around every multiple of every area: where a quotient that is off by one would show.
TEST(LocalGrayBalance_Slice, DividesEverySumExactly) {
  for (int base = 0; base < 254; base++) {
    for (int ones = 0; ones <= 49; ones++) {
      int left = ones;
      const Image frame(11, 11, [&](int32_t x, int32_t y) {
        const bool in_window = x >= 2 && x <= 8 && y >= 2 && y <= 8;
        return in_window && left-- > 0 ? base + 1 : base;
      });
      Image result = frame;
      const Balance how{.band_rows = 11, .gain = 64};
      balance(result.data(), 11, 11, how);
      ASSERT_EQ(result, reference::balanced(frame, how)) << base << " and " << ones;
    }
  }
}

// No band rows are all of them, a wide radius is the whole frame, and context may leave no row.
TEST(LocalGrayBalance_Slice, TakesAnyArguments) {
  Random random(31);
  const Image frame = generate(random, 30, 30, Fill::kNoise);
  const struct {
    uint32_t radius, band_rows;
    uint8_t top, bottom;
    Balance same;
  } cases[] = {{3, 0, 0, 0, {.band_rows = 30, .gain = 4}},
               {UINT32_MAX, 30, 0, 0, {.radius = 30, .band_rows = 30, .gain = 4}},
               {3, 30, 15, 15, {.gain = 1}},
               {3, 30, 255, 0, {.gain = 1}},
               {3, 30, 0, 255, {.gain = 1}}};
  for (const auto& [radius, band_rows, top, bottom, same] : cases) {
    Image result = frame;
    EXPECT_EQ(LocalGrayBalance_Slice(result.data(), 30, 30, radius, band_rows, 4, top, bottom), QUO_OK);
    EXPECT_EQ(result, reference::balanced(frame, same));
  }
  reset_hooks();
  EXPECT_EQ(LocalGrayBalance_Slice(nullptr, 20, 24, 3, UINT32_MAX, 2, 0, 0), QUO_NO_MEMORY);
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}
