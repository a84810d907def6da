#include <sys/mman.h>

#include <map>

#include "support/testing.h"

using namespace quo_test;

namespace {

constexpr int32_t kWidth = 50, kHeight = 40;
constexpr int kNoChoice = -1;

// A frame of the given gray levels in the given numbers; the rest is 255, which takes part in nothing.
Image frame_of(std::map<int, int> levels, int32_t width = kWidth, int32_t height = kHeight) {
  Image frame(width, height, 255);
  auto next = frame.pixels.begin();
  for (const auto& [level, count] : levels) next = std::fill_n(next, count, static_cast<uint8_t>(level));
  return frame;
}

// The index of the chosen frame. Frames without pixels stand for null entries.
int choose(const std::vector<Image>& frames, int32_t width = kWidth, int32_t height = kHeight) {
  std::vector<const uint8_t*> pointers;
  for (const Image& frame : frames) pointers.push_back(frame.pixels.empty() ? nullptr : frame.data());
  uint8_t chosen = 77;
  const auto count = static_cast<uint8_t>(frames.size());
  const uint32_t result = FP_ChooseBestHist(pointers.data(), count, width, height, &chosen);
  EXPECT_EQ(FP_ChooseBestHist(pointers.data(), count, width, height, nullptr), result);
  if (result == QUO_OK) return chosen;
  EXPECT_EQ(result, QUO_NO_CANDIDATE);
  EXPECT_EQ(chosen, 77);
  return kNoChoice;
}

// Two levels, half of the pixels each, deviate by half of their distance.
const Image kDark = frame_of({{10, 600}, {100, 1400}});
const Image kContrasted = frame_of({{100, 800}, {140, 1200}});   // deviation 19.2, 40 % low
const Image kMoreContrast = frame_of({{80, 800}, {150, 1200}});  // deviation 33.6, 40 % low
const Image kFlatBright = frame_of({{150, 2000}});
const Image kFlatMid = frame_of({{100, 1000}, {125, 1000}});  // deviation 12.5
const Image kFlat = frame_of({{100, 2000}});
const Image kEmpty = frame_of({});
const Image kNull;

}  // namespace

TEST(FP_ChooseBestHist, FollowsItsRules) {
  const struct {
    const char* name;
    std::vector<Image> frames;
    int chosen;
  } cases[] = {
      {"the earliest of equal low shares", {kDark, kContrasted, kMoreContrast}, 1},
      {"the largest low share", {kContrasted, frame_of({{100, 900}, {140, 1100}}), kContrasted}, 1},
      {"contrast without low pixels", {frame_of({{128, 1000}, {199, 1000}})}, kNoChoice},
      {"all dark", {kDark, kDark, kDark, kDark}, 3},
      {"all dark but a null", {kDark, kDark, kNull}, kNoChoice},
      {"all dark but an unclassified one", {kDark, kEmpty}, kNoChoice},
      {"one dark, flat bright ones", {kDark, kFlatBright, kFlatBright}, 0},
      {"two dark, one flat bright", {kDark, kDark, kFlatBright}, kNoChoice},
      {"dark ones, one flat mid", {kDark, kDark, kFlatMid}, 2},
      {"flat bright goes before flat mid", {kFlatMid, kFlatBright, kDark}, 2},
      {"two flat mid", {kDark, kFlatMid, kFlatMid}, kNoChoice},
      {"no dark one", {kFlatBright, kFlatMid, kFlat}, kNoChoice},
      {"flat ones count as nothing", {kFlat, kDark, kFlat}, kNoChoice},
      {"nothing", {kNull, kNull}, kNoChoice},
      {"white", {kEmpty}, kNoChoice},
      {"no frames", {}, 255},
  };
  for (const auto& c : cases) EXPECT_EQ(choose(c.frames), c.chosen) << c.name;
}

// Each pair lies on the two sides of a limit; a dark frame alone is chosen, beside a flat mid one that one is.
TEST(FP_ChooseBestHist, DrawsItsLimits) {
  EXPECT_EQ(choose({frame_of({{14, 1001}, {15, 1}})}), 0);
  EXPECT_EQ(choose({frame_of({{14, 999}, {15, 1}})}), kNoChoice) << "1000 pixels are too few";
  EXPECT_EQ(choose({frame_of({{14, 1000}, {200, 1}})}), kNoChoice) << "nothing usable";
  EXPECT_EQ(choose({frame_of({{14, 501}, {15, 1499}})}), 0);
  EXPECT_EQ(choose({frame_of({{14, 500}, {15, 1500}})}), kNoChoice) << "25 % is not dark";
  EXPECT_EQ(choose({frame_of({{100, 1000}, {130, 1000}})}), 0) << "a deviation of 15 is contrast";
  EXPECT_EQ(choose({frame_of({{100, 1000}, {129, 1000}})}), kNoChoice);
  EXPECT_EQ(choose({frame_of({{100, 1000}, {129, 900}, {200, 100}})}), kNoChoice) << "200 adds no contrast";
  EXPECT_EQ(choose({kDark, frame_of({{100, 1000}, {121, 1000}})}), 1) << "flat mid above 10";
  EXPECT_EQ(choose({kDark, frame_of({{100, 1000}, {120, 1000}})}), kNoChoice) << "a deviation of 10 is flat";
  EXPECT_EQ(choose({kDark, frame_of({{127, 199}, {130, 1801}})}), 0) << "flat bright below 10 % low";
  EXPECT_EQ(choose({kDark, frame_of({{127, 200}, {130, 1800}})}), kNoChoice);
  EXPECT_EQ(choose({kDark, frame_of({{127, 199}, {128, 1}, {130, 1800}})}), 0) << "128 is high";
}

TEST(FP_ChooseBestHist, CountsModulo65536) {
  // 65536 pixels of a level vanish, and the others make a dark frame; 65535 make it bright.
  const int32_t width = 300, height = 300;
  EXPECT_EQ(choose({frame_of({{14, 600}, {20, 1400}, {190, 65536}}, width, height)}, width, height), 0);
  EXPECT_EQ(choose({frame_of({{14, 600}, {20, 1400}, {190, 65535}}, width, height)}, width, height), kNoChoice);
  EXPECT_EQ(choose({frame_of({{14, 65536 + 500}, {20, 1500}}, width, height)}, width, height), kNoChoice);
  EXPECT_EQ(choose({frame_of({{14, 65536 + 501}, {20, 1499}}, width, height)}, width, height), 0);
}

// A row beyond the first 2^30 pixels decides; the 2^30 black ones before it vanish from counts modulo 65536.
TEST(FP_ChooseBestHist, CountsEveryPixelOfAHugeFrame) {
  if (sizeof(void*) < 8) GTEST_SKIP() << "no room for 2^30 pixels";
  const int32_t width = 65536, height = 16385;
  const size_t size = size_t{65536} * 16385, row = size_t{65536} * 16384;
  void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  auto* const frame = static_cast<uint8_t*>(memory);
  for (int32_t x = 0; x < width; x++) frame[row + static_cast<size_t>(x)] = x < 26000 ? 100 : 140;
  uint8_t chosen = 77;
  const uint8_t* const frames[] = {frame};
  EXPECT_EQ(FP_ChooseBestHist(frames, 1, width, height, &chosen), QUO_OK);
  EXPECT_EQ(chosen, 0);
  munmap(memory, size);
}
