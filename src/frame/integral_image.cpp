#include "frame/integral_image.h"

#include <algorithm>
#include <cstddef>

#include "frame/eight_bytes.h"
#include "frame/multiversion.h"
#include "quoFPAlg.h"

#ifdef QUO_WIDE
#include <immintrin.h>
#endif

namespace {

// Vectors of the compiler's own, since no plain loop of running sums becomes any: each sum waits for the one before it.
using Bytes16 = uint8_t __attribute__((vector_size(16)));
using Words8 = uint16_t __attribute__((vector_size(16)));
using Sums4 = uint32_t __attribute__((vector_size(16)));
using Halves = uint64_t __attribute__((vector_size(16)));

constexpr int32_t kEight = 8;     // numbers at once
constexpr int32_t kSixteen = 16;  // pixels of which wider vectors add the sums at once

// Four numbers as 32 bits each. Unaligned; the compiler makes one instruction of it.
Sums4 load_four(const uint32_t* from) {
  Sums4 sums;
  __builtin_memcpy(&sums, from, sizeof sums);
  return sums;
}

// Running sums of eight pixels, in three additions of the sums themselves, shifted by 1, 2 and 4 pixels.
Words8 running_sums(const uint8_t* source) {
  const Words8 zero{};
  const auto bytes = reinterpret_cast<Bytes16>(Halves{quo::load_eight(source), 0});
  auto sums = reinterpret_cast<Words8>(__builtin_shufflevector(bytes, Bytes16{}, 0, 16, 1, 17, 2, 18, 3, 19,  //
                                                               4, 20, 5, 21, 6, 22, 7, 23));
  sums += __builtin_shufflevector(zero, sums, 0, 8, 9, 10, 11, 12, 13, 14);
  sums += __builtin_shufflevector(zero, sums, 0, 0, 8, 9, 10, 11, 12, 13);
  sums += __builtin_shufflevector(zero, sums, 0, 0, 0, 0, 8, 9, 10, 11);
  return sums;
}

void store_sum(const uint32_t* above, Sums4 run, uint32_t* sums) {
  const Sums4 sum = load_four(above) + run;
  __builtin_memcpy(sums, &sum, sizeof sum);
}

Sums4 load_four(const uint16_t* from) {
  uint64_t four;
  __builtin_memcpy(&four, from, sizeof four);
  return reinterpret_cast<Sums4>(
      __builtin_shufflevector(reinterpret_cast<Words8>(Halves{four, 0}), Words8{}, 0, 8, 1, 9, 2, 10, 3, 11));
}

// Adds the running sums of a multiple of sixteen pixels to those of the row above; returns the last running sum.
QUO_BASELINE uint32_t add_pixels(const uint8_t* __restrict source, const uint32_t* __restrict above,
                                 uint32_t* __restrict sums, int32_t count) {
  const Words8 zero{};
  Sums4 before{};
  for (int32_t x = 0; x < count; x += kEight) {
    const Words8 part = running_sums(source + x);
    const Sums4 low = reinterpret_cast<Sums4>(__builtin_shufflevector(part, zero, 0, 8, 1, 9, 2, 10, 3, 11)) + before;
    const Sums4 high =
        reinterpret_cast<Sums4>(__builtin_shufflevector(part, zero, 4, 12, 5, 13, 6, 14, 7, 15)) + before;
    store_sum(above + x, low, sums + x);
    store_sum(above + x + 4, high, sums + x + 4);
    before = __builtin_shufflevector(high, high, 3, 3, 3, 3);
  }
  return before[0];
}

// A multiple of four numbers.
template <typename Number>
uint32_t add_up_fours(const Number* __restrict values, uint32_t* __restrict sums, int32_t count) {
  const Sums4 zero{};
  Sums4 before{};
  for (int32_t x = 0; x < count; x += 4) {
    Sums4 run = load_four(values + x);
    run += __builtin_shufflevector(zero, run, 0, 4, 5, 6);
    run += __builtin_shufflevector(zero, run, 0, 0, 4, 5);
    run += before;
    __builtin_memcpy(sums + x, &run, sizeof run);
    before = __builtin_shufflevector(run, run, 3, 3, 3, 3);
  }
  return before[0];
}

// A multiple of eight numbers.
QUO_BASELINE uint32_t add_up_eights(const uint32_t* __restrict values, uint32_t* __restrict sums, int32_t count) {
  return add_up_fours(values, sums, count);
}

QUO_BASELINE uint32_t add_up_eights(const uint16_t* __restrict values, uint32_t* __restrict sums, int32_t count) {
  return add_up_fours(values, sums, count);
}

#ifdef QUO_WIDE
// The same with twice as many at once. Sums wait for the ones before them with a single addition.
#pragma GCC push_options
#pragma GCC target("arch=x86-64-v3")

const __m256i* vector_at(const void* from) { return static_cast<const __m256i*>(from); }

__m256i last_of(__m256i eight) { return _mm256_permutevar8x32_epi32(eight, _mm256_set1_epi32(7)); }

void store_sums(const uint32_t* above, __m256i run, uint32_t* sums) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(sums), _mm256_add_epi32(run, _mm256_loadu_si256(vector_at(above))));
}

