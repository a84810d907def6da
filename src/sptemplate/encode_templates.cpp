#include <algorithm>
#include <bit>

#include "frame/eight_bytes.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

namespace {

constexpr uint32_t kLongestRun = 255;  // a run's count is one byte; longer runs are split, the longest parts first
constexpr uint32_t kTrailer = 1;       // bytes: the version again

constexpr uint32_t kGroup = 64;  // positions whose run ends are found together

// The lowest bits of eight bytes of 0 or 1, the first byte's lowest: byte k moves to bit 56 + k, and no two meet below.
uint64_t gather_bits(const uint8_t* flags) { return quo::load_eight(flags) * 0x0102040810204080 >> 56; }

// A bit for each of at most 64 positions that differs from the one after it.
uint64_t find_run_ends(const uint8_t* profile, uint32_t count) {
  uint8_t ends[kGroup];
  for (uint32_t i = 0; i < count; i++) ends[i] = profile[i] != profile[i + 1] ? 1 : 0;
  for (uint32_t i = count; i < kGroup; i++) ends[i] = 0;
  uint64_t bits = 0;
  for (uint32_t i = 0; i < kGroup; i += 8) bits |= gather_bits(ends + i) << i;
  return bits;
}

uint8_t* write_run(uint8_t value, uint32_t length, uint8_t* coded) {
  for (; length > kLongestRun; length -= kLongestRun) {
    *coded++ = value;
    *coded++ = static_cast<uint8_t>(kLongestRun);
  }
  *coded++ = value;
  *coded++ = static_cast<uint8_t>(length);
  return coded;
}

// Writes a coded section of at least one position and returns its end.
uint8_t* encode_section(const quo::Section& section, uint8_t* coded) {
  quo::write_u16(coded, section.length);
  coded += quo::kSectionHeader;
  const uint32_t last = section.length - 1;
  uint32_t begin = 0;  // of the run
  for (uint32_t first = 0; first < last; first += kGroup) {
    const uint8_t* const group = section.profile + first;
    for (uint64_t ends = find_run_ends(group, std::min(kGroup, last - first)); ends != 0; ends &= ends - 1) {
      const uint32_t end = first + static_cast<uint32_t>(std::countr_zero(ends)) + 1;
      coded = write_run(section.profile[begin], end - begin, coded);
      begin = end;
    }
  }
  return write_run(section.profile[begin], section.length - begin, coded);
}

// Codes all sections and returns their end, null when the record is none: its sections do not fill it exactly, or one
// is empty, which the coded form cannot express. A section of n bytes takes at most 2 + 2n bytes, less than twice its 2
// + n in the record.
uint8_t* encode_sections(const uint8_t* record, uint8_t* coded) {
  quo::SectionWalk walk(record);
  while (!walk.at_end()) {
    quo::Section section{};
    if (!walk.next(section) || section.length == 0) return nullptr;
    coded = encode_section(section, coded);
  }
  return coded;
}

}  // namespace

uint32_t EncodeSpTemplates(const uint8_t* record, uint8_t** sp_template, uint32_t* size) {
  const uint8_t version = record[0];
  const uint32_t payload = quo::payload_length(record);
  quo::Scratch<uint8_t> work;
  if (!work.allocate(2 * payload)) return QUO_NO_MEMORY;
  const uint8_t* const end = encode_sections(record, work.get());
  if (end == nullptr) return QUO_NO_MEMORY;
  if (sp_template == nullptr) return QUO_OK;

  const auto coded = static_cast<uint32_t>(end - work.get());
  const uint32_t total = quo::kRecordHeader + coded + kTrailer;
  quo::Scratch<uint8_t> built;
  if (!built.allocate(total)) return QUO_NO_MEMORY;
  built[0] = version;
  quo::write_u16(&built[1], payload);
  quo_memcpy(&built[quo::kRecordHeader], work.get(), coded);
  built[total - kTrailer] = version;
  *sp_template = built.release();
  if (size != nullptr) *size = total;
  return QUO_OK;
}
