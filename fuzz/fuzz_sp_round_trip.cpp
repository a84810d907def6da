// Any bytes as a profile record: what the encoder accepts, the decoder turns back into the same record. And the record
// of any template that decodes, encoded and decoded again, is itself. Input: failing allocation, 0 or 1 for a record or
// a template, then its bytes.
#include "reference/sptemplate.h"
#include "support/fuzz.h"

using namespace quo_fuzz;

namespace {

constexpr size_t kLargestDecoded = 1020;  // payload

size_t payload(const Bytes& record) { return record[1] * 256U + record[2]; }

/** Whether non-empty sections fill the record exactly. */
bool is_record(const Bytes& record) {
  size_t at = 3;
  while (at + 2 <= record.size()) {
    const size_t length = record[at] * 256U + record[at + 1];
    if (length == 0) return false;
    at += 2 + length;
  }
  return at == record.size();
}

/** Encodes, decodes, compares. The record is `record.size()` bytes, the template as many as the encoder says. */
void round_trip(const Bytes& record, uint8_t failing) {
  const auto input = exact(record, record.size());
  uint8_t* coded = nullptr;
  uint32_t coded_size = 77;
  arm_hooks(failing);
  const uint32_t encoded = EncodeSpTemplates(input.get(), &coded, &coded_size);
  if (encoded != QUO_OK) {
    require(encoded == QUO_NO_MEMORY && coded == nullptr && coded_size == 77, "nothing is written on failure");
    require(allocation_failed() || !is_record(record), "a record is encoded");
    require_no_leak();
    return;
  }
  require(is_record(record), "only a record is encoded");
  const Bytes bytes = take(coded, coded_size);
  const auto sp_template = exact(bytes, bytes.size());
  uint8_t* decoded = nullptr;
  uint32_t decoded_size = 77;
  const uint32_t result = DecodeSpTemplates(sp_template.get(), &decoded, &decoded_size);
  if (payload(record) > kLargestDecoded) {
    require(result == QUO_BAD_TEMPLATE, "a long template is rejected");
  } else if (result != QUO_OK) {
    require(result == QUO_NO_MEMORY && allocation_failed(), "an encoded record decodes");
  } else {
    require(decoded_size == record.size() && take(decoded, decoded_size) == record, "the record comes back");
  }
  require_no_leak();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const uint8_t failing = input.byte();
  if (input.byte() % 2 == 0) {
    const Bytes record = record_from(input.rest());
    if (!record.empty()) round_trip(record, failing);
  } else {
    const reference::Decoded decoded = reference::decoded(input.rest());
    if (decoded.accepted) round_trip(decoded.record, failing);
  }
  return 0;
}
