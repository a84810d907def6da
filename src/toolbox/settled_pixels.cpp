#include "toolbox/settled_pixels.h"

#include <algorithm>
#include <cmath>

#include "frame/eight_bytes.h"
#include "frame/gray.h"
#include "frame/multiversion.h"
#include "toolbox/gray_stretch.h"
#include "toolbox/value_distances.h"

namespace {

using quo::Extremes;
using quo::kFlat;
using quo::kOpen;
using quo::kStripColumns;
using quo::kTextured;
using quo::kWhite;
using quo::RunningSums;

QUO_MULTIVERSION bool find_white(const uint8_t* __restrict pixels, int32_t count) {
  uint8_t brightest = 0;
  for (int32_t i = 0; i < count; i++) brightest = std::max(brightest, pixels[i]);
  return brightest == kWhite;
}

QUO_MULTIVERSION void slide_value_sums(const uint8_t* __restrict entering, const uint8_t* __restrict leaving,
                                       uint32_t* __restrict values, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    const uint8_t in = entering[i] != kWhite ? entering[i] : 0, out = leaving[i] != kWhite ? leaving[i] : 0;
    values[i] += static_cast<uint32_t>(static_cast<int16_t>(in - out));
  }
}

QUO_MULTIVERSION void slide_pixel_numbers(const uint8_t* __restrict entering, const uint8_t* __restrict leaving,
                                          uint16_t* __restrict numbers, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    numbers[i] = static_cast<uint16_t>(numbers[i] + (entering[i] != kWhite ? 1 : 0) - (leaving[i] != kWhite ? 1 : 0));
  }
}

// Pixels of 0 and 255 are never stretched, nor are those with distances of 0 and 1 only, or the only value of a window.
QUO_MULTIVERSION void settle_pixels(const uint8_t* __restrict pixels, const uint8_t* __restrict textured,
                                    const uint8_t* __restrict lo, const uint8_t* __restrict end,
                                    uint8_t* __restrict settled, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    const auto below = static_cast<uint8_t>(pixels[i] - lo[i]), above = static_cast<uint8_t>(end[i] - 1 - pixels[i]);
    const uint8_t furthest = std::max(below, above);
    const auto kept = static_cast<uint8_t>(furthest <= 1 || pixels[i] == 0 || pixels[i] == kWhite ? 255 : 0);
    settled[i] = static_cast<uint8_t>((kept & kFlat) | (~kept & (textured[i] + textured[i])));
  }
}

// Open pixels that are far are textured.
inline void settle_far(const uint8_t* __restrict far, uint8_t* __restrict settled, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    const auto open = static_cast<uint8_t>(settled[i] == kOpen ? kTextured : 0);
    settled[i] = static_cast<uint8_t>(settled[i] | ((far[i] + far[i]) & open));
  }
}

// Open pixels by whether |s - nv| and twice the distance of v from the nearer extreme exceed n. With distances of P in
// all upwards and N downwards, s - nv = P - N; and P + N is |P - N| and twice the smaller of both, which is no less
// than the distance of the extreme on its side. An extreme itself has distances on one side only and is settled either
// way. All are whole numbers below 2^24: n v <= 254 n, and s <= 254 n.
QUO_MULTIVERSION void settle_open_by_sums(const uint8_t* __restrict pixels, const Extremes& windows,
                                          const float* __restrict numbers, const RunningSums& sums,
                                          uint8_t* __restrict settled, int32_t count) {
  const uint8_t* const lo = windows.lo;
  const uint8_t* const end = windows.end;
  const uint32_t* const before = sums.before;
  const uint32_t* const last = sums.last;
  uint8_t sides[kStripColumns], far[kStripColumns];
  for (int32_t i = 0; i < count; i++) {
    const auto below = static_cast<uint8_t>(pixels[i] - lo[i]), above = static_cast<uint8_t>(end[i] - 1 - pixels[i]);
    sides[i] = std::min(below, above);
  }
  for (int32_t i = 0; i < count; i++) {
    const auto side = static_cast<float>(sides[i]);
    const auto sum = static_cast<float>(static_cast<int32_t>(last[i] - before[i]));
    const float distances = std::fabs(sum - numbers[i] * static_cast<float>(pixels[i])) + (side + side);
    far[i] = static_cast<uint8_t>(static_cast<int32_t>(distances > numbers[i]));
  }
  settle_far(far, settled, count);
  for (int32_t i = 0; i < count; i++) {
    settled[i] = ((sides[i] == 0) & (settled[i] == kOpen)) != 0 ? uint8_t{kFlat} : settled[i];
  }
}

// Open pixels by the halves of their windows, whose distances add up to |s - nv| or more each.
QUO_MULTIVERSION void settle_open_by_halves(const uint8_t* __restrict pixels, const float* __restrict numbers,
                                            const float* __restrict left_numbers, const RunningSums& sums,
                                            uint8_t* __restrict settled, int32_t count) {
  const uint32_t* const before = sums.before;
  const uint32_t* const middle = sums.middle;
  const uint32_t* const last = sums.last;
  uint8_t far[kStripColumns];
  for (int32_t i = 0; i < count; i++) {
    const auto pixel = static_cast<float>(pixels[i]), right_number = numbers[i] - left_numbers[i];
    const float left = static_cast<float>(static_cast<int32_t>(middle[i] - before[i])) - left_numbers[i] * pixel;
    const float right = static_cast<float>(static_cast<int32_t>(last[i] - middle[i])) - right_number * pixel;
    far[i] = static_cast<uint8_t>(static_cast<int32_t>(std::fabs(left) + std::fabs(right) > numbers[i]));
  }
  settle_far(far, settled, count);
}

