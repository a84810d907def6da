// What fuzz targets share: arguments read off the input, and checks that end the program.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

#include "quoFPAlg.h"
#include "support/hooks.h"

/** The entry that libFuzzer and the replay runner call. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace quo_fuzz {

using Bytes = std::vector<uint8_t>;

/** Ends the program, with the input as finding, unless the condition holds. */
inline void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "FAILED: %s\n", what);
  std::abort();
}

/** The input, read from its start; beyond its end there are zeros. */
class Input {
 public:
  Input(const uint8_t* data, size_t size) : bytes_(data, size) {}

  uint8_t byte() {
    if (bytes_.empty()) return 0;
    const uint8_t value = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return value;
  }
  uint32_t u16() {
    const uint32_t high = byte();
    return high << 8 | byte();
  }
  std::span<const uint8_t> rest() const { return bytes_; }

 private:
  std::span<const uint8_t> bytes_;
};

/** Starts counting allocations and lets one fail: byte 0 none, otherwise the one with index (byte - 1) % 128, from
 *  128 on with all later ones. What no small frame needs fails in any case. */
inline void arm_hooks(uint8_t byte) {
  quo_test::reset_hooks();
  quo_test::fail_above(1U << 24);
  if (byte != 0) quo_test::fail_allocation((byte - 1U) % 128, byte >= 128);
}

/** Whether an allocation has failed since arm_hooks(). */
inline bool allocation_failed() { return quo_test::hooks().failed > 0; }

/** To be called when every block handed out has been given back. */
inline void require_no_leak() {
  require(quo_test::hooks().live_blocks == 0, "memory is given back");
  require(quo_test::hooks().bad_frees == 0, "only what was handed out is freed");
}

/** `size` bytes on the heap, exactly, so that the address sanitizer sees an access outside: the input, zeros beyond. */
inline std::unique_ptr<uint8_t[]> exact(std::span<const uint8_t> bytes, size_t size) {
  auto copy = std::make_unique<uint8_t[]>(size);
  for (size_t i = 0; i < size && i < bytes.size(); i++) copy[i] = bytes[i];
  return copy;
}

/** A profile record: as many bytes as its header says, zeros where the input ends. Empty when it says far more than the
 *  input holds, which would only be slow. */
inline Bytes record_from(std::span<const uint8_t> bytes) {
  Bytes record(bytes.begin(), bytes.end());
  record.resize(std::max<size_t>(record.size(), 3));
  const size_t length = record[1] * 256U + record[2] + 3U;
  record.resize(length > record.size() + 64 ? 0 : length);
  return record;
}

/** A block that the library handed out: copied, then given back. */
inline Bytes take(uint8_t* block, size_t size) {
  const Bytes bytes(block, block + size);
  tev_quo_free(block);
  return bytes;
}

}  // namespace quo_fuzz
