#include "quoFPAlg.h"

namespace {

constexpr uint32_t kChunk = 64;

// A fixed-size copy becomes a few vector loads followed by as many stores: the whole chunk is read before it is
// written.
inline void copy_chunk(uint8_t* destination, const uint8_t* source) {
  uint8_t chunk[kChunk];
  __builtin_memcpy(chunk, source, kChunk);
  __builtin_memcpy(destination, chunk, kChunk);
}

// Whether reading a chunk before writing it gives what byte after byte would: true unless the destination starts
// inside the chunk being read, where each byte must be seen by the reads that follow it.
inline bool chunks_equal_bytes(const uint8_t* destination, const uint8_t* source) {
  const uintptr_t distance = reinterpret_cast<uintptr_t>(destination) - reinterpret_cast<uintptr_t>(source);
  return distance >= kChunk;  // a destination below the source wraps to a large distance
}

}  // namespace

void* quo_memcpy(void* destination, const void* source, uint32_t count) {
  if (destination == nullptr || source == nullptr) return nullptr;
  auto* to = static_cast<uint8_t*>(destination);
  const auto* from = static_cast<const uint8_t*>(source);
  uint32_t i = 0;
  if (chunks_equal_bytes(to, from)) {
    for (; count - i >= kChunk; i += kChunk) copy_chunk(to + i, from + i);
  }
  for (; i < count; i++) to[i] = from[i];
  return destination;
}
