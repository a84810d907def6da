#include <algorithm>

#include "frame/eight_bytes.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

namespace {

constexpr uint32_t kLargestPayload = 1020;
constexpr uint32_t kStep = 16;      // bytes of most runs
constexpr uint32_t kShortRun = 48;  // bytes of nearly all

// A section takes as many coded bytes as decoded ones for its header and at most twice as many for its runs.
static_assert(QUO_SP_MAX_READ ==
              quo::kRecordHeader + quo::kSectionHeader + 2 * (kLargestPayload - quo::kSectionHeader) + 1);

/** Expands the coded sections of a template. Input is read only while the record has room for what it codes, so the
 *  room bounds the reading as well as the writing. */
class SectionDecoder {
 public:
  SectionDecoder(const uint8_t* coded, uint8_t* payload, uint32_t length)
      : coded_(coded), payload_(payload), length_(length) {}

  /** Expands all sections; false when one does not fit. */
  bool decode_all() {
    while (at_ < length_) {
      if (!decode_section()) return false;
    }
    return true;
  }

  /** The first byte not read yet. */
  const uint8_t* position() const { return coded_; }

 private:
  uint32_t room() const { return length_ - at_; }

  // A section takes at least one run, also when its length is 0; its last run may exceed its length.
  bool decode_section() {
    if (room() < quo::kSectionHeader) return false;
    const uint32_t length = std::max(quo::read_u16(coded_), 1U);
    payload_[at_] = coded_[0];
    payload_[at_ + 1] = coded_[1];
    advance(quo::kSectionHeader);
    if (length > room()) return false;
    const uint32_t end = at_ + length;
    for (;;) {
      expand_short_runs(end);
      if (at_ >= end) return true;
      const uint32_t count = coded_[1];
      if (count == 0 || count > room()) return false;
      quo_memset(payload_ + at_, coded_[0], count);
      advance(count);
    }
  }

  // Runs are written in whole steps where the record has room for them: what is too much is overwritten by what
  // follows, for a record is only handed out when it is full. Leaves every run that cannot be written so, or not at
  // all, to the caller.
  void expand_short_runs(uint32_t end) {
    if (length_ < kStep) return;
    const uint32_t last_step = std::min(end, length_ - kStep + 1);
    const uint8_t* coded = coded_;
    uint32_t at = at_;
    for (uint32_t count; at < last_step; at += count, coded += 2) {
      count = coded[1];
      uint8_t* const run = payload_ + at;
      const uint64_t eight = coded[0] * quo::kEightTimes;
      for (uint32_t i = 0; i < kStep; i += 8) quo::store_eight(run + i, eight);
      if (count != 0 && count <= kStep) continue;
      if (count == 0 || count > kShortRun || length_ - at < kShortRun) break;
      for (uint32_t i = kStep; i < kShortRun; i += 8) quo::store_eight(run + i, eight);
    }
    coded_ = coded;
    at_ = at;
  }

  // Headers and runs are both two coded bytes.
  void advance(uint32_t decoded) {
    coded_ += 2;
    at_ += decoded;
  }

  const uint8_t* coded_;
  uint8_t* payload_;
  uint32_t length_;
  uint32_t at_ = 0;  // bytes of the payload that are decoded
};

}  // namespace

uint32_t DecodeSpTemplates(const uint8_t* sp_template, uint8_t** record, uint32_t* size) {
  const uint8_t version = sp_template[0];
  const uint32_t payload = quo::payload_length(sp_template);
  if (payload > kLargestPayload) return QUO_BAD_TEMPLATE;
  quo::Scratch<uint8_t> built;
  if (!built.allocate(quo::kRecordHeader + payload)) return QUO_NO_MEMORY;
  built[0] = version;
  quo::write_u16(&built[1], payload);

  SectionDecoder sections(sp_template + quo::kRecordHeader, &built[quo::kRecordHeader], payload);
  if (!sections.decode_all()) return QUO_BAD_TEMPLATE;
  if (version != 0 && *sections.position() != version) return QUO_BAD_TEMPLATE;
  if (size != nullptr) *size = quo::kRecordHeader + payload;
  if (record != nullptr) *record = built.release();
  return QUO_OK;
}
