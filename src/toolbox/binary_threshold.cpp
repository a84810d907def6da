#include "frame/gray.h"
#include "frame/multiversion.h"
#include "quoFPAlg.h"

namespace {

QUO_MULTIVERSION void threshold_pixels(uint8_t* data, int32_t count, uint8_t threshold) {
  for (int32_t i = 0; i < count; i++) data[i] = data[i] > threshold ? quo::kWhite : 0;
}

}  // namespace

uint8_t* BinaryThreshold(uint8_t* data, int32_t count, uint8_t threshold) {
  threshold_pixels(data, count, threshold);
  return data;
}
