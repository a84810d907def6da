#include "frame/gray.h"
#include "quoFPAlg.h"

uint8_t* BinaryThreshold(uint8_t* data, int32_t count, uint8_t threshold) {
  for (int32_t i = 0; i < count; i++) data[i] = data[i] > threshold ? quo::kWhite : 0;
  return data;
}
