// What the targets for the tool's readers share.
#pragma once

#include <optional>
#include <string>

#include "failure.h"
#include "reading.h"
#include "support/fuzz.h"

namespace quo_fuzz {

/** The frame that `read` gives, or nothing when it fails as the tool can report. Every other exception ends the
 *  program. */
template <typename Read>
std::optional<quofp::Frame> frame_or_failure(Read read) {
  try {
    return read();
  } catch (const quofp::Failure& failure) {
    const std::string reason = failure.what();
    require(reason.starts_with("input: ") && reason.size() > sizeof "input: ", "a failure names the file and says why");
    return std::nullopt;
  }
}

/** A frame has a size that frames may have, and as many pixels. */
inline void require_sound(const quofp::Frame& frame) {
  require(quofp::is_frame_size(frame.width, frame.height), "the size is within the bounds");
  require(frame.pixels.size() == static_cast<size_t>(frame.width) * static_cast<size_t>(frame.height), "every pixel");
}

inline bool same(const quofp::Frame& a, const quofp::Frame& b) {
  return a.width == b.width && a.height == b.height && a.pixels == b.pixels;
}

}  // namespace quo_fuzz
