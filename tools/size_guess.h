// What size the frames of a raw file may have, from its bytes alone.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace quofp {

/** A size that the bytes may have. */
struct SizeGuess {
  int32_t width = 0;
  int32_t height = 0;  // of one frame
  int64_t frames = 1;  // whole ones in the bytes
  int64_t rest = 0;    // bytes that belong to no frame, a header perhaps
  int32_t bits = 8;
  bool big_endian = false;
  double correlation = 0;  // of the values of neighbouring rows
  double score = 0;        // how much that stands out among other widths, 0 to 1
};

/** The most plausible sizes, the best first. Nothing when the bytes are too few or have no structure. */
std::vector<SizeGuess> guess_sizes(std::span<const uint8_t> bytes, size_t most);

}  // namespace quofp
