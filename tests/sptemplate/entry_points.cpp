#include <gtest/gtest.h>

#include "quoFPAlg.h"
#include "sptemplate/records.h"
#include "support/frames.h"
#include "support/guarded.h"
#include "support/hooks.h"

using namespace quo_test;

namespace {

Bytes template_of(const Image& frame) {
  uint8_t* sp_template = nullptr;
  uint32_t size = 0;
  EXPECT_EQ(FP_ExtractSpTemplates(frame.data(), static_cast<uint32_t>(frame.width), static_cast<uint32_t>(frame.height),
                                  &sp_template, &size),
            QUO_OK);
  const Bytes bytes(sp_template, sp_template + size);
  FP_DeleteSpTemplates(&sp_template);
  EXPECT_EQ(sp_template, nullptr);
  return bytes;
}

uint32_t match(const Bytes& first, const Bytes& second, uint32_t* score) {
  Guarded a(first, Guard::kAfter), b(second, Guard::kAfter);
  return FP_MatchSpTemplates(a.data(), b.data(), score);
}

Image finger(uint64_t seed, int32_t width = 160, int32_t height = 160) {
  Random random(seed);
  return stripes(width, height, [&, slope = random.between(1, 3), shift = random.between(0, 7)](int32_t x, int32_t y) {
    return x + y * slope / 2 + shift;
  });
}

}  // namespace

TEST(FP_ExtractSpTemplates, CodesTheProfileRecordOfTheFrame) {
  Random random(57);
  for (const Fill fill : kAllFills) {
    const Image frame = generate(random, 160, 160, fill);
    const Bytes sp_template = template_of(frame);
    EXPECT_EQ(Bytes(sp_template.begin(), sp_template.begin() + 3), (Bytes{1, 0x03, 0x3C}));
    EXPECT_EQ(sp_template.back(), 1);
    uint8_t *expected = nullptr, *decoded = nullptr;
    uint32_t size = 0;
    ASSERT_EQ(ExtractSpTemplates(frame.data(), 160, 160, &expected, &size), QUO_OK);
    ASSERT_EQ(DecodeSpTemplates(sp_template.data(), &decoded, nullptr), QUO_OK);
    EXPECT_EQ(take(decoded, size), take(expected, size));
  }
}

TEST(FP_ExtractSpTemplates, DoesNothingWithoutAnOutputAndRefusesOtherSizes) {
  const Image frame(30, 30);
  uint32_t size = 77;
  uint8_t* sp_template = nullptr;
  reset_hooks();
  EXPECT_EQ(FP_ExtractSpTemplates(frame.data(), 30, 30, nullptr, &size), QUO_OK);
  EXPECT_TRUE(hooks().sizes.empty());
  for (const uint32_t width : {0U, 24U, 0x80000000U, 0xFFFFFFFFU, 0x7FFFFFFFU}) {
    EXPECT_EQ(FP_ExtractSpTemplates(frame.data(), width, 30, &sp_template, &size), QUO_NO_MEMORY) << width;
    EXPECT_EQ(FP_ExtractSpTemplates(frame.data(), 30, width, &sp_template, &size), QUO_NO_MEMORY) << width;
  }
  EXPECT_EQ(size, 77U);
  EXPECT_EQ(sp_template, nullptr);
  EXPECT_TRUE(hooks().sizes.empty());
}

TEST(FP_ExtractSpTemplates, WritesNothingWithoutMemory) {
  const Image frame = finger(1);
  uint8_t* sp_template = nullptr;
  uint32_t size = 77;
  const uint64_t allocations =
      for_each_failing_allocation([&] { return FP_ExtractSpTemplates(frame.data(), 160, 160, &sp_template, &size); },
                                  [&](uint64_t index, uint32_t result) {
                                    EXPECT_EQ(result, QUO_NO_MEMORY) << "allocation " << index;
                                    EXPECT_EQ(sp_template, nullptr);
                                    EXPECT_EQ(size, 77U);
                                    EXPECT_EQ(hooks().live_blocks, 0U);
                                  });
  EXPECT_EQ(allocations, 9U);
  const std::vector<uint32_t> sizes = hooks().sizes;  // record, six lines, work buffer, template
  EXPECT_EQ(std::vector<uint32_t>(sizes.begin(), sizes.end() - 1),
            (std::vector<uint32_t>{831, 1096, 1096, 1096, 1096, 1096, 1096, 1656}));
  EXPECT_EQ(sizes.back(), size);
  FP_DeleteSpTemplates(&sp_template);
  FP_DeleteSpTemplates(&sp_template);  // a second time does nothing
  EXPECT_EQ(hooks().live_blocks, 0U);
  EXPECT_EQ(hooks().bad_frees, 0U);
}

TEST(FP_MatchSpTemplates, ScoresFramesByWhatTheyShow) {
  const Bytes first = template_of(finger(1));
  uint32_t score = 0;
  EXPECT_EQ(match(first, first, &score), QUO_OK);
  EXPECT_EQ(score, 100U);
  EXPECT_EQ(match(first, template_of(Image(160, 160, 255)), &score), QUO_OK);  // nothing dark in common
  EXPECT_EQ(score, 0U);
  EXPECT_EQ(match(first, first, nullptr), QUO_OK);
}

TEST(FP_MatchSpTemplates, RefusesTemplatesThatDoNotDecodeOrFit) {
  const Bytes good = template_of(finger(1)), other_size = template_of(finger(1, 120, 200));
  const Bytes too_large = template_of(finger(1, 200, 185));
  Bytes other_version = good, bad_trailer = good;
  other_version.at(0) = 2;
  other_version.at(good.size() - 1) = 2;
  bad_trailer.at(good.size() - 1) = 2;
  for (const Bytes& bad : {other_size, other_version, bad_trailer, too_large}) {
    reset_hooks();
    uint32_t score = 77;
    EXPECT_EQ(match(good, bad, &score), QUO_TEMPLATE_MISFIT);
    EXPECT_EQ(match(bad, good, &score), QUO_TEMPLATE_MISFIT);
    EXPECT_EQ(score, 77U);
    EXPECT_EQ(hooks().live_blocks, 0U);
  }
  uint32_t score = 77;
  EXPECT_EQ(match(template_of(finger(1, 200, 184)), template_of(finger(1, 200, 184)), &score), QUO_OK);
  EXPECT_EQ(score, 100U);
}

TEST(FP_MatchSpTemplates, WritesNothingWithoutMemory) {
  const Bytes sp_template = template_of(finger(1));
  uint32_t score = 77;
  const uint64_t allocations = for_each_failing_allocation([&] { return match(sp_template, sp_template, &score); },
                                                           [&](uint64_t index, uint32_t result) {
                                                             EXPECT_EQ(result, QUO_TEMPLATE_MISFIT)
                                                                 << "allocation " << index;
                                                             EXPECT_EQ(score, 77U);
                                                             EXPECT_EQ(hooks().live_blocks, 0U);
                                                           });
  EXPECT_EQ(allocations, 2U);
}
