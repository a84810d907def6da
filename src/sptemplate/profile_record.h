// The profile record: a version byte, the length of what follows, then sections, each a length and that many profile
// bytes. An Sp template is the same with run-length coded sections. All lengths are big-endian.
#pragma once

#include <cstdint>

namespace quo {

inline constexpr uint32_t kRecordHeader = 3;   // bytes: version and payload length
inline constexpr uint32_t kSectionHeader = 2;  // bytes: section length
inline constexpr uint8_t kDark = 0;            // profile byte of a pixel that is not brighter than its local mean

inline uint32_t read_u16(const uint8_t* bytes) { return static_cast<uint32_t>(bytes[0]) << 8 | bytes[1]; }

inline void write_u16(uint8_t* bytes, uint32_t value) {
  bytes[0] = static_cast<uint8_t>(value >> 8);
  bytes[1] = static_cast<uint8_t>(value);
}

/** Payload length of a record or template: the bytes that follow the header of the record. */
inline uint32_t payload_length(const uint8_t* header) { return read_u16(header + 1); }

/** One line profile inside a record. */
struct Section {
  const uint8_t* profile;
  uint32_t length;
};

/** Walks the sections of a record and never leaves it, whatever its lengths claim. */
class SectionWalk {
 public:
  explicit SectionWalk(const uint8_t* record) : next_(record + kRecordHeader), remaining_(payload_length(record)) {}

  bool at_end() const { return remaining_ == 0; }

  /** Steps to the next section; false when it reaches beyond the record. */
  [[nodiscard]] bool next(Section& section) {
    if (remaining_ < kSectionHeader) return false;
    const uint32_t length = read_u16(next_);
    if (length > remaining_ - kSectionHeader) return false;
    section = {next_ + kSectionHeader, length};
    next_ += kSectionHeader + length;
    remaining_ -= kSectionHeader + length;
    return true;
  }

 private:
  const uint8_t* next_;
  uint32_t remaining_;
};

}  // namespace quo
