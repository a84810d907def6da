// Hooks of the golden runner: memory with known content, allocation sequence and log calls as part of the result. The
// arctangent stays the library's own.
#pragma once

#include <cstdint>

#include "golden/golden.h"

namespace golden {

/** From here to stop_recording() the calls of this thread are folded into the digest, and the allocation with the index
 *  `failing` (and those after it, with `and_later`) fails. */
void start_recording(Digest& digest, uint64_t failing, bool and_later);

/** @return the number of allocations asked for */
uint64_t stop_recording();

}  // namespace golden
