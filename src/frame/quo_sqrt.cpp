#include <bit>

#include "quoFPAlg.h"

// Thresholds of the callers depend on the last bits of the result, so every rounding below is part of the contract.
//
// The subtraction from 1.5 rounds once. Written in double it does so without a call of the platform's fma: the product
// of two floats is exact there, and so is the difference wherever it is not far from 1, as in every step for x of 0 or
// more. Compared with the fused form over all 2^32 inputs, the results are the same bits.
float quo_sqrt(float x) {
  constexpr int32_t kMagic = 0x5F375A86;  // first guess of the reciprocal root, from the bits of x
  constexpr int kNewtonSteps = 3;
  const int32_t bits = std::bit_cast<int32_t>(x);
  float y = std::bit_cast<float>(static_cast<uint32_t>(kMagic) - static_cast<uint32_t>(bits >> 1));
  const float half = 0.5F * x;
  for (int step = 0; step < kNewtonSteps; step++) {
    const float product = half * y;
    y = y * static_cast<float>(1.5 - static_cast<double>(y) * static_cast<double>(product));
  }
  return 1.0F / y;
}