// Open pixels of one value, with running sums of the distances from it. Returns their number.
QUO_MULTIVERSION uint32_t settle_open_by_distances(const uint8_t* __restrict pixels, uint8_t value,
                                                   const float* __restrict numbers, const uint32_t* __restrict before,
                                                   const uint32_t* __restrict last, uint8_t* __restrict settled,
                                                   int32_t count) {
  uint8_t far[kStripColumns];
  for (int32_t i = 0; i < count; i++) {
    const auto distances = static_cast<float>(static_cast<int32_t>(last[i] - before[i]));
    far[i] = static_cast<uint8_t>(static_cast<int32_t>(distances > numbers[i]));
  }
  uint32_t number = 0;
  for (int32_t i = 0; i < count; i++) {
    const auto open = static_cast<uint8_t>(((pixels[i] == value) & (settled[i] == kOpen)) ? 255 : 0);
    settled[i] = static_cast<uint8_t>(settled[i] | ((far[i] + kFlat) & open));
    number += open & 1U;
  }
  return number;
}

// Quotients of whole numbers below 2^16 by numbers below 2^8, of which those of textured pixels are at most 254. One
// that is no integer lies 2^-8 or more below the next, and single precision, with 16 binary places there, does not
// round it up to that.
QUO_MULTIVERSION void stretch_pixels(const uint8_t* __restrict pixels, uint8_t* __restrict lo,
                                     const uint8_t* __restrict end, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    const auto range = static_cast<uint8_t>(end[i] - 1 - lo[i]);
    const auto distance = static_cast<uint16_t>((pixels[i] - lo[i]) * quo::kStretchedWhite);
    const float quotient = static_cast<float>(distance) / static_cast<float>(std::max<uint8_t>(range, 1));
    lo[i] = static_cast<uint8_t>(static_cast<int32_t>(quotient));
  }
}

// Results where pixels are textured, and elsewhere the pixels. Returns the number of results.
QUO_MULTIVERSION uint32_t select_results(const uint8_t* __restrict pixels, const uint8_t* __restrict settled,
                                         uint8_t* __restrict results, int32_t count) {
  uint32_t stretched = 0;
  for (int32_t i = 0; i < count; i++) {
    const auto textured = static_cast<uint8_t>(settled[i] == kTextured ? 255 : 0);
    results[i] = static_cast<uint8_t>((results[i] & textured) | (pixels[i] & ~textured));
    stretched += textured & 1U;
  }
  return stretched;
}

// Pixels of 0 are never textured, and their results not written.
void write_results(const uint8_t* pixels, const uint8_t* results, uint8_t* output, int32_t count) {
  int32_t i = 0;
  for (; i <= count - 8; i += 8) {
    if (quo::has_zero_byte(quo::load_eight(pixels + i))) {
      for (int32_t k = i; k < i + 8; k++) {
        if (pixels[k] > 0) output[k] = results[k];
      }
    } else {
      quo::store_eight(output + i, quo::load_eight(results + i));
    }
  }
  for (; i < count; i++) {
    if (pixels[i] > 0) output[i] = results[i];
  }
}

}  // namespace

bool quo::has_white(const uint8_t* pixels, int32_t count) { return find_white(pixels, count); }

void quo::slide_values(const uint8_t* entering, const uint8_t* leaving, uint32_t* values, int32_t count) {
  slide_value_sums(entering, leaving, values, count);
}

void quo::slide_numbers(const uint8_t* entering, const uint8_t* leaving, uint16_t* numbers, int32_t count) {
  slide_pixel_numbers(entering, leaving, numbers, count);
}

void quo::settle(const uint8_t* pixels, const uint8_t* textured, const Extremes& windows, uint8_t* settled,
                 int32_t count) {
  settle_pixels(pixels, textured, windows.lo, windows.end, settled, count);
}

void quo::settle_by_sums(const uint8_t* pixels, const Extremes& windows, const float* numbers, const RunningSums& sums,
                         uint8_t* settled, int32_t count) {
  settle_open_by_sums(pixels, windows, numbers, sums, settled, count);
}

void quo::settle_by_halves(const uint8_t* pixels, const float* numbers, const float* left_numbers,
                           const RunningSums& sums, uint8_t* settled, int32_t count) {
  settle_open_by_halves(pixels, numbers, left_numbers, sums, settled, count);
}

uint32_t quo::settle_by_distances(const uint8_t* pixels, uint8_t value, const float* numbers, const RunningSums& sums,
                                  uint8_t* settled, int32_t count) {
  return settle_open_by_distances(pixels, value, numbers, sums.before, sums.last, settled, count);
}

uint32_t quo::write_settled(const uint8_t* pixels, const Extremes& windows, const uint8_t* settled, uint8_t* output,
                            int32_t count) {
  stretch_pixels(pixels, windows.lo, windows.end, count);
  const uint32_t stretched = select_results(pixels, settled, windows.lo, count);
  write_results(pixels, windows.lo, output, count);
  return stretched;
}
