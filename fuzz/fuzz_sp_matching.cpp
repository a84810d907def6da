// Any bytes as two profile records, and as two profiles: scores as the reference's, nothing read outside.
// Input: length of the first record (2 bytes), its bytes, then those of the second.
#include <algorithm>

#include "reference/sptemplate.h"
#include "support/fuzz.h"

using namespace quo_fuzz;

namespace {

void match_records(const Bytes& first, const Bytes& second) {
  const auto a = exact(first, first.size()), b = exact(second, second.size());
  const auto expected = reference::match(first, second);
  uint32_t score = 777;
  const uint32_t result = MatchSpTemplates(a.get(), b.get(), &score);
  require(result == (expected ? 0U : 1U), "records that fit together are matched, others are not");
  require(score == expected.value_or(777), "the score is the reference's");
}

void match_profiles(std::span<const uint8_t> first, std::span<const uint8_t> second) {
  const size_t n = std::min<size_t>({first.size(), second.size(), UINT16_MAX});
  const auto a = exact(first, n), b = exact(second, n);
  uint32_t span = 777, equal = 777;
  LocalMatchSpTemplates(a.get(), b.get(), static_cast<uint16_t>(n), &span, &equal);
  require(reference::SpanAndEqual(span, equal) == reference::local_match(first.first(n), second.first(n)),
          "the stretch reaches from the first dark position to the last");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const size_t wanted = input.u16();
  const size_t length = std::min(wanted, input.rest().size());
  const auto first = input.rest().first(length), second = input.rest().subspan(length);
  const Bytes a = record_from(first), b = record_from(second);
  if (!a.empty() && !b.empty()) match_records(a, b);
  match_profiles(first, second);
  return 0;
}
