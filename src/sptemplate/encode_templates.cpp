#include <algorithm>

#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

namespace {

constexpr uint32_t kLongestRun = 255;  // a run's count is one byte; longer runs are split, the longest part first
constexpr uint32_t kTrailer = 1;       // bytes: the version again

uint32_t run_length(const uint8_t* profile, uint32_t most) {
  uint32_t length = 1;
  while (length < most && profile[length] == profile[0]) length++;
  return length;
}

// Writes a coded section and returns its end.
uint8_t* encode_section(const quo::Section& section, uint8_t* coded) {
  quo::write_u16(coded, section.length);
  coded += quo::kSectionHeader;
  for (uint32_t i = 0; i < section.length;) {
    const uint32_t run = run_length(section.profile + i, std::min(section.length - i, kLongestRun));
    *coded++ = section.profile[i];
    *coded++ = static_cast<uint8_t>(run);
    i += run;
  }
  return coded;
}

// Codes all sections and returns their end, null when the record is none: its sections do not fill it exactly, or one is
// empty, which the coded form cannot express. A section of n bytes takes at most 2 + 2n bytes, less than twice its 2 + n
// in the record.
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
