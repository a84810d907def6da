#include <cstddef>

#include "frame/scratch.h"
#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

namespace {

constexpr uint8_t kVersion = 1;
constexpr int32_t kMargin = 12;  // pixels left out at each end of a line, and the distance of the outer lines

/** A row or column of the frame without its margins. */
struct Line {
  const uint8_t* first;
  ptrdiff_t step;  // bytes from one pixel to the next
  uint32_t length;
};

struct SampledFrame {
  const uint8_t* pixels;
  ptrdiff_t width;
  ptrdiff_t height;

  Line row(ptrdiff_t y) const { return {pixels + y * width + kMargin, 1, static_cast<uint32_t>(width - 2 * kMargin)}; }
  Line column(ptrdiff_t x) const {
    return {pixels + kMargin * width + x, width, static_cast<uint32_t>(height - 2 * kMargin)};
  }
};

// Payload length of the record: three rows and three columns with their length fields. 0 for a frame that leaves
// nothing between its margins or whose record is too long for the length field.
uint32_t record_payload(int32_t width, int32_t height) {
  if (width <= 2 * kMargin || height <= 2 * kMargin) return 0;
  const int64_t both = static_cast<int64_t>(width) + height - 4 * kMargin;
  const int64_t payload = 3 * (both + 2 * static_cast<int64_t>(quo::kSectionHeader));
  return payload > UINT16_MAX ? 0 : static_cast<uint32_t>(payload);
}

// Writes the section of one line and returns its end, null when memory for the binarisation is missing.
uint8_t* write_section(uint8_t* section, const Line& line) {
  quo::write_u16(section, line.length);
  uint8_t* const profile = section + quo::kSectionHeader;
  if (line.step == 1) {
    quo_memcpy(profile, line.first, line.length);
  } else {
    for (uint32_t i = 0; i < line.length; i++) profile[i] = line.first[static_cast<ptrdiff_t>(i) * line.step];
  }
  if (AdaptiveLineBinary(profile, static_cast<int32_t>(line.length)) != QUO_OK) return nullptr;
  return profile + line.length;
}

}  // namespace

uint32_t ExtractSpTemplates(const uint8_t* frame, int32_t width, int32_t height, uint8_t** record, uint32_t* size) {
  const uint32_t payload = record_payload(width, height);
  if (payload == 0) return QUO_NO_MEMORY;
  quo::Scratch<uint8_t> built;
  if (!built.allocate(quo::kRecordHeader + payload)) return QUO_NO_MEMORY;
  built[0] = kVersion;
  quo::write_u16(&built[1], payload);

  const SampledFrame sampled{frame, width, height};
  const Line lines[] = {sampled.row(kMargin),    sampled.row(height >> 1),   sampled.row(height - kMargin),
                        sampled.column(kMargin), sampled.column(width >> 1), sampled.column(width - kMargin)};
  uint8_t* section = &built[quo::kRecordHeader];
  for (const Line& line : lines) {
    section = write_section(section, line);
    if (section == nullptr) return QUO_NO_MEMORY;
  }
  if (size != nullptr) *size = quo::kRecordHeader + payload;
  if (record != nullptr) *record = built.release();
  return QUO_OK;
}
