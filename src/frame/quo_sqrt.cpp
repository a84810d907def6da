#include <bit>
#include <cmath>

#include "quoFPAlg.h"

// Thresholds of the callers depend on the last bits of the result, so every rounding below is part of the contract.
float quo_sqrt(float x) {
  constexpr int32_t kMagic = 0x5F375A86;  // first guess of the reciprocal root, from the bits of x
  constexpr int kNewtonSteps = 3;
  const int32_t bits = std::bit_cast<int32_t>(x);
  float y = std::bit_cast<float>(static_cast<uint32_t>(kMagic) - static_cast<uint32_t>(bits >> 1));
  const float half = 0.5F * x;
  for (int step = 0; step < kNewtonSteps; step++) {
    const float product = half * y;
    y = y * std::fma(-y, product, 1.5F);
  }
  return 1.0F / y;
}
