#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

// Bytes that move together: one vector register or two.
using Block = uint8_t __attribute__((vector_size(32)));
constexpr uint32_t kChunk = 2 * sizeof(Block);

// Whole chunks, each read before it is written; returns the bytes copied.
QUO_MULTIVERSION uint32_t copy_chunks(uint8_t* destination, const uint8_t* source, uint32_t count) {
  uint32_t i = 0;
  for (; count - i >= kChunk; i += kChunk) {
    Block first, second;
    __builtin_memcpy(&first, source + i, sizeof(Block));
    __builtin_memcpy(&second, source + i + sizeof(Block), sizeof(Block));
    __builtin_memcpy(destination + i, &first, sizeof(Block));
    __builtin_memcpy(destination + i + sizeof(Block), &second, sizeof(Block));
  }
  return i;
}

// Whether reading a chunk before writing it gives what byte after byte would: true unless the destination starts
// inside the chunk being read, where each byte must be seen by the reads that follow it.
bool chunks_equal_bytes(const uint8_t* destination, const uint8_t* source) {
  const uintptr_t distance = reinterpret_cast<uintptr_t>(destination) - reinterpret_cast<uintptr_t>(source);
  return distance >= kChunk;  // a destination below the source wraps to a large distance
}

}  // namespace

void* quo_memcpy(void* destination, const void* source, uint32_t count) {
  if (destination == nullptr || source == nullptr) return nullptr;
  auto* const to = static_cast<uint8_t*>(destination);
  const auto* const from = static_cast<const uint8_t*>(source);
  uint32_t i = chunks_equal_bytes(to, from) ? copy_chunks(to, from, count) : 0;
  for (; i < count; i++) to[i] = from[i];
  return destination;
}
