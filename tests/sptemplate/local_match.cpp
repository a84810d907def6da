#include "reference/sptemplate.h"
#include "sptemplate/records.h"

using namespace quo_test;
using reference::SpanAndEqual;

namespace {

SpanAndEqual local_match(const Bytes& first, const Bytes& second) {
  Guarded a(first, Guard::kAfter), b(second, Guard::kAfter);
  SpanAndEqual result{99, 99};
  LocalMatchSpTemplates(a.data(), b.data(), static_cast<uint16_t>(first.size()), &result.first, &result.second);
  return result;
}

}  // namespace

TEST(LocalMatchSpTemplates, CountsEqualBytesBetweenTheOuterDarkPositions) {
  const Bytes first{255, 255, 255, 0, 255, 254, 0, 0, 255, 255, 255, 255};
  const Bytes second{255, 255, 255, 255, 255, 255, 0, 0, 255, 255, 0, 254};
  EXPECT_EQ(local_match(first, second), SpanAndEqual(8, 5));
  EXPECT_EQ(local_match({}, {}), SpanAndEqual(0, 0));
  EXPECT_EQ(local_match({0}, {0}), SpanAndEqual(0, 0));
  EXPECT_EQ(local_match(Bytes(65535, 0), Bytes(65535, 0)), SpanAndEqual(65535, 65535));
}

TEST(LocalMatchSpTemplates, EqualsItsDefinitionForAllShortProfiles) {
  const uint8_t values[] = {0, 254, 255};
  for (int code = 0; code < 6561; code++) {  // of four positions in each
    Bytes first, second;
    for (int rest = code, i = 0; i < 4; i++, rest /= 9) {
      first.push_back(values[rest % 3]);
      second.push_back(values[rest / 3 % 3]);
    }
    ASSERT_EQ(local_match(first, second), reference::local_match(first, second)) << "code " << code;
  }
  Random random(56);
  for (int round = 0; round < 300; round++) {
    const auto n = static_cast<size_t>(random.between(5, 200));
    const Bytes first = random_profile(random, n), second = random_profile(random, n);
    ASSERT_EQ(local_match(first, second), reference::local_match(first, second));
  }
}
