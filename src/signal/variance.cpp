#include "signal/variance.h"

#include <cmath>

#include "quoFPAlg.h"

namespace {

double variance_from_sums(const uint8_t* data, uint32_t count) {
  quo::GraySums sums;
  for (uint32_t i = 0; i < count; i++) {
    const int16_t value = data[i];  // products of 16-bit factors add up in one vector instruction
    sums.values += data[i];
    sums.squares += static_cast<uint32_t>(value * value);
  }
  return quo::exact_variance(sums, count);
}

// The mean rounds, so the order of the steps and the single rounding of each are part of the result.
double variance_in_order(const uint8_t* data, uint32_t count) {
  uint64_t sum = 0;
  for (uint32_t i = 0; i < count; i++) sum += data[i];
  const double mean = static_cast<double>(sum) / count;  // the sum is below 2^40
  double squares = 0;
  for (uint32_t i = 0; i < count; i++) {
    const double deviation = data[i] - mean;
    squares = std::fma(deviation, deviation, squares);
  }
  return squares / count;
}

}  // namespace

double quo::population_variance(const uint8_t* data, uint32_t count) {
  return has_exact_variance(count) ? variance_from_sums(data, count) : variance_in_order(data, count);
}

double Variance(const uint8_t* data, int32_t count) {
  if (data == nullptr || count <= 0) return 0;
  return quo::population_variance(data, static_cast<uint32_t>(count));
}
