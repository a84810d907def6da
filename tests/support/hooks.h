// The test program's own definitions of the library's hooks: they count, fail on request, and notice what leaks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quo_test {

/** What the hooks have seen since the last reset. */
struct HookRecord {
  std::vector<uint32_t> sizes;      // of every request, failed ones included
  uint64_t failed = 0;              // requests among them
  std::vector<std::string> events;  // log calls, "tag/length"
  uint64_t live_blocks = 0;         // handed out and not freed yet
  uint64_t bad_frees = 0;           // of pointers that were not handed out
  uint64_t arctangents = 0;
};

/** The record of the calling thread. */
const HookRecord& hooks();

/** Clears the record and lets every allocation succeed. Blocks still live are forgotten, not freed. */
void reset_hooks();

/** Lets the allocation with this index (0 is the next one) fail, and with `and_later` every one after it. */
void fail_allocation(uint64_t index, bool and_later = false);

/** Lets every request for more bytes fail, until the next reset. */
void fail_above(uint32_t size);

/** Fresh blocks are filled with this byte, so that a read of memory that nobody wrote changes the result. */
void set_fresh_byte(uint8_t value);

/** Lets the arctangent hook answer with this function instead of the platform's, until the next reset. */
void set_arctangent(double (*arctangent)(double y, double x));

}  // namespace quo_test
