#include <algorithm>
#include <cstddef>

#include "frame/multiversion.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

namespace {

constexpr uint32_t kLargestPayload = 1020;
constexpr uint32_t kStep = 16;      // bytes of most runs, a vector register
constexpr uint32_t kShortRun = 48;  // bytes of nearly all

// A section takes as many coded bytes as decoded ones for its header and at most twice as many for its runs.
static_assert(QUO_SP_MAX_READ ==
              quo::kRecordHeader + quo::kSectionHeader + 2 * (kLargestPayload - quo::kSectionHeader) + 1);

using Step = uint8_t __attribute__((vector_size(kStep)));

/** Expands the coded sections of a template. Input is read only while the record has room for what it codes, so the
 *  room bounds the reading as well as the writing. */
class SectionDecoder {
 public:
  SectionDecoder(const uint8_t* coded, uint8_t* payload, uint32_t length)
      : coded_(coded), payload_(payload), length_(length) {}

  /** Expands all sections; false when one does not fit. */
  [[gnu::always_inline]] inline bool decode_all() {
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
  [[gnu::always_inline]] inline bool decode_section() {
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
  // follows, for a record is only handed out when it is full. Leaves to the caller the runs that cannot be written
  // so, and those that are none.
  [[gnu::always_inline]] inline void expand_short_runs(uint32_t end) {
    if (length_ < kStep) return;
    const uint8_t* const last_step = payload_ + std::min(end, length_ - kStep + 1);
    const uint8_t* const full = payload_ + length_;
    const uint8_t* coded = coded_;
    uint8_t* run = payload_ + at_;
    for (uint32_t count; run < last_step; run += count, coded += 2) {
      const Step step = Step{} + coded[0];
      __builtin_memcpy(run, &step, kStep);
      count = coded[1];
      if (count != 0 && count <= kStep) continue;
      if (count == 0 || count > kShortRun || full - run < ptrdiff_t{kShortRun}) break;
      for (uint32_t i = kStep; i < kShortRun; i += kStep) __builtin_memcpy(run + i, &step, kStep);
    }
    coded_ = coded;
    at_ = static_cast<uint32_t>(run - payload_);
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

// The first byte after all sections, or null when one does not fit. Most of the time goes into filling steps with one
// byte, which takes a single instruction of the wider sets.
QUO_MULTIVERSION const uint8_t* decode_sections(const uint8_t* coded, uint8_t* payload, uint32_t length) {
  SectionDecoder sections(coded, payload, length);
  return sections.decode_all() ? sections.position() : nullptr;
}

}  // namespace

uint32_t DecodeSpTemplates(const uint8_t* sp_template, uint8_t** record, uint32_t* size) {
  const uint8_t version = sp_template[0];
  const uint32_t payload = quo::payload_length(sp_template);
  if (payload > kLargestPayload) return QUO_BAD_TEMPLATE;
  quo::Scratch<uint8_t> built;
  if (!built.allocate(quo::kRecordHeader + payload)) return QUO_NO_MEMORY;
  built[0] = version;
  quo::write_u16(&built[1], payload);

  const uint8_t* const end = decode_sections(sp_template + quo::kRecordHeader, &built[quo::kRecordHeader], payload);
  if (end == nullptr) return QUO_BAD_TEMPLATE;
  if (version != 0 && *end != version) return QUO_BAD_TEMPLATE;
  if (size != nullptr) *size = quo::kRecordHeader + payload;
  if (record != nullptr) *record = built.release();
  return QUO_OK;
}
