// Bare pixels, as a sensor or a driver dumps them.
#pragma once

#include <optional>
#include <span>

#include "formats/samples.h"
#include "frame_io.h"

namespace quofp {

/** How frames lie in a raw file: a header, then one frame after the other, every row as long as the last. */
struct RawLayout {
  Size size;
  int64_t offset = 0;             // bytes before the first frame
  std::optional<int64_t> stride;  // bytes from one row to the next, of a frame to the next too
  int32_t bits = 8;               // of a pixel; above 8 it takes two bytes
  bool big_endian = false;
  std::optional<int64_t> count;  // frames in a file; 0 for as many as there are, nothing for a file that is one frame

  bool operator==(const RawLayout&) const = default;

  int64_t row_bytes() const { return int64_t{size.width} * (bits > 8 ? 2 : 1); }
  int64_t pitch() const { return stride.value_or(row_bytes()); }
  /** Bytes from one frame to the next. */
  int64_t frame_pitch() const { return pitch() * size.height; }
  /** Bytes of a frame: the last row needs no filling. */
  int64_t frame_bytes() const { return pitch() * (size.height - 1) + row_bytes(); }
  /** Whether a file of this length is one frame, and nothing else. */
  bool is_one_frame(int64_t length) const {
    return length == offset + frame_bytes() || length == offset + frame_pitch();
  }
};

/** Takes a frame out of its frame_bytes() bytes. @throws Failure for a value that does not fit in the bits */
Samples decode_raw(const std::string& name, std::span<const uint8_t> bytes, const RawLayout& layout);

}  // namespace quofp