// Running sums of eight numbers: of each half, and the sum of the lower for the upper.
void store_running_sums(__m256i eight, __m256i& before, uint32_t* sums) {
  eight = _mm256_add_epi32(eight, _mm256_slli_si256(eight, 4));
  eight = _mm256_add_epi32(eight, _mm256_slli_si256(eight, 8));
  const __m256i lasts = _mm256_shuffle_epi32(eight, 0xFF);
  eight = _mm256_add_epi32(eight, _mm256_permute2x128_si256(lasts, lasts, 0x08));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(sums), _mm256_add_epi32(eight, before));
  before = _mm256_add_epi32(before, last_of(eight));
}

uint32_t first_of(__m256i eight) { return static_cast<uint32_t>(_mm256_cvtsi256_si32(eight)); }

#pragma GCC pop_options

QUO_WIDE uint32_t add_pixels(const uint8_t* __restrict source, const uint32_t* __restrict above,
                             uint32_t* __restrict sums, int32_t count) {
  __m256i before = _mm256_setzero_si256();
  for (int32_t x = 0; x < count; x += kSixteen) {
    __m256i part = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source + x)));
    part = _mm256_add_epi16(part, _mm256_slli_si256(part, 2));
    part = _mm256_add_epi16(part, _mm256_slli_si256(part, 4));
    part = _mm256_add_epi16(part, _mm256_slli_si256(part, 8));
    const __m256i low = _mm256_cvtepu16_epi32(_mm256_castsi256_si128(part));
    const __m256i high = _mm256_cvtepu16_epi32(_mm256_extracti128_si256(part, 1));
    store_sums(above + x, _mm256_add_epi32(low, before), sums + x);
    before = _mm256_add_epi32(before, last_of(low));
    store_sums(above + x + kEight, _mm256_add_epi32(high, before), sums + x + kEight);
    before = _mm256_add_epi32(before, last_of(high));
  }
  return first_of(before);
}

QUO_WIDE uint32_t add_up_eights(const uint32_t* __restrict values, uint32_t* __restrict sums, int32_t count) {
  __m256i before = _mm256_setzero_si256();
  for (int32_t x = 0; x < count; x += kEight) {
    store_running_sums(_mm256_loadu_si256(vector_at(values + x)), before, sums + x);
  }
  return first_of(before);
}

QUO_WIDE uint32_t add_up_eights(const uint16_t* __restrict values, uint32_t* __restrict sums, int32_t count) {
  __m256i before = _mm256_setzero_si256();
  for (int32_t x = 0; x < count; x += kEight) {
    const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(values + x));
    store_running_sums(_mm256_cvtepu16_epi32(eight), before, sums + x);
  }
  return first_of(before);
}
#endif

// Adds the running sums of a row of pixels to those of the row above.
void add_row(const uint8_t* source, const uint32_t* above, uint32_t* sums, int32_t width) {
  const int32_t whole = width / kSixteen * kSixteen;
  uint32_t run = add_pixels(source, above, sums, whole);
  for (int32_t x = whole; x < width; x++) {
    run += source[x];
    sums[x] = run + above[x];
  }
}

template <typename Number>
void add_up_numbers(const Number* values, uint32_t* sums, int32_t count) {
  const int32_t whole = std::max(count, 0) / kEight * kEight;
  uint32_t run = add_up_eights(values, sums, whole);
  for (int32_t x = whole; x < count; x++) sums[x] = run += values[x];
}

}  // namespace

void quo::add_up(const uint32_t* values, uint32_t* sums, int32_t count) { add_up_numbers(values, sums, count); }
void quo::add_up(const uint16_t* values, uint32_t* sums, int32_t count) { add_up_numbers(values, sums, count); }

void GetGrayIntegralImage(const uint8_t* source, uint32_t* integral, int32_t width, int32_t height, int32_t stride) {
  if (width < 0 || height < 0) return;
  const size_t row = static_cast<size_t>(width) + 1;
  for (size_t x = 0; x < row; x++) integral[x] = 0;
  for (int32_t y = 0; y < height; y++) {
    uint32_t* const above = integral;
    integral += row;
    integral[0] = 0;
    add_row(source, above + 1, integral + 1, width);
    if (y < height - 1) source += stride;
  }
}
