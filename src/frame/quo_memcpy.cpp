#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

// Bytes that move together: one vector register, or two where registers are short.
using Block = uint8_t __attribute__((vector_size(32)));
using HalfBlock = uint8_t __attribute__((vector_size(16)));
constexpr uint32_t kChunk = 2 * sizeof(Block);

template <typename Bytes>
inline void copy_one(uint8_t* destination, const uint8_t* source) {
  Bytes bytes;
  __builtin_memcpy(&bytes, source, sizeof bytes);
  __builtin_memcpy(destination, &bytes, sizeof bytes);
}

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

// Whether reading `size` bytes before writing them gives what byte after byte would: true unless the destination starts
// inside what is read, where each byte must be seen by the reads that follow it. A destination below the source wraps
// to a large distance.
bool together_equals_one_by_one(const uint8_t* destination, const uint8_t* source, uint32_t size) {
  return reinterpret_cast<uintptr_t>(destination) - reinterpret_cast<uintptr_t>(source) >= size;
}

}  // namespace

void* quo_memcpy(void* destination, const void* source, uint32_t count) {
  if (destination == nullptr || source == nullptr) return nullptr;
  auto* const to = static_cast<uint8_t*>(destination);
  const auto* const from = static_cast<const uint8_t*>(source);
  uint32_t i = together_equals_one_by_one(to, from, kChunk) ? copy_chunks(to, from, count) : 0;
  if (together_equals_one_by_one(to, from, sizeof(HalfBlock))) {
    for (; count - i >= sizeof(HalfBlock); i += sizeof(HalfBlock)) copy_one<HalfBlock>(to + i, from + i);
  }
  for (; i < count; i++) to[i] = from[i];
  return destination;
}
