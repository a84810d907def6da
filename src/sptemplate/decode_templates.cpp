#include <algorithm>

#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

namespace {

constexpr uint32_t kLargestPayload = 1020;
constexpr uint32_t kShortRun = 16;

// A section takes as many coded bytes as decoded ones for its header and at most twice as many for its runs.
static_assert(QUO_SP_MAX_READ ==
              quo::kRecordHeader + quo::kSectionHeader + 2 * (kLargestPayload - quo::kSectionHeader) + 1);

/** Expands the coded sections of a template. Input is read only while the record has room for what it codes, so the
 *  room bounds the reading as well as the writing. */
class SectionDecoder {
 public:
  SectionDecoder(const uint8_t* coded, uint8_t* payload, uint32_t length)
      : coded_(coded), out_(payload), room_(length) {}

  /** Expands all sections; false when one does not fit. */
  bool decode_all() {
    while (room_ > 0) {
      if (!decode_section()) return false;
    }
    return true;
  }

  /** The first byte not read yet. */
  const uint8_t* position() const { return coded_; }

 private:
  // A section takes at least one run, also when its length is 0; its last run may exceed its length.
  bool decode_section() {
    if (room_ < quo::kSectionHeader) return false;
    const uint32_t length = std::max(quo::read_u16(coded_), 1U);
    out_[0] = coded_[0];
    out_[1] = coded_[1];
    advance(quo::kSectionHeader);
    if (length > room_) return false;
    for (uint32_t covered = 0; covered < length;) {
      const uint8_t value = coded_[0];
      const uint32_t count = coded_[1];
      if (count == 0 || count > room_) return false;
      fill_run(value, count);
      advance(count);
      covered += count;
    }
    return true;
  }

  // Most runs are short. Where the record has room for sixteen bytes all are written: those after the run are
  // overwritten by what follows, for a record is only handed out when it is full.
  void fill_run(uint8_t value, uint32_t count) {
    if (count <= kShortRun && room_ >= kShortRun) {
      for (uint32_t i = 0; i < kShortRun; i++) out_[i] = value;
    } else {
      quo_memset(out_, value, count);
    }
  }

  // Headers and runs are both two coded bytes.
  void advance(uint32_t decoded) {
    coded_ += 2;
    out_ += decoded;
    room_ -= decoded;
  }

  const uint8_t* coded_;
  uint8_t* out_;
  uint32_t room_;  // bytes that the record still takes
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
