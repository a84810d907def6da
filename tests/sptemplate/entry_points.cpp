#include "sptemplate/records.h"

using namespace quo_test;

namespace {

Bytes template_of(const Image& frame) {
  uint8_t* sp_template = nullptr;
  uint32_t size = 0;
  const auto width = static_cast<uint32_t>(frame.width), height = static_cast<uint32_t>(frame.height);
  EXPECT_EQ(FP_ExtractSpTemplates(frame.data(), width, height, &sp_template, &size), QUO_OK);
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

TEST(FP_ExtractSpTemplates, RefusesSizesBeyondItsLengthFields) {
  const Image frame(30, 30);
  uint8_t* sp_template = nullptr;
  reset_hooks();
  for (const uint32_t width : {0x80000000U, 0xFFFFFFFFU, 0x7FFFFFFFU}) {
    EXPECT_EQ(FP_ExtractSpTemplates(frame.data(), width, 30, &sp_template, nullptr), QUO_NO_MEMORY) << width;
    EXPECT_EQ(FP_ExtractSpTemplates(frame.data(), 30, width, &sp_template, nullptr), QUO_NO_MEMORY) << width;
  }
  EXPECT_THAT(hooks().sizes, testing::IsEmpty());
}

TEST(FP_MatchSpTemplates, ScoresFramesByWhatTheyShow) {
  const Bytes first = template_of(finger(1));
  uint32_t score = 0;
  EXPECT_EQ(match(first, first, &score), QUO_OK);
  EXPECT_EQ(score, 100U);
  EXPECT_EQ(match(first, template_of(Image(160, 160, 255)), &score), QUO_OK);  // nothing dark in common
  EXPECT_EQ(score, 0U);
}

TEST(FP_MatchSpTemplates, RefusesTemplatesThatDoNotDecodeOrFit) {
  const Bytes good = template_of(finger(1)), other_size = template_of(finger(1, 120, 200));
  const Bytes too_large = template_of(finger(1, 200, 185));
  Bytes other_version = good, bad_trailer = good;
  other_version.at(0) = 2;
  other_version.at(good.size() - 1) = 2;
  bad_trailer.at(good.size() - 1) = 2;
  for (const Bytes& bad : {other_size, other_version, bad_trailer, too_large}) {
    uint32_t score = 77;
    EXPECT_EQ(match(good, bad, &score), QUO_TEMPLATE_MISFIT);
    EXPECT_EQ(match(bad, good, &score), QUO_TEMPLATE_MISFIT);
    EXPECT_EQ(score, 77U);
  }
  uint32_t score = 77;
  EXPECT_EQ(match(template_of(finger(1, 200, 184)), template_of(finger(1, 200, 184)), &score), QUO_OK);
  EXPECT_EQ(score, 100U);
}
