#include "quoFPAlg.h"

void* quo_memset(void* destination, uint8_t value, uint32_t count) {
  if (destination == nullptr) return nullptr;
  auto* bytes = static_cast<uint8_t*>(destination);
  for (uint32_t i = 0; i < count; i++) bytes[i] = value;
  return destination;
}
