// Hooks of the golden runner: memory with known content, and the allocation sequence and the log calls as part of the
// result. The arctangent stays the library's own.
#pragma once

#include <cstdint>

#include "golden/case.h"

namespace golden {

/** Which allocations of a call fail: the one with this index and, if so asked, all later ones. */
struct Failing {
  uint64_t index = UINT64_MAX;
  bool and_later = false;
};

/** From here to stop_recording() the calls of this thread are folded into the digest, with or without the sizes of the
 *  allocations. */
void start_recording(Digest& digest, Failing failing, bool with_sizes);

/** Ends the program when a block was not given back.
 *  @return the number of allocations asked for */
uint64_t stop_recording();

}  // namespace golden
