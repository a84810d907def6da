#include <algorithm>

#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

// Bytes that are set together: one vector register or two.
using Block = uint8_t __attribute__((vector_size(32)));

QUO_MULTIVERSION void fill(uint8_t* bytes, uint8_t value, uint32_t count) {
  // Blocks begin at multiples of their size: stores across a cache line cost double.
  const auto before_block = static_cast<uint32_t>(-reinterpret_cast<uintptr_t>(bytes) % sizeof(Block));
  uint32_t i = 0;
  for (const uint32_t end = std::min(before_block, count); i < end; i++) bytes[i] = value;
  const Block block = Block{} + value;
  for (; count - i >= sizeof(Block); i += sizeof(Block)) __builtin_memcpy(bytes + i, &block, sizeof(Block));
  for (; i < count; i++) bytes[i] = value;
}

}  // namespace

void* quo_memset(void* destination, uint8_t value, uint32_t count) {
  if (destination == nullptr) return nullptr;
  fill(static_cast<uint8_t*>(destination), value, count);
  return destination;
}
