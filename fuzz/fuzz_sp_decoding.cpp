// Any bytes as an Sp template: the decoder gives what the reference gives, looks at no more bytes, and the matcher
// scores what was decoded. Input: failing allocation, then the template.
#include "reference/sptemplate.h"
#include "support/fuzz.h"

using namespace quo_fuzz;

namespace {

void decode(const uint8_t* sp_template, const reference::Decoded& expected, uint8_t failing) {
  uint8_t* record = nullptr;
  uint32_t size = 77;
  arm_hooks(failing);
  const uint32_t result = DecodeSpTemplates(sp_template, &record, &size);
  if (result == QUO_OK) {
    require(expected.accepted, "only a valid template is decoded");
    require(size == expected.record.size() && take(record, size) == expected.record, "the record is the reference's");
  } else {
    const bool no_memory = allocation_failed();
    require(result == (no_memory ? QUO_NO_MEMORY : QUO_BAD_TEMPLATE), "the result code tells the reason");
    require(no_memory || !expected.accepted, "a valid template is decoded");
    require(record == nullptr && size == 77, "nothing is written on failure");
  }
  require_no_leak();
}

void match(const uint8_t* sp_template, const reference::Decoded& expected, uint8_t failing) {
  uint32_t score = 777;
  arm_hooks(failing);
  const uint32_t result = FP_MatchSpTemplates(sp_template, sp_template, &score);
  if (result == QUO_OK) {
    require(score == reference::match(expected.record, expected.record), "the score is the reference's");
  } else {
    require(result == QUO_TEMPLATE_MISFIT && score == 777, "nothing is written on failure");
    require(allocation_failed() || !expected.accepted || !reference::match(expected.record, expected.record),
            "a template matches itself");
  }
  require_no_leak();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const uint8_t failing = input.byte();
  const reference::Decoded expected = reference::decoded(input.rest());
  require(expected.read <= QUO_SP_MAX_READ, "the bound on reading holds");
  const auto sp_template = exact(input.rest(), expected.read);
  decode(sp_template.get(), expected, failing);
  match(sp_template.get(), expected, failing);
  return 0;
}
